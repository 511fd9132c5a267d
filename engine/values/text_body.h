#pragma once

#include <cstddef>
#include <string_view>

namespace qn {

/// The text that strings and values share. One allocation: this head, then `capacity` characters and a
/// terminator. A body is changed only while it has one owner.
struct TextBody {
    int count;
    int length;
    int capacity;
    mutable std::size_t hash;  // 0: not known yet
    mutable char* utf8;        // made on demand, ends with a zero

    wchar_t* Letters() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
    const wchar_t* Letters() const noexcept { return reinterpret_cast<const wchar_t*>(this + 1); }
    std::wstring_view View() const noexcept { return {Letters(), static_cast<std::size_t>(length)}; }

    /// A body with one owner and room for `capacity` characters, still of length 0. Throws without memory.
    static TextBody* Allocate(std::size_t capacity);
    /// A body with one owner, or null for the empty text.
    static TextBody* Make(std::wstring_view text);
    /// The same for UTF-8; damaged sequences become U+FFFD.
    static TextBody* MakeFromUtf8(std::string_view text);
    void Retain() noexcept { ++count; }
    void Drop() noexcept {
        if (--count == 0) Destroy();
    }
    /// Ends the text after `newLength` characters and forgets what was derived from the old text.
    void SetLength(std::size_t newLength) noexcept;
    const char* Utf8() const;
    std::size_t Hash() const noexcept;

private:
    void Destroy() noexcept;
};

inline std::wstring_view ViewOf(const TextBody* body) noexcept {
    return body ? body->View() : std::wstring_view(L"", 0);
}
/// The hash that `TextBody::Hash` gives for this text; never 0.
std::size_t HashOfText(std::wstring_view text) noexcept;

}  // namespace qn
