#include "graph/text_index.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace qn::test {

namespace {

String Numbered(int number) {
    String text;
    text.Format(L"n%d", number);
    return text;
}

}  // namespace

TEST(TextIndex, AFreshOneIsEmpty) {
    const graph::TextIndex<int> index;
    EXPECT_TRUE(index.empty());
    EXPECT_EQ(index.find(L"a"), index.end());
    EXPECT_EQ(index.count(String()), 0u);
}

TEST(TextIndex, FindsWhatWasEntered) {
    graph::TextIndex<int> index;
    index[L"a"] = 1;
    index[String()] = 2;
    EXPECT_EQ(index.at(L"a"), 1);
    EXPECT_EQ(index.find(String())->second, 2);
    EXPECT_EQ(index.find(L"b"), index.end());
    EXPECT_THROW(index.at(L"b"), std::out_of_range);
    EXPECT_EQ(index.size(), 2u);
}

TEST(TextIndex, AnEqualTextIsTheSameEntry) {
    graph::TextIndex<int> index;
    EXPECT_TRUE(index.try_emplace(L"a").second);
    index[L"a"] = 1;
    const auto [entry, isNew] = index.try_emplace(String(std::wstring(1, L'a')));
    EXPECT_FALSE(isNew);
    EXPECT_EQ(entry->second, 1);
}

TEST(TextIndex, KeepsManyApart) {
    constexpr int kCount = 100'000;
    graph::TextIndex<int> index;
    for (int i = 0; i < kCount; ++i)
        index[Numbered(i)] = i;
    for (int i = 0; i < kCount; ++i)
        ASSERT_EQ(index.at(Numbered(i)), i);
    EXPECT_EQ(index.find(Numbered(kCount)), index.end());
    index.clear();
    EXPECT_TRUE(index.empty());
    EXPECT_EQ(index.find(Numbered(0)), index.end());
    index[L"a"] = 1;
    EXPECT_EQ(index.size(), 1u);
}

TEST(TextIndex, ForgetsOnlyWhatIsErased) {
    std::mt19937 random(7);
    graph::TextIndex<int> index;
    std::map<int, int> expected;
    for (int step = 0; step < 20'000; ++step) {
        const int number = static_cast<int>(random() % 500);
        if (random() % 2) {
            index[Numbered(number)] = step;
            expected[number] = step;
        } else if (auto* entry = index.find(Numbered(number))) {
            index.erase(entry);
            EXPECT_EQ(expected.erase(number), 1u);
        }
    }
    EXPECT_EQ(index.size(), expected.size());
    for (int number = 0; number < 500; ++number) {
        const auto* entry = index.find(Numbered(number));
        ASSERT_EQ(entry != nullptr, expected.count(number) == 1);
        if (entry) {
            EXPECT_EQ(entry->second, expected[number]);
        }
    }
}

}  // namespace qn::test
