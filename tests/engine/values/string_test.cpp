#include "frame/host/string.h"
#include "engine/values/utf8.h"
#include "tests/engine/values/flat_stream.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <string>

namespace qn {
namespace {

String Text(const wchar_t* text) {
    return String(text);
}

TEST(String, IsEmptyWithoutText) {
    EXPECT_TRUE(String().IsEmpty());
    EXPECT_TRUE(String(L"").IsEmpty());
    EXPECT_TRUE(String(static_cast<const wchar_t*>(nullptr)).IsEmpty());
    EXPECT_FALSE(String(L"a").IsEmpty());
    EXPECT_TRUE(String(L"a").NonEmpty());
    EXPECT_STREQ(String().c_str(), L"");
}

TEST(String, CopiesShareOneBody) {
    const String first(L"part");
    const String second(first);
    EXPECT_EQ(first.c_str(), second.c_str());
}

TEST(String, ChangingACopyLeavesTheOriginal) {
    const String first(L"part");
    String second(first);
    second.Add(L'!');
    EXPECT_EQ(first, Text(L"part"));
    EXPECT_EQ(second, Text(L"part!"));
}

TEST(String, GrowsAtItsEndWhileHashAndNarrowFormFollow) {
    String text(L"a");
    const std::size_t before = text.Hash();
    EXPECT_STREQ(text.Utf8CStr(), "a");
    text.Add(L'\x00e9');
    text.Add(L'c');
    EXPECT_NE(text.Hash(), before);
    EXPECT_EQ(text.Hash(), Text(L"a\x00e9"
                                L"c")
                               .Hash());
    EXPECT_STREQ(text.Utf8CStr(),
                 "a\xc3\xa9"
                 "c");
}

TEST(String, CanBeAddedToItself) {
    String text(L"ab");
    text.Add(text);
    text.Add(text);
    EXPECT_EQ(text, Text(L"abababab"));
}

TEST(String, TakesAsManyCharactersAsToldAndKeepsZeros) {
    EXPECT_EQ(String(L"abcdef", 3), Text(L"abc"));
    EXPECT_EQ(String(L"abc", -1), Text(L"abc"));
    EXPECT_EQ(String(L"a\0b", 3).Length(), 3);
    String text(L"old");
    text.Set(L"newer", 3);
    EXPECT_EQ(text, Text(L"new"));
}

TEST(String, GivesCharactersByIndexAndZeroOutside) {
    const String text(L"ab");
    EXPECT_EQ(text.At(1), L'b');
    EXPECT_EQ(text.At(2), L'\0');
    EXPECT_EQ(text.At(-1), L'\0');
    EXPECT_EQ(String().At(0), L'\0');
}

TEST(String, SubStringIsClippedToTheText) {
    const String text(L"abcdef");
    EXPECT_EQ(text.SubString(2, 3), Text(L"cde"));
    EXPECT_EQ(text.SubString(4), Text(L"ef"));
    EXPECT_EQ(text.SubString(4, 10), Text(L"ef"));
    EXPECT_EQ(text.SubString(9), String());
    EXPECT_EQ(text.SubString(-3, 2), Text(L"ab"));
    EXPECT_EQ(text.SubString(0), text);
}

TEST(String, GetCopiesWhatFitsWithATerminator) {
    wchar_t buffer[4] = {L'x', L'x', L'x', L'x'};
    EXPECT_EQ(String(L"abcdef").Get(buffer, 4), buffer);
    EXPECT_STREQ(buffer, L"abc");
    String(L"zz").Get(buffer, 0);
    EXPECT_STREQ(buffer, L"abc");
    EXPECT_EQ(String(L"a").Get(nullptr, 4), nullptr);
    String().Get(buffer, 4);
    EXPECT_STREQ(buffer, L"");
}

TEST(String, AddsASlashOnlyWhereOneIsMissing) {
    String folder(L"a/b"), ended(L"a/"), windows(L"a\\"), empty;
    for (String* text : {&folder, &ended, &windows, &empty})
        text->AddSlash();
    EXPECT_EQ(folder, Text(L"a/b/"));
    EXPECT_EQ(ended, Text(L"a/"));
    EXPECT_EQ(windows, Text(L"a\\"));
    EXPECT_EQ(empty, String());
}

TEST(String, SumsTexts) {
    EXPECT_EQ(Text(L"a") + L"b", Text(L"ab"));
    EXPECT_EQ(String() + L"b", Text(L"b"));
    EXPECT_EQ(Text(L"a") + String(), Text(L"a"));
}

TEST(StringOrder, PutsAPrefixFirst) {
    EXPECT_LT(Text(L"ab").Compare(L"abc"), 0);
    EXPECT_GT(Text(L"b").Compare(L"abc"), 0);
    EXPECT_EQ(Text(L"ab").Compare(L"ab"), 0);
    EXPECT_LT(String(), Text(L"a"));
    EXPECT_LT(Text(L"B"), Text(L"a"));
}

TEST(StringOrder, CountsACharacterAboveTheBasicPlaneAsItsTwoCodeUnits) {
    const String high(L"\U0001F600"), privateUse(L"\xe000"), wide(L"\xffee"), below(L"\xd7ff");
    EXPECT_LT(high, privateUse);
    EXPECT_LT(high, wide);
    EXPECT_GT(high, below);
    EXPECT_LT(high, String(L"\U0001F601"));
    EXPECT_LT(String(L"x\U0010FFFF"), String(L"x\xfb00"));
}

TEST(StringOrder, TellsLoneSurrogatesFromTheCharacterTheyWouldMake) {
    const wchar_t units[] = {static_cast<wchar_t>(0xd83d), static_cast<wchar_t>(0xde00), 0};
    const String lone(units), whole(L"\U0001F600");
    EXPECT_NE(lone, whole);
    EXPECT_LT(whole, lone);
    EXPECT_GT(lone, whole);
}

TEST(StringOrder, IsThatOfTheCodeUnitsForRandomTexts) {
    std::mt19937 random(1);
    const wchar_t letters[] = {L'a', L'b', 0xd7ff, 0xe000, 0xffff, 0x10000, 0x1f600, 0x10ffff};
    const auto make = [&] {
        std::wstring text;
        for (unsigned i = random() % 4; i > 0; --i)
            text += letters[random() % std::size(letters)];
        return text;
    };
    const auto units = [](const std::wstring& text) {
        std::u16string result;
        for (const wchar_t letter : text) {
            const auto code = static_cast<std::uint32_t>(letter);
            if (code < 0x10000) {
                result += static_cast<char16_t>(code);
            } else {
                result += static_cast<char16_t>(0xd800 + ((code - 0x10000) >> 10));
                result += static_cast<char16_t>(0xdc00 + ((code - 0x10000) & 0x3ff));
            }
        }
        return result;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::wstring left = make(), right = make();
        const int order = units(left).compare(units(right));
        const int got = String(left).Compare(String(right));
        EXPECT_EQ(order < 0, got < 0);
        EXPECT_EQ(order > 0, got > 0);
    }
}

TEST(StringHash, AgreesForEqualTexts) {
    EXPECT_EQ(Text(L"wheel").Hash(), String(std::wstring(L"wheel")).Hash());
    EXPECT_NE(Text(L"wheel").Hash(), Text(L"wheels").Hash());
    EXPECT_EQ(String().Hash(), String(L"").Hash());
}

TEST(StringUtf8, GoesThereAndBack) {
    const char* narrow =
        "Gr\xc3\xb6\xc3\x9f"
        "e \xe8\xbb\x8a\xf0\x9f\x98\x80";
    const String wide = String::FromUtf8(narrow);
    EXPECT_EQ(wide, Text(L"Gr\x00f6\x00df"
                         L"e \x8eca\U0001F600"));
    EXPECT_EQ(wide.ToUtf8(), narrow);
    EXPECT_STREQ(wide.Utf8CStr(), narrow);
    EXPECT_EQ(wide.Utf8CStr(), String(wide).Utf8CStr());
}

const struct {
    const char* bytes;
    std::size_t replaced;
} kDamaged[] = {
    {"\x80", 1},              // continuation alone
    {"\xc3", 1},              // cut
    {"\xc0\xaf", 2},          // overlong
    {"\xe0\x80\x80", 3},      // overlong
    {"\xed\xa0\x80", 3},      // surrogate
    {"\xe8\xbb", 1},          // cut after two good bytes
    {"\xf0\x9f\x98", 1},      // cut after three good bytes
    {"\xf4\x90\x80\x80", 4},  // above U+10FFFF
    {"\xff", 1},
};

TEST(StringUtf8, ReplacesDamagedSequences) {
    for (const auto& [bytes, replaced] : kDamaged) {
        const String text = String::FromUtf8(std::string("a") + bytes + "b");
        ASSERT_EQ(text.Length(), static_cast<int>(replaced) + 2) << replaced;
        for (std::size_t i = 0; i < replaced; ++i)
            EXPECT_EQ(text.At(static_cast<int>(i) + 1), 0xfffd);
        EXPECT_EQ(text.At(text.Length() - 1), L'b');
    }
}

TEST(StringUtf8, ReplacesWhatCannotBeEncoded) {
    const wchar_t wide[] = {L'a', static_cast<wchar_t>(0xd800), static_cast<wchar_t>(0x110000), 0};
    EXPECT_EQ(String(wide).ToUtf8(), "a\xef\xbf\xbd\xef\xbf\xbd");
}

TEST(StringUtf8, CountsWhatItWrites) {
    std::mt19937 random(2);
    for (int i = 0; i < 2000; ++i) {
        std::string bytes;
        for (unsigned n = random() % 12; n > 0; --n)
            bytes += static_cast<char>(random() % 256);
        std::wstring wide(bytes.size(), 0);
        wide.resize(utf8::Decode(bytes, wide.data()));
        EXPECT_EQ(wide.size(), utf8::CountCharacters(bytes));
        std::string again(utf8::CountBytes(wide), 0);
        EXPECT_EQ(utf8::Encode(wide, again.data()), again.size());
        EXPECT_EQ(String::FromUtf8(again).View(), std::wstring_view(wide));
    }
}

TEST(StringArg, FillsAllOccurrencesOfTheLowestMarker) {
    EXPECT_EQ(Text(L"%2 of %1, %1").Arg(L"x"), Text(L"%2 of x, x"));
    EXPECT_EQ(Text(L"%12 %3").Arg(L"x"), Text(L"%12 x"));
    EXPECT_EQ(Text(L"%1%2").Arg(L"a").Arg(L"b"), Text(L"ab"));
    EXPECT_EQ(Text(L"%99").Arg(L"z"), Text(L"z"));
    EXPECT_EQ(Text(L"%123").Arg(L"z"), Text(L"z3"));
}

TEST(StringArg, HitsAMarkerThatAnEarlierFillingBrought) {
    EXPECT_EQ(Text(L"%1 and %2").Arg(L"bolt %2").Arg(L"nut"), Text(L"bolt nut and nut"));
}

TEST(StringArg, LeavesATextWithoutMarkerAsItIs) {
    for (const wchar_t* text : {L"", L"none", L"100%", L"%0 %x %%"})
        EXPECT_EQ(Text(text).Arg(L"x"), Text(text));
}

TEST(StringArg, PadsOnTheLeftForAPositiveWidthAndOnTheRightForANegativeOne) {
    EXPECT_EQ(Text(L"[%1]").Arg(L"ab", 4), Text(L"[  ab]"));
    EXPECT_EQ(Text(L"[%1]").Arg(L"ab", -4, L'.'), Text(L"[ab..]"));
    EXPECT_EQ(Text(L"[%1]").Arg(L"abcde", 4), Text(L"[abcde]"));
}

TEST(StringArg, WritesNumbersInBaseTenWithoutPadding) {
    EXPECT_EQ(Text(L"%1").Arg(std::int64_t{-42}), Text(L"-42"));
    EXPECT_EQ(Text(L"%1").Arg(7, 3, L'0'), Text(L"007"));
    EXPECT_EQ(Text(L"%1").Arg(INT64_MIN), Text(L"-9223372036854775808"));
}

TEST(StringBuffer, AddsAFinalSlashIfThereIsRoom) {
    wchar_t path[5] = L"ab";
    AddSlash(path, 5);
    EXPECT_STREQ(path, L"ab/");
    AddSlash(path, 5);
    EXPECT_STREQ(path, L"ab/");
    wchar_t full[3] = L"ab";
    AddSlash(full, 3);
    EXPECT_STREQ(full, L"ab");
    wchar_t empty[3] = L"";
    AddSlash(empty, 3);
    EXPECT_STREQ(empty, L"");
}

TEST(StringBuffer, AppendsWhatFits) {
    wchar_t buffer[6] = L"abc";
    k3strcat(buffer, L"defgh", 6);
    EXPECT_STREQ(buffer, L"abcde");
    k3strcat(buffer, L"x", 6);
    EXPECT_STREQ(buffer, L"abcde");
}

TEST(StringStream, KeepsItsTextAndIgnoresTheNumber) {
    const auto stream = Make<test::FlatStream>();
    const String text(L"\x8eca \U0001F600");
    EXPECT_TRUE(text.Save(stream.Get(), 0x1234));
    EXPECT_TRUE(String().Save(stream.Get()));
    stream->Rewind();
    String first, second(L"old");
    EXPECT_TRUE(first.Load(stream.Get()));
    EXPECT_TRUE(second.Load(stream.Get()));
    EXPECT_EQ(first, text);
    EXPECT_EQ(second, String());
}

TEST(StringStream, RefusesALengthBeyondTheStream) {
    const auto stream = Make<test::FlatStream>();
    stream->WriteInt(0x7fffffff);
    stream->WriteData("abc", 1, 3);
    stream->Rewind();
    String text(L"old");
    EXPECT_FALSE(text.Load(stream.Get()));
    EXPECT_EQ(text, String());
    EXPECT_TRUE(stream->HasFailed());
}

TEST(StringStream, FailsAtEveryLengthOfACutText) {
    const auto whole = Make<test::FlatStream>();
    String(L"wheel").Save(whole.Get());
    for (std::size_t size = 0; size < whole->bytes.size(); ++size) {
        const auto cut = Make<test::FlatStream>();
        cut->bytes = whole->bytes.substr(0, size);
        cut->Rewind();
        String text;
        EXPECT_FALSE(text.Load(cut.Get())) << size;
    }
}

}  // namespace
}  // namespace qn
