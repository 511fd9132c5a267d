#include "tool/terminal.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using tool::Printable;

TEST(Printable, LeavesLettersAlone) {
    for (const char* text : {"", "bolt M4", "Gehäuse", "電球 🔌", "5 µm ± 1", "a\u00a0b"})
        EXPECT_EQ(Printable(text), text);
}

TEST(Printable, ShowsWhatWouldMoveTheCursor) {
    EXPECT_EQ(Printable("a\nb\tc\x7f"), "a\\x0ab\\x09c\\x7f");
    EXPECT_EQ(Printable("\x1b[2J"), "\\x1b[2J");
    EXPECT_EQ(Printable("a\u009b2J\u0085"), "a\\x9b2J\\x85");
}

}  // namespace
}  // namespace assembly::tests
