#include "engine/values/text_body.h"

#include "engine/values/utf8.h"

#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <limits>
#include <new>

namespace qn {

TextBody* TextBody::Allocate(std::size_t capacity) {
    if (capacity >= static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::bad_alloc();
    void* storage = std::malloc(sizeof(TextBody) + (capacity + 1) * sizeof(wchar_t));
    if (!storage) throw std::bad_alloc();
    auto* body = new (storage) TextBody{1, 0, static_cast<int>(capacity), 0, nullptr};
    body->Letters()[0] = 0;
    return body;
}

TextBody* TextBody::Make(std::wstring_view text) {
    if (text.empty()) return nullptr;
    TextBody* body = Allocate(text.size());
    std::wmemcpy(body->Letters(), text.data(), text.size());
    body->SetLength(text.size());
    return body;
}

TextBody* TextBody::MakeFromUtf8(std::string_view text) {
    if (text.empty()) return nullptr;
    TextBody* body = Allocate(utf8::CountCharacters(text));
    body->SetLength(utf8::Decode(text, body->Letters()));
    return body;
}

void TextBody::SetLength(std::size_t newLength) noexcept {
    length = static_cast<int>(newLength);
    Letters()[newLength] = 0;
    hash = 0;
    std::free(utf8);
    utf8 = nullptr;
}

const char* TextBody::Utf8() const {
    if (utf8) return utf8;
    const std::size_t size = utf8::CountBytes(View());
    utf8 = static_cast<char*>(std::malloc(size + 1));
    if (!utf8) throw std::bad_alloc();
    utf8::Encode(View(), utf8);
    utf8[size] = 0;
    return utf8;
}

std::size_t TextBody::Hash() const noexcept {
    if (hash == 0) hash = HashOfText(View());
    return hash;
}

void TextBody::Destroy() noexcept {
    std::free(utf8);
    std::free(this);
}

std::size_t HashOfText(std::wstring_view text) noexcept {
    // Two characters a step, a multiplication each; the shifts bring high bits down for tables of a power of
    // two.
    std::size_t hash = 0x9e3779b97f4a7c15u ^ text.size();
    const wchar_t* letter = text.data();
    std::size_t left = text.size();
    for (; left >= 2; left -= 2, letter += 2) {
        const auto pair = static_cast<std::size_t>(static_cast<std::uint32_t>(letter[0])) << 32 |
                          static_cast<std::uint32_t>(letter[1]);
        hash = (hash ^ pair) * 0xff51afd7ed558ccdu;
        hash ^= hash >> 32;
    }
    if (left) hash = (hash ^ static_cast<std::uint32_t>(*letter)) * 0xff51afd7ed558ccdu;
    hash ^= hash >> 29;
    hash *= 0xc4ceb9fe1a85ec53u;
    hash ^= hash >> 32;
    return hash ? hash : 1;
}

}  // namespace qn
