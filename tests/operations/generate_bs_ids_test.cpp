#include "frame/host/guid.h"
#include "operations/generated_id.h"
#include "tests/operations/operations_support.h"

#include <algorithm>
#include <string>

namespace qn::test {
namespace {

/// Ids that come again in every run of a test.
class GenerateBsIds : public OperationTest {
protected:
    void SetUp() override { SeedGuids(7); }
    void TearDown() override { SeedGuids(0); }

    static std::string EntityId(const k3::Node* node) {
        return Utf8(ReferenceOf(node)->GetProperty(kBsId, 0));
    }
    static std::string NodeId(const k3::Node* node) { return Utf8(InstanceOf(node)->GetProperty(kBsId, 0)); }
    static std::string SelectorId(const k3::Node* node) { return Utf8(node->GetParamVar(Param::kBsId)); }
};

/// The digits of an id as a text with hyphens, as a `Guid` writes itself.
std::string WithoutHyphens(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '-'), text.end());
    return text;
}

TEST_F(GenerateBsIds, WritesTheDigitsOfANewGuidBetweenPrefixAndSuffix) {
    const std::string id = graph::GenerateId({L"<", L">"}).ToUtf8();
    SeedGuids(7);
    EXPECT_EQ(id, "<" + WithoutHyphens(Guid::Create().ToText().ToUtf8()) + ">");
    EXPECT_EQ(id.size(), 34u);
}

TEST_F(GenerateBsIds, GivesEachLayerThatIsNamedAnIdOfItsOwn) {
    const k3::Node* const node = AddUse("a");
    operation->GenerateBsIds(scene.Get(), 7, L"p:", L":q");
    for (const std::string& id : {EntityId(node), NodeId(node), SelectorId(node)}) {
        EXPECT_EQ(id.size(), 36u);
        EXPECT_EQ(id.substr(0, 2), "p:");
        EXPECT_EQ(id.substr(34), ":q");
    }
    EXPECT_NE(EntityId(node), NodeId(node));
    EXPECT_NE(NodeId(node), SelectorId(node));
}

TEST_F(GenerateBsIds, LeavesTheLayersThatAreNot) {
    const k3::Node* const node = AddUse("a");
    operation->GenerateBsIds(scene.Get(), 1, L"", L"");
    EXPECT_FALSE(EntityId(node).empty());
    EXPECT_EQ(NodeId(node) + SelectorId(node), "");
    operation->GenerateBsIds(scene.Get(), 4, L"", L"");
    EXPECT_EQ(NodeId(node), "");
    EXPECT_FALSE(SelectorId(node).empty());
}

TEST_F(GenerateBsIds, KeepsAnEmptyTextAndAFalse) {
    k3::Node* const node = AddUse("a");
    ReferenceOf(node)->SetProperty(kBsId, Var(""));
    InstanceOf(node)->SetProperty(kBsId, Var(0));
    node->SetParamVar(Param::kBsId, Var(false));
    operation->GenerateBsIds(scene.Get(), 7, L"", L"");
    EXPECT_EQ(EntityId(node), "");
    EXPECT_EQ(NodeId(node), "0");
    EXPECT_EQ(SelectorId(node), "false");
}

TEST_F(GenerateBsIds, GivesTheSceneItselfNone) {
    AddUse("a");
    operation->GenerateBsIds(scene.Get(), 7, L"", L"");
    EXPECT_TRUE(scene->GetParamVar(Param::kBsId).IsEmpty());
}

TEST_F(GenerateBsIds, GivesASharedDefinitionOneId) {
    const auto shared = MakeReference();
    AddUse("a", shared.Get());
    AddUse("b", shared.Get());
    operation->GenerateBsIds(scene.Get(), 1, L"", L"");
    const std::string id = Utf8(shared->GetProperty(kBsId, 0));
    operation->GenerateBsIds(scene.Get(), 1, L"", L"");
    EXPECT_EQ(Utf8(shared->GetProperty(kBsId, 0)), id);
}

TEST_F(GenerateBsIds, GivesNodesWithoutInstanceAnId) {
    const k3::Node* const node = AddNode("plain");
    operation->GenerateBsIds(scene.Get(), 7, L"", L"");
    EXPECT_EQ(SelectorId(node).size(), 32u);
}

TEST_F(GenerateBsIds, GivesInstancesWithoutDefinitionAnId) {
    const k3::Node* const bare = AddBareUse("bare");
    operation->GenerateBsIds(scene.Get(), 7, L"", L"");
    EXPECT_EQ(NodeId(bare).size(), 32u);
    EXPECT_EQ(SelectorId(bare).size(), 32u);
}

TEST_F(GenerateBsIds, ByNumberTakesPrefixAndSuffix) {
    const k3::Node* const node = AddUse("a");
    EXPECT_EQ(Run(7, {{2, Var(true)}, {4, Var("p")}, {5, Var("q")}}), 1);
    EXPECT_EQ(NodeId(node).front(), 'p');
    EXPECT_EQ(NodeId(node).back(), 'q');
    EXPECT_EQ(EntityId(node) + SelectorId(node), "");
}

TEST_F(GenerateBsIds, ByNumberWithoutFlagsMakesNothingAndAnswersZero) {
    const k3::Node* const node = AddUse("a");
    EXPECT_EQ(Run(7, {{4, Var("p")}}), 0);
    EXPECT_EQ(EntityId(node) + NodeId(node) + SelectorId(node), "");
}

TEST_F(GenerateBsIds, ComeAgainWithTheSameSeed) {
    const k3::Node* const node = AddUse("a");
    operation->GenerateBsIds(scene.Get(), 7, L"", L"");
    const std::string ids = EntityId(node) + NodeId(node) + SelectorId(node);
    operation->RemoveIds(scene.Get(), 7);
    SeedGuids(7);
    operation->GenerateBsIds(scene.Get(), 7, L"", L"");
    EXPECT_EQ(EntityId(node) + NodeId(node) + SelectorId(node), ids);
}

TEST(GeneratedIds, AreUniqueOverAMillion) {
    constexpr std::size_t kCount = 1'000'000;
    for (const std::uint64_t seed : {std::uint64_t{0}, std::uint64_t{1}}) {
        SeedGuids(seed);
        std::vector<Guid> ids;
        ids.reserve(kCount);
        for (std::size_t i = 0; i < kCount; ++i)
            ids.push_back(Guid::Create());
        std::sort(ids.begin(), ids.end());
        EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
    }
    SeedGuids(0);
}

}  // namespace
}  // namespace qn::test
