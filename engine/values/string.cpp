#include "frame/host/string.h"

#include "engine/values/text_body.h"
#include "engine/values/text_format.h"
#include "engine/values/utf8.h"

#include <algorithm>
#include <cwchar>
#include <utility>

namespace qn {
namespace {

TextBody* Shared(TextBody* body) noexcept {
    if (body) body->Retain();
    return body;
}

void Dropped(TextBody* body) noexcept {
    if (body) body->Drop();
}

/// A view of a text of known length, or up to its terminator for -1; null is the empty text.
std::wstring_view ViewOfLetters(const wchar_t* text, int length) {
    if (!text || length == 0) return {};
    return {text, length < 0 ? std::wcslen(text) : static_cast<std::size_t>(length)};
}

bool EndsWithSlash(std::wstring_view path) noexcept {
    return path.back() == L'/' || path.back() == L'\\';
}

}  // namespace

String::String(const wchar_t* text) : body_(TextBody::Make(ViewOfLetters(text, -1))) {}
String::String(std::wstring_view text) : body_(TextBody::Make(text)) {}
String::String(const wchar_t* text, int length) : body_(TextBody::Make(ViewOfLetters(text, length))) {}
String::String(const String& other) noexcept : body_(Shared(other.body_)) {}
String::~String() {
    Dropped(body_);
}

String& String::operator=(const String& other) noexcept {
    Dropped(std::exchange(body_, Shared(other.body_)));
    return *this;
}

String& String::operator=(String&& other) noexcept {
    if (this != &other) Dropped(std::exchange(body_, std::exchange(other.body_, nullptr)));
    return *this;
}

String String::FromUtf8(std::string_view text) {
    String result;
    result.body_ = TextBody::MakeFromUtf8(text);
    return result;
}

void String::Format(const wchar_t* pattern, ...) {
    __builtin_va_list arguments;
    __builtin_va_start(arguments, pattern);
    const std::wstring text = FormatText(pattern, arguments);
    __builtin_va_end(arguments);
    *this = String(text);
}

void String::AppendFormat(const wchar_t* pattern, ...) {
    __builtin_va_list arguments;
    __builtin_va_start(arguments, pattern);
    const std::wstring text = FormatText(pattern, arguments);
    __builtin_va_end(arguments);
    Append(text);
}

void String::Set(const wchar_t* text, int length) {
    *this = String(ViewOfLetters(text, length));
}

void String::Add(const String& text) {
    if (IsEmpty()) {
        *this = text;
        return;
    }
    Append(text.View());
}

void String::Add(wchar_t letter) {
    Append(std::wstring_view(&letter, 1));
}

// The tail may be a part of this very text.
void String::Append(std::wstring_view tail) {
    if (tail.empty()) return;
    const std::size_t old = View().size();
    const std::size_t wanted = old + tail.size();
    if (!body_ || body_->count != 1 || static_cast<std::size_t>(body_->capacity) < wanted) {
        TextBody* grown = TextBody::Allocate(std::max(wanted, old ? old * 2 : wanted));
        std::wmemcpy(grown->Letters(), View().data(), old);
        std::wmemcpy(grown->Letters() + old, tail.data(), tail.size());
        grown->SetLength(wanted);
        Dropped(std::exchange(body_, grown));
        return;
    }
    std::wmemmove(body_->Letters() + old, tail.data(), tail.size());
    body_->SetLength(wanted);
}

void String::Clear() {
    Dropped(std::exchange(body_, nullptr));
}

void String::AddSlash() {
    if (NonEmpty() && !EndsWithSlash(View())) Add(L'/');
}

const wchar_t* String::c_str() const noexcept {
    return body_ ? body_->Letters() : L"";
}
std::wstring_view String::View() const noexcept {
    return ViewOf(body_);
}

std::string String::ToUtf8() const {
    std::string result(utf8::CountBytes(View()), '\0');
    utf8::Encode(View(), result.data());
    return result;
}

const char* String::Utf8CStr() const {
    return body_ ? body_->Utf8() : "";
}

wchar_t* String::Get(wchar_t* buffer, int size) const {
    if (!buffer || size <= 0) return buffer;
    const std::wstring_view text = View().substr(0, static_cast<std::size_t>(size) - 1);
    std::wmemcpy(buffer, text.data(), text.size());
    buffer[text.size()] = 0;
    return buffer;
}

int String::Length() const noexcept {
    return body_ ? body_->length : 0;
}

wchar_t String::At(int index) const noexcept {
    return index >= 0 && index < Length() ? body_->Letters()[index] : L'\0';
}

String String::SubString(int first, int count) const {
    const int from = std::clamp(first, 0, Length());
    const int most = Length() - from;
    const int taken = count < 0 ? most : std::min(count, most);
    if (taken == Length()) return *this;
    return String(View().substr(static_cast<std::size_t>(from), static_cast<std::size_t>(taken)));
}

int String::Compare(const String& other) const noexcept {
    return body_ == other.body_ ? 0 : CompareTexts(View(), other.View());
}

bool String::Equals(const String& other) const noexcept {
    return body_ == other.body_ || View() == other.View();
}

String operator+(const String& left, const String& right) {
    String result(left);
    result.Add(right);
    return result;
}

std::size_t String::Hash() const noexcept {
    return body_ ? body_->Hash() : HashOfText({});
}

void AddSlash(wchar_t* path, int size) {
    if (!path || size <= 0) return;
    const std::wstring_view text(path);
    if (text.empty() || EndsWithSlash(text) || text.size() + 2 > static_cast<std::size_t>(size)) return;
    path[text.size() + 1] = 0;
    path[text.size()] = L'/';
}

void k3strcat(wchar_t* buffer, const wchar_t* text, int size) {
    if (!buffer || !text || size <= 0) return;
    const std::size_t old = std::wcslen(buffer);
    const std::size_t capacity = static_cast<std::size_t>(size);
    if (old + 1 >= capacity) return;
    const std::size_t added = std::min(std::wcslen(text), capacity - 1 - old);
    std::wmemmove(buffer + old, text, added);
    buffer[old + added] = 0;
}

}  // namespace qn
