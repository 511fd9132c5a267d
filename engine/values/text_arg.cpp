#include "frame/host/string.h"

#include <string>

namespace qn {
namespace {

/// A marker at a "%": its number, 1 to 99, and how many characters it takes; 0 and 0 if there is none.
struct Marker {
    int number;
    std::size_t length;
};

Marker MarkerAt(std::wstring_view text, std::size_t at) noexcept {
    const auto digit = [text](std::size_t i) {
        return i < text.size() && text[i] >= L'0' && text[i] <= L'9';
    };
    if (text[at] != L'%' || !digit(at + 1) || text[at + 1] == L'0') return {0, 0};
    const int tens = text[at + 1] - L'0';
    if (!digit(at + 2)) return {tens, 2};
    return {tens * 10 + (text[at + 2] - L'0'), 3};
}

int LowestMarker(std::wstring_view text) noexcept {
    int lowest = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int number = MarkerAt(text, at).number;
        if (number && (!lowest || number < lowest)) lowest = number;
    }
    return lowest;
}

std::wstring Padded(std::wstring_view text, int width, wchar_t fill) {
    const std::size_t wanted =
        width < 0 ? 0 - static_cast<std::size_t>(width) : static_cast<std::size_t>(width);
    std::wstring result(text);
    if (wanted > text.size()) result.insert(width < 0 ? text.size() : 0, wanted - text.size(), fill);
    return result;
}

}  // namespace

String String::Arg(const String& value, int fieldWidth, wchar_t fill) const {
    const std::wstring_view text = View();
    const int wanted = LowestMarker(text);
    if (!wanted) return *this;
    const std::wstring filling = Padded(value.View(), fieldWidth, fill);
    std::wstring result;
    for (std::size_t at = 0; at < text.size();) {
        const Marker marker = MarkerAt(text, at);
        if (marker.number == wanted) {
            result += filling;
            at += marker.length;
        } else {
            result += text[at++];
        }
    }
    return String(result);
}

String String::Arg(std::int64_t value, int fieldWidth, wchar_t fill) const {
    return Arg(String(std::to_wstring(value)), fieldWidth, fill);
}

}  // namespace qn
