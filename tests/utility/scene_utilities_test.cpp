#include "frame/host/scene.h"
#include "utility/scene_utilities_impl.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qn::test {
namespace {

using collaboration::CollaborationMesh;
using collaboration::CollaborationSprite;
using utility::SceneUtilities;
using utility::SceneUtilitiesImpl;

constexpr const wchar_t* kKey = L"QN.Collaboration.OBJECT";
constexpr const wchar_t* kSystemKey = L"$QN.Collaboration.OBJECT";

Var EmptyMap() {
    Var map;
    map.InitMap();
    return map;
}

/// A scene with one node, asked about as a whole.
class CollaborationNode : public testing::Test {
protected:
    void Mark(const wchar_t* key, const Var& value) { node_->SetMetaValue(Var(key), value); }
    void Show(Counted<k3::Object3D> object) { node_->SetObject(object.Get()); }
    bool IsFound() { return utilities_->ContainsCollaborationObjects(scene_.Get()); }

    Counted<k3::Scene> scene_ = Make<k3::Scene>();
    k3::Node* node_ = scene_->CreateEmptyNode(0, 0, 0);
    Counted<SceneUtilitiesImpl> utilities_ = Make<SceneUtilitiesImpl>();
};

TEST(SceneUtilities, FindsNothingInNull) {
    EXPECT_FALSE(Make<SceneUtilitiesImpl>()->ContainsCollaborationObjects(nullptr));
}

TEST_F(CollaborationNode, IsNoPlainNode) {
    EXPECT_FALSE(IsFound());
}

TEST_F(CollaborationNode, HasAMapUnderTheKey) {
    Var map = EmptyMap();
    map.At(L"author") = Var(L"me");
    Mark(kKey, map);
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, HasAMapUnderTheSystemKey) {
    Var map = EmptyMap();
    map.At(L"author") = Var(L"me");
    Mark(kSystemKey, map);
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, HasAnEmptyMapForAnEmptyMapIsTrue) {
    Mark(kKey, EmptyMap());
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, ShowsASprite) {
    Show(Make<CollaborationSprite>());
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, ShowsAMesh) {
    Show(Make<CollaborationMesh>());
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, ShowsNoOrdinaryObject) {
    Show(Make<k3::Mesh>());
    EXPECT_FALSE(IsFound());
}

TEST_F(CollaborationNode, ShowsItsObjectBesideOtherMetadata) {
    Mark(L"Colour", Var(L"red"));
    Show(Make<CollaborationSprite>());
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, IsNotJudgedByItsObjectOnceATrueValueIsNoMap) {
    Mark(kKey, Var(L"yes"));
    Show(Make<CollaborationSprite>());
    EXPECT_FALSE(IsFound());
}

TEST_F(CollaborationNode, IsNotJudgedByItsObjectOnceATrueSystemValueIsNoMap) {
    Mark(kSystemKey, Var(1));
    Show(Make<CollaborationMesh>());
    EXPECT_FALSE(IsFound());
}

TEST_F(CollaborationNode, IsNotJudgedByTheSystemKeyOnceATrueValueIsNoMap) {
    Mark(kKey, Var(true));
    Mark(kSystemKey, EmptyMap());
    EXPECT_FALSE(IsFound());
}

TEST_F(CollaborationNode, IsJudgedByTheSystemKeyAfterAFalseValue) {
    Mark(kKey, Var(L"false"));
    Mark(kSystemKey, EmptyMap());
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, IsJudgedByItsObjectAfterFalseValues) {
    Mark(kKey, Var(0));
    Mark(kSystemKey, Var(L""));
    Show(Make<CollaborationSprite>());
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, IsFoundFarDown) {
    k3::Node* deep = node_;
    for (int level = 0; level < 20000; ++level)
        deep = deep->CreateChildNode(0, 0, 0);
    EXPECT_FALSE(IsFound());
    deep->SetMetaValue(Var(kKey), EmptyMap());
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, IsFoundAmongLaterSiblings) {
    node_->CreateChildNode(0, 0, 0)->CreateChildNode(0, 0, 0);
    scene_->CreateEmptyNode(0, 0, 0)->CreateChildNode(0, 0, 0)->SetObject(Make<CollaborationMesh>().Get());
    EXPECT_TRUE(IsFound());
}

TEST_F(CollaborationNode, IsLookedForInTheSubtreeAlone) {
    scene_->CreateEmptyNode(0, 0, 0)->SetObject(Make<CollaborationMesh>().Get());
    EXPECT_FALSE(utilities_->ContainsCollaborationObjects(node_));
}

/// Metadata reads answer through the node's own table, so a node can note that it was asked.
class AskedNode final : public k3::Node {
public:
    explicit AskedNode(std::string name, std::vector<std::string>* asked)
        : name_(std::move(name)), asked_(asked) {}
    VarMap* GetMetadata(bool create) const override {
        asked_->push_back(name_);
        return k3::Node::GetMetadata(create);
    }

private:
    std::string name_;
    std::vector<std::string>* asked_;
};

TEST(SceneUtilities, VisitEveryNodeOfASceneWithoutSuchObjectsInOrder) {
    std::vector<std::string> asked;
    const auto scene = Make<k3::Scene>();
    const auto first = Make<AskedNode>("first", &asked), below = Make<AskedNode>("below", &asked),
               second = Make<AskedNode>("second", &asked);
    first->AttachTo(scene.Get());
    below->AttachTo(first.Get());
    second->AttachTo(scene.Get());
    EXPECT_FALSE(Make<SceneUtilitiesImpl>()->ContainsCollaborationObjects(scene.Get()));
    EXPECT_EQ(asked, (std::vector<std::string>{"first", "below", "second"}));
}

TEST(SceneUtilities, VisitNoSiblingAfterAHit) {
    std::vector<std::string> asked;
    const auto scene = Make<k3::Scene>();
    const auto first = Make<AskedNode>("first", &asked), below = Make<AskedNode>("below", &asked),
               second = Make<AskedNode>("second", &asked);
    first->AttachTo(scene.Get());
    below->AttachTo(first.Get());
    second->AttachTo(scene.Get());
    below->SetObject(Make<CollaborationSprite>().Get());
    EXPECT_TRUE(Make<SceneUtilitiesImpl>()->ContainsCollaborationObjects(scene.Get()));
    EXPECT_EQ(asked, (std::vector<std::string>{"first", "below"}));
}

TEST(SceneUtilities, KnowsItsNames) {
    const auto utilities = Make<SceneUtilitiesImpl>();
    EXPECT_STREQ(utilities->GetInterfaceName(), "qn.utility.sceneutilities");
    EXPECT_TRUE(utilities->IsTypeOf("QN.Utility.SceneUtilities"));
    EXPECT_TRUE(utilities->IsTypeOf("k3_extension"));
    EXPECT_FALSE(utilities->IsTypeOf("k3_refsource"));
    EXPECT_FALSE(utilities->IsTypeOf(nullptr));
}

TEST(SceneUtilities, CopiesFromItsOwnClassAlone) {
    const auto utilities = Make<SceneUtilitiesImpl>();
    const auto other = Make<SceneUtilitiesImpl>();
    const auto stranger = Make<k3::Generic>();
    EXPECT_EQ(utilities->CopyFrom(other.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(utilities->CopyFrom(stranger.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(utilities->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

}  // namespace
}  // namespace qn::test
