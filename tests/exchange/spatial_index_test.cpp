#include "exchange/spatial_index.h"

#include "tests/exchange/exchange_support.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace qn::test {
namespace {

using exchange::FormatSpatialIndex;
using exchange::ParseSpatialIndex;
using exchange::ReadProblem;
using exchange::SpatialIndex;

const std::string kHeader = "assembly-spatial-index 1\n";

SpatialIndex Parsed(const std::string& text) {
    SpatialIndex index;
    ReadProblem problem;
    EXPECT_TRUE(ParseSpatialIndex(text, index, problem)) << problem.reason.ToUtf8();
    return index;
}

std::string Refusal(const std::string& text) {
    SpatialIndex index;
    ReadProblem problem;
    EXPECT_FALSE(ParseSpatialIndex(text, index, problem)) << text;
    EXPECT_TRUE(index.entries.empty());
    return problem.reason.ToUtf8();
}

TEST(SpatialIndex, ReadsBoxesWithIdAndPath) {
    const SpatialIndex index = Parsed(
        kHeader + "# a comment\nmargin 2.5\n\n0\t-1\t2e0\t3\t4\t5\tn:a\ts:a\r\n0\t0\t0\t1\t1\t1\t\ts:b");
    EXPECT_EQ(index.margin, 2.5);
    ASSERT_EQ(index.entries.size(), 2u);
    EXPECT_EQ(index.entries[0].box.min[1], -1);
    EXPECT_EQ(index.entries[0].box.max[2], 5);
    EXPECT_EQ(index.entries[0].id, String(L"n:a"));
    EXPECT_EQ(index.entries[0].path, String(L"s:a"));
    EXPECT_TRUE(index.entries[1].id.IsEmpty());
}

TEST(SpatialIndex, IsRefusedWithTheLine) {
    const std::pair<std::string, const char*> kTexts[] = {
        {"", "line 1"},
        {"something\n", "line 1"},
        {kHeader + "0\t0\t0\t1\t1\tx\ta", "line 2"},
        {kHeader + "0\t0\t0\t1\t1\t1\t\t", "line 2"},
        {kHeader + "#\n0\t0\t0\t1\t1\t-1\ta", "line 3"},
        {kHeader + "0\t0\t0\t1\t1\tnan\ta", "line 2"},
        {kHeader + "0\t0\t0\t1\t1\tinf\ta", "line 2"},
        {kHeader + "margin -1", "line 2"},
        {kHeader + "margin much", "line 2"},
    };
    for (const auto& [text, line] : kTexts)
        EXPECT_EQ(Refusal(text).rfind(line, 0), 0u) << Refusal(text);
}

TEST(SpatialIndex, RefusesAnEndlessIdAsALimit) {
    SpatialIndex index;
    ReadProblem problem;
    EXPECT_FALSE(ParseSpatialIndex(kHeader + "0\t0\t0\t1\t1\t1\t" + std::string(5000, 'x'), index, problem));
    EXPECT_TRUE(problem.isLimit);
}

TEST(SpatialIndex, WritesWhatItReads) {
    const std::string text = FormatSpatialIndex(Parsed(kHeader + "margin 1\n0.1\t0\t0\t1\t1\t1\tа\tb\n"));
    EXPECT_EQ(FormatSpatialIndex(Parsed(text)), text);
}

TEST(SpatialIndex, MeasuresEveryNodeWithAMeshInScenePlace) {
    const auto scene = SceneOf(Car().Shape());
    const SpatialIndex index = exchange::IndexOf(*scene);
    ASSERT_EQ(index.entries.size(), 5u) << "the chassis and four tyres";
    EXPECT_EQ(index.entries[0].id, String(L"n:chassis.1"));
    EXPECT_EQ(index.entries[0].path, String(L"s:chassis.1"));
    EXPECT_EQ(index.entries[0].box.min[0], 1);
    EXPECT_EQ(index.entries[0].box.max[0], 2);
    EXPECT_EQ(index.entries[1].box.min[0], 3) << "second child of the car, first of the wheel";
}

TEST(SpatialIndex, PassesOverIdsThatALineCannotHold) {
    const auto scene = SceneOf(AssemblyBuilder("part").Shape());
    k3::Node* node = FindNode(*scene, "part");
    node->SetParamVar(Param::kBsId, Var(L"a\tb"));
    EXPECT_TRUE(exchange::IndexOf(*scene).entries.at(0).path.IsEmpty());
    node->DeleteParam(Param::kInstance);
    EXPECT_TRUE(exchange::IndexOf(*scene).entries.empty());
}

TEST(SpatialIndex, MeasuresADeepChainWithoutRecursion) {
    const auto scene = SceneOf(DeepShape(10'000));
    const SpatialIndex index = exchange::IndexOf(*scene);
    ASSERT_EQ(index.entries.size(), 1u);
    EXPECT_EQ(index.entries[0].box.min[0], 9'999);
}

TEST(SpatialIndex, PassesOverMeshesWithoutFiniteSize) {
    const auto scene = SceneOf(AssemblyBuilder("part").Shape());
    const auto mesh = Make<k3::Mesh>();
    const float endless = std::numeric_limits<float>::infinity();
    mesh->SetGeometry({0, 0, 0, endless, 0, 0, 0, 1, 0}, {}, {0, 1, 2}, {{0, 3, 0}});
    FindNode(*scene, "part")->SetObject(mesh.Get());
    EXPECT_TRUE(exchange::IndexOf(*scene).entries.empty());
}

}  // namespace
}  // namespace qn::test
