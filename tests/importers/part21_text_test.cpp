#include "importers/step/part21_text.h"

#include <gtest/gtest.h>

namespace {

using qn::step::DecodeText;

TEST(Part21Text, KeepsPlainText) {
    EXPECT_EQ(DecodeText("M3x10 SHCS"), "M3x10 SHCS");
    EXPECT_EQ(DecodeText(""), "");
    EXPECT_EQ(DecodeText(" leading and trailing "), " leading and trailing ");
}

TEST(Part21Text, HalvesDoubledQuotesAndBackslashes) {
    EXPECT_EQ(DecodeText("1'' x 2''"), "1' x 2'");
    EXPECT_EQ(DecodeText(R"(E:\\Public\\s1.stp)"), R"(E:\Public\s1.stp)");
}

TEST(Part21Text, ReadsEscapesOfAllWidths) {
    EXPECT_EQ(DecodeText(R"(unbet\X\E4tigt)"), "unbetätigt");
    EXPECT_EQ(DecodeText(R"(\X2\04420435043304300020\X0\x)"), "тега x");
    EXPECT_EQ(DecodeText(R"(\X4\0001F529\X0\)"), "🔩");
    EXPECT_EQ(DecodeText(R"(\S\d)"), "ä");
    EXPECT_EQ(DecodeText(R"(\PE\\S\0\PA\\S\d)"), "Аä");
    EXPECT_EQ(DecodeText(R"(a\N\b\F\c)"), "abc");
}

TEST(Part21Text, JoinsSurrogatePairs) {
    EXPECT_EQ(DecodeText(R"(\X2\D83DDD29\X0\)"), "🔩");
    EXPECT_EQ(DecodeText(R"(\X2\D83D0041\X0\)"),
              "\xef\xbf\xbd"
              "A");
    EXPECT_EQ(DecodeText(R"(\X2\D83D\X0\)"), "\xef\xbf\xbd");
}

TEST(Part21Text, LeavesOutLineBreaksAlsoInsideEscapes) {
    EXPECT_EQ(DecodeText("unbet\\X\\E4tig\nt"), "unbetätigt");
    EXPECT_EQ(DecodeText("unbet\\X\\E\r\n4tigt"), "unbetätigt");
    EXPECT_EQ(DecodeText("\\X2\\00\n E4\\X0\\"), R"(\X2\00 E4\X0\)") << "a blank is no hex digit";
}

TEST(Part21Text, KeepsBrokenEscapes) {
    for (const char* text : {R"(\X\G1)", R"(\X\)", R"(\X2\)", R"(\Q\)", R"(\)", R"(\S\)", R"(\PZ\)"})
        EXPECT_EQ(DecodeText(text), text);
}

TEST(Part21Text, TakesRawBytesAsUtf8IfTheyAreAndElseAsLatin1) {
    EXPECT_EQ(DecodeText("Rändel"), "Rändel");
    EXPECT_EQ(DecodeText("R\xe4ndel"), "Rändel");
    EXPECT_EQ(DecodeText("10 \x80"), "10 €");
}

TEST(Part21Text, KnowsValidUtf8) {
    EXPECT_TRUE(qn::step::IsUtf8("aä€🔩"));
    for (const char* text :
         {"\xc0\x80", "\xed\xa0\x80", "\xf5\x80\x80\x80", "\xe2\x82", "\x80", "\xf0\x80\x80\x80"})
        EXPECT_FALSE(qn::step::IsUtf8(text)) << text;
}

}  // namespace
