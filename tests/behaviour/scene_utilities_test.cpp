// Whether a scene holds marks of people who work together.

#include "utility/scene_utilities.h"

#include "frame/host/api.h"
#include "frame/host/collaboration.h"
#include "frame/host/scene_document.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using utility::SceneUtilities;

constexpr const wchar_t* kOldKey = L"QN.Collaboration.OBJECT";
constexpr const wchar_t* kNewKey = L"$QN.Collaboration.OBJECT";

Counted<SceneUtilities> NewUtilities() {
    return CreateAs<SceneUtilities>(utility::kSceneUtilitiesKey);
}

bool IsMarked(k3::Node* node) {
    return NewUtilities()->ContainsCollaborationObjects(node);
}

Var FilledMap() {
    return MapOf({{Var(L"author"), Var(L"somebody")}});
}

TEST(CollaborationObjects, AreNoOtherValuesWhateverTheNodeShows) {
    const auto sprite = Make<collaboration::CollaborationSprite>();
    for (const wchar_t* key : {kOldKey, kNewKey}) {
        for (const Var& value : {Var(1), Var(true), Var(L"yes"), ArrayOf({Var(1)}), Var(sprite)}) {
            const auto node = Make<k3::Node>();
            node->SetMetaValue(Var(key), value);
            node->SetObject(sprite.Get());
            EXPECT_FALSE(IsMarked(node.Get())) << key;
        }
    }
}

TEST(CollaborationObjects, FollowTheFirstKeyBeforeTheOther) {
    const auto plain = Make<k3::Node>(), marked = Make<k3::Node>();
    plain->SetMetaValue(Var(kNewKey), FilledMap());
    plain->SetMetaValue(Var(kOldKey), Var(1));
    EXPECT_FALSE(IsMarked(plain.Get()));
    marked->SetMetaValue(Var(kNewKey), Var(1));
    marked->SetMetaValue(Var(kOldKey), FilledMap());
    EXPECT_TRUE(IsMarked(marked.Get()));
}

TEST(CollaborationObjects, PassAnUntrueFirstKeyOver) {
    for (const Var& value : {Var(), Var(0), Var(false), Var(L""), Var(L"0"), Var(L"False")}) {
        const auto node = Make<k3::Node>();
        node->SetMetaValue(Var(kOldKey), value);
        EXPECT_FALSE(IsMarked(node.Get()));
        node->SetMetaValue(Var(kNewKey), FilledMap());
        EXPECT_TRUE(IsMarked(node.Get()));
    }
}

TEST(CollaborationObjects, AreNotSpritesBehindASubstitution) {
    const auto substitution = Make<k3::MaterialSubstitution>();
    substitution->SetSubstituted(Make<collaboration::CollaborationSprite>().Get());
    const auto node = Make<k3::Node>();
    node->SetObject(substitution.Get());
    EXPECT_FALSE(IsMarked(node.Get()));
}

TEST(CollaborationObjects, AreFoundBelowANodeWithAnotherValue) {
    const auto scene = Make<k3::Scene>();
    k3::Node* top = AddNode(*scene, L"top");
    top->SetMetaValue(Var(kOldKey), Var(1));
    AddNode(*top, L"mark")->SetMetaValue(Var(kOldKey), FilledMap());
    EXPECT_TRUE(IsMarked(scene.Get()));
    EXPECT_TRUE(IsMarked(top));
}

TEST(CollaborationObjects, AreNotSoughtInTheMetadataOfTheInstance) {
    const auto use = NewUse(L"part");
    use->SetMetaValue(Var(kOldKey), FilledMap());
    use->GetReference()->SetMetaValue(Var(kOldKey), FilledMap());
    const auto node = Make<k3::Node>();
    node->SetParamVar(Param::kInstance, Var(use));
    EXPECT_FALSE(IsMarked(node.Get()));
}

TEST(CollaborationObjects, LeaveNodesWithoutMetadataAsTheyAre) {
    const auto node = Make<k3::Node>();
    IsMarked(node.Get());
    EXPECT_EQ(node->GetMetadata(false), nullptr);
    node->SetMetaValue(Var(L"other"), Var(1));
    IsMarked(node.Get());
    EXPECT_EQ(node->GetMetadata(false)->GetCount(), 1) << "asking makes no keys";
}

}  // namespace
}  // namespace qn::test
