// Layers that list what is no longer in the scene.

#include "tests/behaviour/checker_scene.h"
#include "tests/behaviour/factory_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using k3::Layer;

/// A scene with nodes, a node outside of it and an object that is no node.
struct LayerScene : CheckerScene {
    Layer* Add(const wchar_t* name, std::initializer_list<k3::Node*> members) const {
        Layer* layer = scene->CreateLayer(name);
        for (k3::Node* member : members)
            layer->AddNode(member);
        return layer;
    }

    k3::Node* top = AddNode(*scene, L"top");
    k3::Node* below = AddNode(*top, L"below");
    Counted<k3::Node> gone = Make<k3::Node>();
    Counted<k3::Object3D> thing = Make<k3::Object3D>();
};

TEST(CheckerLayers, TellBothOrphansFirst) {
    const LayerScene s;
    Layer* layer = s.Add(L"shown", {s.top});
    layer->GetMembers()->Add(s.thing.Get());
    layer->AddNode(s.gone.Get());
    EXPECT_FALSE(s.LayersSound());
    EXPECT_EQ(s.Log(),
              (Lines{"1 orphaned nodes detected in layer shown", "1 invalid nodes detected in layer shown"}));
}

TEST(CheckerLayers, ListANodeThatLeftUntilItComesBack) {
    const LayerScene s;
    const Counted<k3::Node> below(s.below);
    s.top->_RemoveChild(s.below, false);
    s.Add(L"shown", {below.Get()});
    EXPECT_FALSE(s.LayersSound());
    below->AttachTo(s.scene.Get());
    EXPECT_TRUE(s.LayersSound());
}

TEST(CheckerLayers, StayAsTheyAreWhenTheyAreChecked) {
    const LayerScene s;
    const Layer* layer = s.Add(L"shown", {s.gone.Get(), s.top});
    layer->GetMembers()->Add(s.thing.Get());
    EXPECT_FALSE(s.LayersSound());
    EXPECT_EQ(layer->GetMembers()->GetCount(), 3);
}

TEST(LayerRepair, AnswersForEveryLayerNotForTheLast) {
    const LayerScene s;
    s.Add(L"broken", {s.gone.Get()});
    s.Add(L"sound", {s.top});
    EXPECT_FALSE(s.checker->RepairLayersAndViewports(s.scene.Get(), s.log.Get()));
    EXPECT_TRUE(s.checker->RepairLayersAndViewports(s.scene.Get(), s.log.Get()));
}

}  // namespace
}  // namespace qn::test
