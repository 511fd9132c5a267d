#include "exchange/context_query.h"

#include "frame/host/collections.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace qn::exchange {
namespace {

using testing::ElementsAre;

std::vector<std::string> Texts(const std::vector<String>& values) {
    std::vector<std::string> texts;
    for (const String& value : values)
        texts.push_back(value.ToUtf8());
    return texts;
}

ContextQuery Parsed(const std::string& text) {
    ContextQuery query;
    ReadProblem problem;
    EXPECT_TRUE(ParseContextQuery(text, query, problem)) << problem.reason.ToUtf8();
    return query;
}

/// The reason for which a text is refused.
std::string Refusal(const std::string& text) {
    ContextQuery query;
    query.ids.emplace_back(L"old");
    ReadProblem problem;
    EXPECT_FALSE(ParseContextQuery(text, query, problem)) << text;
    EXPECT_TRUE(query.IsEmpty()) << "nothing is left of a refused query";
    return problem.reason.ToUtf8();
}

TEST(ContextQuery, ReadsPathsAndIdsInOrder) {
    const ContextQuery query = Parsed(
        "<VisualContextQuery version='1'><Paths><Path value='p2'/><Path value='p1'/></Paths>"
        "<Ids><Id value='a/b|c'/></Ids></VisualContextQuery>");
    EXPECT_THAT(Texts(query.paths), ElementsAre("p2", "p1"));
    EXPECT_THAT(Texts(query.ids), ElementsAre("a/b|c"));
}

TEST(ContextQuery, KeepsTheFirstOfDoubles) {
    const ContextQuery query = Parsed(
        "<VisualContextQuery><Ids><Id value='a'/><Id value='b'/></Ids><Ids><Id value='a'/></Ids>"
        "</VisualContextQuery>");
    EXPECT_THAT(Texts(query.ids), ElementsAre("a", "b"));
}

TEST(ContextQuery, PassesOverElementsOfLaterVersions) {
    const ContextQuery query = Parsed(
        "<q:VisualContextQuery xmlns:q='urn:x'><Future/><q:Ids><Id value='a'/><Other value='b'/></q:Ids>"
        "</q:VisualContextQuery>");
    EXPECT_THAT(Texts(query.ids), ElementsAre("a"));
}

TEST(ContextQuery, MayBeEmpty) {
    EXPECT_TRUE(Parsed("<VisualContextQuery/>").IsEmpty());
}

TEST(ContextQuery, IsRefusedWithTheReason) {
    const std::pair<const char*, const char*> kTexts[] = {
        {"", "byte"},
        {"<VisualContextQuery>", "byte"},
        {"<VisualContextQuery/><VisualContextQuery/>", "root"},
        {"<Query/>", "Query"},
        {"<VisualContextQuery version='2'/>", "2"},
        {"<VisualContextQuery><Ids><Id value='a&#9;'/></Ids></VisualContextQuery>", "control"},
        {"<VisualContextQuery><Ids><Id/></Ids></VisualContextQuery>", "Id"},
        {"<VisualContextQuery><Paths><Path value=''/></Paths></VisualContextQuery>", "Path"},
    };
    for (const auto& [text, part] : kTexts)
        EXPECT_NE(Refusal(text).find(part), std::string::npos) << text << ": " << Refusal(text);
}

TEST(ContextQuery, RefusesAnEndlessIdAsALimit) {
    const std::string text =
        "<VisualContextQuery><Ids><Id value='" + std::string(5000, 'x') + "'/></Ids></VisualContextQuery>";
    ContextQuery query;
    ReadProblem problem;
    EXPECT_FALSE(ParseContextQuery(text, query, problem));
    EXPECT_TRUE(problem.isLimit);
}

TEST(ContextQuery, SurvivesDepthAndEntitiesThatWouldGrow) {
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "<Ids>";
    EXPECT_FALSE(Refusal(deep).empty());
    std::string closed = "<VisualContextQuery>" + deep;
    for (int i = 0; i < 100'000; ++i)
        closed += "</Ids>";
    EXPECT_TRUE(Parsed(closed + "</VisualContextQuery>").IsEmpty());
    const ContextQuery query = Parsed(
        "<!DOCTYPE x [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;'>]>"
        "<VisualContextQuery><Ids><Id value='&b;'/></Ids></VisualContextQuery>");
    EXPECT_THAT(Texts(query.ids), ElementsAre("&b;")) << "entities are not expanded";
}

TEST(ContextQuery, WritesWhatItReads) {
    ContextQuery query;
    query.paths = {L"s1:ab", L"größe <&>\"'", L"a b"};
    query.ids = {L"x/y|z"};
    const ContextQuery again = Parsed(FormatContextQuery(query));
    EXPECT_EQ(again.paths, query.paths);
    EXPECT_EQ(again.ids, query.ids);
}

TEST(ContextQuery, BecomesAMapOfPathsAndAMapOfIds) {
    ContextQuery query;
    query.paths = {L"p"};
    query.ids = {L"a", L"b"};
    const Var filter = FilterOf(query);
    ASSERT_TRUE(filter.IsMap());
    EXPECT_EQ(filter.Lookup(0)->size(), 1);
    EXPECT_NE(filter.Lookup(0)->Lookup(L"p"), nullptr);
    EXPECT_EQ(filter.Lookup(1)->size(), 2);
    EXPECT_NE(filter.Lookup(1)->Lookup(L"b"), nullptr);
}

}  // namespace
}  // namespace qn::exchange
