#include "frame/host/string.h"

#include <gtest/gtest.h>
#include <cstdarg>
#include <limits>

namespace qn {
namespace {

template <class... Args>
String Formatted(const wchar_t* pattern, Args... arguments) {
    String text;
    text.Format(pattern, arguments...);
    return text;
}

int Print(wchar_t* buffer, int size, const wchar_t* pattern, ...) {
    va_list arguments;
    va_start(arguments, pattern);
    const int length = k3vsprintf(buffer, size, pattern, arguments);
    va_end(arguments);
    return length;
}

TEST(Format, TakesWideTextForSmallAndNarrowForLargeS) {
    EXPECT_EQ(Formatted(L"<%s|%S>",
                        L"w\x00e9"
                        L"it",
                        "\xc3\xa9ng"),
              String(L"<w\x00e9"
                     L"it|\x00e9ng>"));
    EXPECT_EQ(Formatted(L"%ls %hs", L"a", "b"), String(L"a b"));
}

TEST(Format, PadsAndCutsTexts) {
    EXPECT_EQ(Formatted(L"[%5s][%-5s][%.2s][%*s]", L"ab", L"cd", L"efgh", 3, L"i"),
              String(L"[   ab][cd   ][ef][  i]"));
    const wchar_t open[2] = {L'x', L'y'};
    EXPECT_EQ(Formatted(L"%.2s", open), String(L"xy"));
}

TEST(Format, WritesANullTextAsAWord) {
    EXPECT_EQ(Formatted(L"%s", static_cast<const wchar_t*>(nullptr)), String(L"(null)"));
    EXPECT_EQ(Formatted(L"%S", static_cast<const char*>(nullptr)), String(L"(null)"));
}

TEST(Format, WritesIntegersWithSignsWidthsAndZeros) {
    EXPECT_EQ(Formatted(L"%d %i %+d % d", -7, 7, 7, 7), String(L"-7 7 +7  7"));
    EXPECT_EQ(Formatted(L"%04d%02d%02d", 2001, 2, 3), String(L"20010203"));
    EXPECT_EQ(Formatted(L"[%5d|%-5d|%05d|%.3d]", 42, 42, -42, 7), String(L"[   42|42   |-0042|007]"));
    EXPECT_EQ(Formatted(L"%u %d", 0xffffffffu, std::numeric_limits<int>::min()),
              String(L"4294967295 -2147483648"));
}

TEST(Format, WritesHexadecimalAndOctal) {
    EXPECT_EQ(Formatted(L"%x %X %#x %08x %o", 255, 255, 255, 0xbeef, 8), String(L"ff FF 0xff 0000beef 10"));
}

TEST(Format, KnowsTheLengthsOfIntegers) {
    EXPECT_EQ(Formatted(L"%ld %lld %I64d %zu", -1L, 1LL << 40, 1LL << 41, std::size_t{5}),
              String(L"-1 1099511627776 2199023255552 5"));
    EXPECT_EQ(Formatted(L"%hhd %hu", 300, 70000), String(L"44 4464"));
}

TEST(Format, WritesRealNumbersTheSameInEveryLocale) {
    EXPECT_EQ(Formatted(L"%f %.2f %g %e", 1.5, -0.125, 0.0001, 12345.678),
              String(L"1.500000 -0.12 0.0001 1.234568e+04"));
    EXPECT_EQ(Formatted(L"[%8.3f|%-8.3f|%08.3f|%+.0f]", 3.14159, 3.14159, -3.14159, 2.0),
              String(L"[   3.142|3.142   |-003.142|+2]"));
    EXPECT_EQ(Formatted(L"%g %G", std::numeric_limits<double>::infinity(), 1e-10), String(L"inf 1E-10"));
    EXPECT_EQ(Formatted(L"%.0f", 1e308).Length(), 309);
}

TEST(Format, WritesCharactersAndAddresses) {
    EXPECT_EQ(Formatted(L"%c%c", L'a', L'\x8eca'), String(L"a\x8eca"));
    EXPECT_EQ(Formatted(L"%p", reinterpret_cast<void*>(0x1234)), String(L"0x1234"));
}

TEST(Format, PassesUnknownConversionsAsTheyStand) {
    EXPECT_EQ(Formatted(L"100%% %q %"), String(L"100% %q %"));
}

TEST(Format, MayTakeItsOwnTextAsArgument) {
    String text(L"a");
    text.Format(L"%s%s", text.c_str(), text.c_str());
    text.AppendFormat(L"-%s", text.c_str());
    EXPECT_EQ(text, String(L"aa-aa"));
}

TEST(Format, CutsAtTheBufferAndGivesTheFullLength) {
    wchar_t buffer[4] = L"???";
    EXPECT_EQ(Print(buffer, 4, L"%d", 12345), 5);
    EXPECT_STREQ(buffer, L"123");
    EXPECT_EQ(Print(nullptr, 0, L"%s", L"abc"), 3);
    EXPECT_EQ(Print(buffer, 0, L"x"), 1);
    EXPECT_STREQ(buffer, L"123");
}

}  // namespace
}  // namespace qn
