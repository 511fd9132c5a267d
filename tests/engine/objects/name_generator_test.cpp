#include "frame/host/name_generator.h"

#include <gtest/gtest.h>

namespace qn::qfxml {
namespace {

NameGenerator Make() {
    NameGenerator generator;
    generator.SetCurrentDelimiter(L"_");
    return generator;
}

TEST(NameGenerator, CountsFromOneForEachFamily) {
    NameGenerator generator = Make();
    EXPECT_EQ(generator.GetNext(L"e"), L"e1");
    EXPECT_EQ(generator.GetNext(L"e"), L"e2");
    EXPECT_EQ(generator.GetNext(L"n"), L"n1");
}

TEST(NameGenerator, CountsFromOneForEachPrefix) {
    NameGenerator generator = Make();
    generator.GetNext(L"e");
    generator.PushPrefix(L"e1");
    EXPECT_EQ(generator.GetNext(L"e"), L"e1_e1");
    EXPECT_EQ(generator.GetNext(L"n"), L"e1_n1");
}

TEST(NameGenerator, TakesAPushedTextAsItIs) {
    NameGenerator generator = Make();
    generator.PushPrefix(L"a");
    generator.PushPrefix(L"b");
    EXPECT_EQ(generator.GetCurrentPrefix(), L"b");
    EXPECT_EQ(generator.GetNext(L"n"), L"b_n1");
}

TEST(NameGenerator, KeepsCountersWhenAPrefixIsPopped) {
    NameGenerator generator = Make();
    generator.PushPrefix(L"a");
    generator.GetNext(L"n");
    generator.PopPrefix();
    EXPECT_EQ(generator.GetCurrentPrefix(), L"");
    generator.PushPrefix(L"a");
    EXPECT_EQ(generator.GetNext(L"n"), L"a_n2");
}

TEST(NameGenerator, PopsNothingWithoutAPrefix) {
    NameGenerator generator = Make();
    generator.PopPrefix();
    EXPECT_EQ(generator.GetNext(L"n"), L"n1");
}

TEST(NameGenerator, TakesAnEmptyPrefixForNone) {
    NameGenerator generator = Make();
    generator.PushPrefix(L"");
    EXPECT_EQ(generator.GetNext(L"n"), L"n1");
}

TEST(NameGenerator, ForgetsCountersAndPrefixesButNotTheDelimiterOnReset) {
    NameGenerator generator = Make();
    generator.PushPrefix(L"a");
    generator.GetNext(L"n");
    generator.Reset();
    EXPECT_EQ(generator.GetCurrentPrefix(), L"");
    generator.PushPrefix(L"a");
    EXPECT_EQ(generator.GetNext(L"n"), L"a_n1");
}

}  // namespace
}  // namespace qn::qfxml
