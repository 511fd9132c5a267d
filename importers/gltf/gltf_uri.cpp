#include "importers/gltf/gltf_uri.h"

#include "importers/gltf/gltf_error.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace qn::gltf {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDataScheme = "data:";
constexpr std::string_view kBase64 = ";base64";
constexpr int kNoDigit = -1;

int HexValue(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
    return kNoDigit;
}

/// A percent sign without two digits behind it stays as it is: some writers do not encode at all.
std::string DecodePercent(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isCode =
            text[i] == '%' && i + 2 < text.size() && HexValue(text[i + 1]) >= 0 && HexValue(text[i + 2]) >= 0;
        if (isCode) {
            plain += static_cast<char>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2]));
            i += 2;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

constexpr std::array<std::int8_t, 256> MakeBase64Digits() {
    std::array<std::int8_t, 256> digits{};
    digits.fill(kNoDigit);
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < kLetters.size(); ++i)
        digits[static_cast<unsigned char>(kLetters[i])] = static_cast<std::int8_t>(i);
    digits['-'] = 62, digits['_'] = 63;  // the form for addresses
    return digits;
}
constexpr std::array<std::int8_t, 256> kBase64Digits = MakeBase64Digits();

std::vector<std::uint8_t> DecodeBase64(std::string_view text) {
    while (!text.empty() && text.back() == '=')
        text.remove_suffix(1);
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3 + 3);
    std::uint32_t bits = 0;
    int count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int digit = kBase64Digits[static_cast<unsigned char>(text[i])];
        if (digit < 0)
            throw GltfError("letter " + std::to_string(i) + " of the base64 text is none of its 64 letters");
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> count));
    }
    return bytes;
}

/// "http:" and the like; a single letter could be a drive, which is no relative address either.
bool HasScheme(std::string_view uri) {
    const std::size_t colon = uri.find(':');
    if (colon == std::string_view::npos || colon == 0) return false;
    return std::all_of(uri.begin(), uri.begin() + static_cast<std::ptrdiff_t>(colon),
                       [](unsigned char letter) {
                           return std::isalnum(letter) || letter == '+' || letter == '-' || letter == '.';
                       });
}

bool IsBelow(const fs::path& path, const fs::path& folder) {
    const auto ends = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return ends.first == folder.end() && ends.second != path.end();
}

}  // namespace

bool IsDataUri(std::string_view uri) {
    return uri.substr(0, kDataScheme.size()) == kDataScheme;
}

std::vector<std::uint8_t> DecodeDataUri(std::string_view uri) {
    const std::size_t comma = uri.find(',');
    if (comma == std::string_view::npos) throw GltfError("expected a comma in the data address");
    const std::string_view head = uri.substr(0, comma), body = uri.substr(comma + 1);
    const bool isBase64 =
        head.size() >= kBase64.size() && head.substr(head.size() - kBase64.size()) == kBase64;
    if (isBase64) return DecodeBase64(body.find('%') == std::string_view::npos ? body : DecodePercent(body));
    const std::string plain = DecodePercent(body);
    return {plain.begin(), plain.end()};
}

fs::path ResolveUri(std::string_view uri, const fs::path& folder) {
    const std::string quoted = "\"" + std::string(uri) + "\"";
    if (HasScheme(uri))
        throw GltfError("expected a relative address of a file or data, found " + quoted,
                        LoadFailure::kUnreadable);
    const std::string name = DecodePercent(uri);
    if (name.find('\0') != std::string::npos) throw GltfError("the address holds a zero byte");
    const fs::path relative = fs::path(name).lexically_normal();
    if (name.empty() || relative.is_absolute() || *relative.begin() == "..")
        throw GltfError("expected a file below the folder of this one, found " + quoted,
                        LoadFailure::kUnreadable);
    std::error_code error;
    const fs::path base = fs::weakly_canonical(folder.empty() ? fs::path(".") : folder, error);
    const fs::path whole = fs::weakly_canonical(base / relative, error);
    if (error || !IsBelow(whole, base))
        throw GltfError(quoted + " leads out of the folder of this file", LoadFailure::kUnreadable);
    return whole;
}

}  // namespace qn::gltf
