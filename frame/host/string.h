#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qn {

class Stream;
struct TextBody;  // shared, counted, immutable text; engine private

/// Wide text. Copies share one immutable body; lengths and indexes count `wchar_t`. Narrow text is UTF-8.
class String {
public:
    String() noexcept = default;
    String(const wchar_t* text);
    String(std::wstring_view text);
    String(const std::wstring& text) : String(std::wstring_view(text)) {}
    String(const wchar_t* text, int length);
    String(const String& other) noexcept;
    String(String&& other) noexcept : body_(other.body_) { other.body_ = nullptr; }
    ~String();
    String& operator=(const String& other) noexcept;
    String& operator=(String&& other) noexcept;

    /// Decodes UTF-8; damaged sequences become U+FFFD.
    static String FromUtf8(std::string_view text);
    /// The formatter of the host: "%s" takes `const wchar_t*`, "%S" `const char*`; d i u x X c f g p ld lld,
    /// widths, "%%".
    void Format(const wchar_t* pattern, ...);
    void AppendFormat(const wchar_t* pattern, ...);
    void Set(const wchar_t* text, int length = -1);
    void Add(const String& text);
    void Add(wchar_t letter);
    void Clear();
    /// Adds a final "/" unless the text is empty or ends with "/" or "\".
    void AddSlash();

    /// The text, never null, valid while this body lives.
    const wchar_t* c_str() const noexcept;
    std::wstring_view View() const noexcept;
    std::string ToUtf8() const;
    /// UTF-8 form kept with the shared body, valid while the body lives.
    const char* Utf8CStr() const;
    /// Copies at most size - 1 characters and a terminator; nothing without buffer or size. Gives the buffer.
    wchar_t* Get(wchar_t* buffer, int size) const;
    bool IsEmpty() const noexcept { return body_ == nullptr; }
    bool NonEmpty() const noexcept { return body_ != nullptr; }
    int Length() const noexcept;
    /// The character at `index`, 0 outside.
    wchar_t At(int index) const noexcept;
    /// Up to `count` characters from `first`; count -1 means to the end; clipped to the text.
    String SubString(int first, int count = -1) const;
    /// UTF-16 code unit order, the shorter first: below 0, 0, above 0.
    int Compare(const String& other) const noexcept;
    /// This text with all occurrences of its lowest-numbered marker (%1 to %99) replaced, padded on the left
    /// (width above 0) or right (below 0) with `fill`. Without a marker the text as it is.
    String Arg(const String& value, int fieldWidth = 0, wchar_t fill = L' ') const;
    String Arg(std::int64_t value, int fieldWidth = 0, wchar_t fill = L' ') const;

    /// The text's bytes at the stream's present position; the number is ignored.
    bool Save(Stream* stream, unsigned short id = 0) const;
    bool Load(Stream* stream);

    friend bool operator==(const String& left, const String& right) noexcept { return left.Equals(right); }
    friend std::strong_ordering operator<=>(const String& left, const String& right) noexcept {
        return left.Compare(right) <=> 0;
    }
    friend String operator+(const String& left, const String& right);

    /// Hash of the text, kept with the body.
    std::size_t Hash() const noexcept;

private:
    friend class Var;
    bool Equals(const String& other) const noexcept;
    void Append(std::wstring_view tail);
    TextBody* body_ = nullptr;  // null is the empty text
};

/// Compares in UTF-16 code unit order, shorter first; the one order of all containers of texts.
int CompareTexts(std::wstring_view left, std::wstring_view right) noexcept;

/// Adds a final slash to a path in a buffer of `size` characters, if there is room.
void AddSlash(wchar_t* path, int size);
/// Appends `text` to the text in a buffer of `size` characters, cut to fit.
void k3strcat(wchar_t* buffer, const wchar_t* text, int size);
/// The host formatter over a `va_list`; writes at most size - 1 characters and a terminator, gives the full
/// length.
int k3vsprintf(wchar_t* buffer, int size, const wchar_t* pattern, __builtin_va_list arguments);

}  // namespace qn

template <>
struct std::hash<qn::String> {
    std::size_t operator()(const qn::String& text) const noexcept { return text.Hash(); }
};
