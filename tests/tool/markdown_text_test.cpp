#include "tool/markdown_text.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using tool::MarkdownCell;

const struct {
    const char* text;
    const char* cell;
} kTexts[] = {
    {"", ""},
    {"bolt M4-20", "bolt M4-20"},
    {"電球", "電球"},
    {"a|b", "a\\|b"},
    {"a\\|b", "a\\\\\\|b"},
    {"*a* _b_ `c`", "\\*a\\* \\_b\\_ \\`c\\`"},
    {"[a](b)", "\\[a\\](b)"},
    {"<b>&amp;", "&lt;b&gt;&amp;amp;"},
    {"a\nb", "a<br>b"},
    {"a\r\nb", "a<br>b"},
    {"a\tb", "a\\x09b"},
};

TEST(MarkdownText, StaysOneCellAndIsNoMarkup) {
    for (const auto& [text, cell] : kTexts)
        EXPECT_EQ(MarkdownCell(text), cell);
}

}  // namespace
}  // namespace assembly::tests
