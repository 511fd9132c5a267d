#include "tests/operations/operations_support.h"

namespace qn::test {
namespace {

class UpdateBsIds : public OperationTest {
protected:
    /// Ids of definition, instance and node; null for none.
    k3::Node* AddWithIds(const char* entity, const char* node, const char* selector,
                         graph::Reference* reference = nullptr) {
        k3::Node* const made = AddUse("use", reference);
        if (entity) ReferenceOf(made)->SetProperty(kBsId, Var(entity));
        if (node) InstanceOf(made)->SetProperty(kBsId, Var(node));
        if (selector) made->SetParamVar(Param::kBsId, Var(selector));
        return made;
    }

    static std::string Ids(const k3::Node* node) {
        return Utf8(ReferenceOf(node)->GetProperty(kBsId, 0)) + " " +
               Utf8(InstanceOf(node)->GetProperty(kBsId, 0)) + " " + Utf8(node->GetParamVar(Param::kBsId));
    }
};

TEST_F(UpdateBsIds, PutsTheTextInFrontOrBehind) {
    const k3::Node* const node = AddWithIds("e", "n", "s");
    operation->UpdateBsIds(scene.Get(), L"x-", 7, true);
    EXPECT_EQ(Ids(node), "x-e x-n x-s");
    operation->UpdateBsIds(scene.Get(), L"-y", 7, false);
    EXPECT_EQ(Ids(node), "x-e-y x-n-y x-s-y");
}

TEST_F(UpdateBsIds, ChangesTheLayersThatAreNamed) {
    const k3::Node* const node = AddWithIds("e", "n", "s");
    operation->UpdateBsIds(scene.Get(), L"x", 1, true);
    EXPECT_EQ(Ids(node), "xe n s");
    operation->UpdateBsIds(scene.Get(), L"x", 2, true);
    EXPECT_EQ(Ids(node), "xe xn s");
    operation->UpdateBsIds(scene.Get(), L"x", 4, true);
    EXPECT_EQ(Ids(node), "xe xn xs");
}

TEST_F(UpdateBsIds, ChangesASharedDefinitionOnce) {
    const auto shared = MakeReference("e");
    const k3::Node* const first = AddWithIds(nullptr, nullptr, nullptr, shared.Get());
    AddWithIds(nullptr, nullptr, nullptr, shared.Get());
    operation->UpdateBsIds(scene.Get(), L"x", 1, true);
    EXPECT_EQ(Ids(first), "xe  ");
}

TEST_F(UpdateBsIds, ChangesEqualIdsOfDifferentInstancesAlike) {
    const k3::Node* const first = AddWithIds(nullptr, "n", nullptr);
    const k3::Node* const second = AddWithIds(nullptr, "n", nullptr);
    operation->UpdateBsIds(scene.Get(), L"x", 2, true);
    EXPECT_EQ(Ids(first), " xn ");
    EXPECT_EQ(Ids(second), " xn ");
}

TEST_F(UpdateBsIds, SkipsAnIdThatEqualsOneAlreadyMade) {
    AddWithIds(nullptr, "n", nullptr);
    const k3::Node* const second = AddWithIds(nullptr, "xn", nullptr);
    operation->UpdateBsIds(scene.Get(), L"x", 2, true);
    EXPECT_EQ(Ids(second), " xn ");
}

TEST_F(UpdateBsIds, RemembersOnlyNewTexts) {
    const k3::Node* const first = AddWithIds(nullptr, "xn", nullptr);
    AddWithIds(nullptr, "n", nullptr);
    operation->UpdateBsIds(scene.Get(), L"x", 2, true);
    EXPECT_EQ(Ids(first), " xxn ");
}

TEST_F(UpdateBsIds, KeepsDefinitionsAndInstancesApart) {
    AddWithIds("n", nullptr, nullptr);
    const k3::Node* const second = AddWithIds(nullptr, "xn", nullptr);
    operation->UpdateBsIds(scene.Get(), L"x", 3, true);
    EXPECT_EQ(Ids(second), " xxn ");
}

TEST_F(UpdateBsIds, ChangesEveryNodeWithoutASet) {
    AddWithIds(nullptr, nullptr, "s");
    const k3::Node* const second = AddWithIds(nullptr, nullptr, "xs");
    operation->UpdateBsIds(scene.Get(), L"x", 4, true);
    EXPECT_EQ(Ids(second), "  xxs");
}

TEST_F(UpdateBsIds, ForgetsItsSetsAfterTheCall) {
    const k3::Node* const node = AddWithIds("e", "n", nullptr);
    operation->UpdateBsIds(scene.Get(), L"x", 3, true);
    operation->UpdateBsIds(scene.Get(), L"x", 3, true);
    EXPECT_EQ(Ids(node), "xxe xxn ");
}

TEST_F(UpdateBsIds, LeavesValuesThatAreFalse) {
    const k3::Node* const node = AddWithIds("0", "", "false");
    operation->UpdateBsIds(scene.Get(), L"x", 7, true);
    EXPECT_EQ(Ids(node), "0  false");
}

TEST_F(UpdateBsIds, MakesATextOfANumber) {
    k3::Node* const node = AddWithIds(nullptr, nullptr, nullptr);
    node->SetParamVar(Param::kBsId, Var(7));
    operation->UpdateBsIds(scene.Get(), L"x", 4, true);
    EXPECT_EQ(Ids(node), "  x7");
}

TEST_F(UpdateBsIds, TakesInstancesWithoutDefinition) {
    const k3::Node* const bare = AddBareUse("bare");
    InstanceOf(bare)->SetProperty(kBsId, Var("n"));
    const k3::Node* const next = AddWithIds("e", nullptr, nullptr);
    operation->UpdateBsIds(scene.Get(), L"x", 7, true);
    EXPECT_EQ(Utf8(InstanceOf(bare)->GetProperty(kBsId, 0)), "xn");
    EXPECT_EQ(Ids(next), "xe  ");
}

TEST_F(UpdateBsIds, ByNumberTakesTheTextAsPrefixUnlessSuffixIsTrue) {
    const k3::Node* const node = AddWithIds("e", "n", "s");
    EXPECT_EQ(Run(3, {{1, Var(true)}, {4, Var("p-")}}), 1);
    EXPECT_EQ(Ids(node), "p-e n s");
    EXPECT_EQ(Run(3, {{2, Var(true)}, {3, Var(true)}, {4, Var("-q")}, {5, Var(true)}}), 1);
    EXPECT_EQ(Ids(node), "p-e n-q s-q");
}

TEST_F(UpdateBsIds, ByNumberWithoutTextOrFlagsChangesNothingAndAnswersZero) {
    const k3::Node* const node = AddWithIds("e", "n", "s");
    EXPECT_EQ(Run(3, {{1, Var(true)}, {2, Var(true)}, {3, Var(true)}, {4, Var("")}}), 0);
    EXPECT_EQ(Run(3, {{1, Var(true)}}), 0);
    EXPECT_EQ(Run(3, {{4, Var("x")}, {5, Var(true)}}), 0);
    EXPECT_EQ(Ids(node), "e n s");
}

}  // namespace
}  // namespace qn::test
