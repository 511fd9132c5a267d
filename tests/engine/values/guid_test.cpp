#include "frame/host/guid.h"

#include <gtest/gtest.h>
#include <set>

namespace qn {
namespace {

const wchar_t kText[] = L"00112233-4455-6677-8899-aabbccddeeff";
const std::array<std::uint8_t, 16> kBytes{0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                          0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};

TEST(Guid, StoresTheFirstThreeGroupsLowByteFirst) {
    Guid id;
    ASSERT_TRUE(Guid::Parse(kText, id));
    EXPECT_EQ(id.Bytes(), kBytes);
    EXPECT_EQ(Guid(kBytes).ToText(), String(kText));
}

TEST(Guid, ReadsBracesAndAnyCase) {
    Guid id;
    EXPECT_TRUE(Guid::Parse(L"{00112233-4455-6677-8899-AABBCCDDEEFF}", id));
    EXPECT_EQ(id, Guid(kBytes));
}

TEST(Guid, IsZeroAfterAnyOtherText) {
    for (const wchar_t* text :
         {L"", L"00112233445566778899aabbccddeeff", L"{00112233-4455-6677-8899-aabbccddeeff",
          L"00112233-4455-6677-8899-aabbccddeefg", L"00112233-4455-6677-8899-aabbccddeef",
          L"00112233-4455-6677-8899-aabbccddeeff ", L"001122334455-6677-8899--aabbccddeeff"}) {
        Guid id(kBytes);
        EXPECT_FALSE(Guid::Parse(text, id)) << String(text).ToUtf8();
        EXPECT_TRUE(id.IsZero());
    }
}

TEST(Guid, CreatesRandomIdsOfVersionFour) {
    std::set<Guid> made;
    for (int i = 0; i < 100; ++i) {
        const Guid id = Guid::Create();
        EXPECT_EQ(id.ToText().At(14), L'4');
        EXPECT_EQ(id.Bytes()[8] & 0xc0, 0x80);
        made.insert(id);
    }
    EXPECT_EQ(made.size(), 100u);
}

TEST(Guid, RepeatsItselfForASeed) {
    SeedGuids(7);
    const Guid first = Guid::Create(), second = Guid::Create();
    SeedGuids(7);
    EXPECT_EQ(Guid::Create(), first);
    EXPECT_EQ(Guid::Create(), second);
    EXPECT_NE(first, second);
    SeedGuids(0);
    EXPECT_NE(Guid::Create(), first);
}

TEST(Guid, ComparesByBytes) {
    Guid low(kBytes), high(kBytes);
    EXPECT_EQ(low.Compare(high), 0);
    auto bytes = kBytes;
    bytes[0] = 0xff;
    high = Guid(bytes);
    EXPECT_LT(low.Compare(high), 0);
    EXPECT_GT(high.Compare(low), 0);
}

}  // namespace
}  // namespace qn
