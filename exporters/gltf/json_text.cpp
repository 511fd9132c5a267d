#include "exporters/gltf/json_text.h"

#include <algorithm>
#include <charconv>

namespace qn::gltf_export {
namespace {

/// Longer than any number's shortest text.
constexpr std::size_t kNumberRoom = 40;
constexpr char kDigits[] = "0123456789abcdef";
constexpr unsigned char kFirstPrintable = 0x20;

bool IsPlain(char letter) {
    return static_cast<unsigned char>(letter) >= kFirstPrintable && letter != '"' && letter != '\\';
}

void AppendEscaped(std::string& out, char letter) {
    if (letter == '"' || letter == '\\') {
        out += '\\', out += letter;
        return;
    }
    const auto code = static_cast<unsigned char>(letter);
    out += "\\u00";
    out += kDigits[code >> 4], out += kDigits[code & 0xf];
}

template <class Number>
std::string_view Convert(char* room, Number number) {
    const auto end = std::to_chars(room, room + kNumberRoom, number).ptr;
    return {room, static_cast<std::size_t>(end - room)};
}

}  // namespace

void AppendText(std::string& out, std::string_view utf8) {
    out += '"';
    if (std::all_of(utf8.begin(), utf8.end(), &IsPlain)) {
        out += utf8;
    } else {
        for (const char letter : utf8)
            IsPlain(letter) ? out.push_back(letter) : AppendEscaped(out, letter);
    }
    out += '"';
}

void AppendInteger(std::string& out, std::int64_t number) {
    char room[kNumberRoom];
    out += Convert(room, number);
}

void AppendIndex(std::string& out, std::uint64_t number) {
    char room[kNumberRoom];
    out += Convert(room, number);
}

void AppendNumber(std::string& out, double number) {
    char room[kNumberRoom];
    const std::string_view text = Convert(room, number);
    out += text;
    if (text == "-0") out += ".0";  // an integer has no -0
}

void AppendReal(std::string& out, double number) {
    char room[kNumberRoom];
    const std::string_view text = Convert(room, number);
    out += text;
    if (text.find_first_of(".e") == std::string_view::npos) out += ".0";
}

void AppendNumbers(std::string& out, const double* first, std::size_t count) {
    out += '[';
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) out += ',';
        AppendNumber(out, first[i]);
    }
    out += ']';
}

void AppendMatrix(std::string& out, const Matrix4<double>& matrix) {
    AppendNumbers(out, &matrix.m[0][0], 16);
}

}  // namespace qn::gltf_export
