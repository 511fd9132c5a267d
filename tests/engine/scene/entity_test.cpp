#include "frame/host/entity.h"

#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

TEST(Entity, WatchesItsScene) {
    auto scene = Make<Scene>();
    const auto entity = Make<Entity>(scene.Get());
    EXPECT_EQ(entity->GetScene(), scene.Get());
    scene.Reset();
    EXPECT_EQ(entity->GetScene(), nullptr);
}

TEST(Entity, HasAType) {
    const auto entity = Make<Entity>(nullptr, kTypeDependable);
    EXPECT_EQ(entity->GetType(), 6);
    EXPECT_TRUE(entity->IsTypeOf(kTypeDependable));
    EXPECT_FALSE(entity->IsTypeOf(kTypeBom));
}

TEST(Entity, WatchesItsDependants) {
    const auto entity = Make<Entity>();
    auto other = Make<Node>();
    entity->GetDependants()->Add(other.Get());
    EXPECT_EQ(entity->GetDependants()->Get(0), other.Get());
    other.Reset();
    EXPECT_EQ(entity->GetDependants()->Get(0), nullptr);
}

TEST(Entity, CopiesNameAndParameters) {
    const auto source = Make<Entity>();
    source->SetName(L"n");
    source->SetParamVar(0x100, Var(1));
    const auto copy = Make<Entity>();
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetName(), String(L"n"));
    EXPECT_EQ(copy->GetParamVar(0x100).ToInt(), 1);
}

TEST(Entity, RefusesToCopyAnotherClass) {
    const auto entity = Make<Entity>();
    EXPECT_EQ(entity->CopyFrom(Make<Node>().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(entity->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

TEST(Viewport, KeepsItsPartsAsTheyAreHeld) {
    const auto view = Make<Viewport>();
    auto node = Make<Node>();
    auto layer = Make<Layer>();
    auto companion = Make<Entity>();
    view->SetViewNode(node.Get());
    view->SetLayer(layer.Get());
    view->SetCompanion(companion.Get());
    EXPECT_EQ(layer->GetRefCount(), 2);
    node.Reset(), companion.Reset();
    EXPECT_EQ(view->GetViewNode(), nullptr);
    EXPECT_EQ(view->GetCompanion(), nullptr);
    EXPECT_EQ(view->GetLayer(), layer.Get());
    EXPECT_EQ(view->GetKind(), ViewKind::kOther);
}

}  // namespace
}  // namespace qn::k3
