#include "tool/markdown_text.h"

#include "tool/terminal.h"

namespace assembly::tool {
namespace {

constexpr std::string_view kMarkup = "\\`*_{}[]#|~!";

std::string Escaped(char letter) {
    if (letter == '<') return "&lt;";
    if (letter == '>') return "&gt;";
    if (letter == '&') return "&amp;";
    if (letter == '\n') return "<br>";
    if (kMarkup.find(letter) != std::string_view::npos) return {'\\', letter};
    return Printable(std::string_view(&letter, 1));
}

}  // namespace

std::string MarkdownCell(std::string_view utf8) {
    std::string cell;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const bool isBreakPair = utf8[i] == '\r' && i + 1 < utf8.size() && utf8[i + 1] == '\n';
        if (!isBreakPair) cell += Escaped(utf8[i]);
    }
    return cell;
}

}  // namespace assembly::tool
