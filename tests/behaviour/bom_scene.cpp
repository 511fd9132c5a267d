#include "tests/behaviour/bom_scene.h"

#include "frame/host/api.h"
#include "tests/behaviour/factory_support.h"

#include <gtest/gtest.h>

namespace qn::test {

using k3::Bom;

ResultEnum SceneEar::OnNotify(const Message& message) {
    heard.push_back(message);
    if (look) look(message);
    return ResultEnum::kSuccess;
}

BomScene::BomScene() {
    scene->AddObserver(ear.Get());
}

k3::Node* BomScene::Node(const wchar_t* name, k3::Node* parent) const {
    return AddNode(parent ? *parent : *scene, name);
}

k3::Node* BomScene::Fixture(const wchar_t* name) const {
    k3::Node* node = Node(name);
    node->SetFlags(NodeFlag::kStopsInstancing);
    return node;
}

k3::Viewport* BomScene::View(const wchar_t* name, k3::ViewKind kind, k3::Node* camera) const {
    k3::Viewport* view = scene->CreateViewport(name);
    view->SetKind(kind);
    view->SetViewNode(camera);
    return view;
}

Counted<Bom> BomScene::NewBom() const {
    auto bom = CreateAs<Bom>(k3::kBomKey);
    bom->SetScene(scene.Get());
    return bom;
}

Counted<Bom> BomScene::AddBom(const wchar_t* name, bool empty) const {
    auto bom = NewBom();
    EXPECT_EQ(bom->Initialize(Var(name), empty), ResultEnum::kSuccess);
    return bom;
}

std::string BomScene::Shown() const {
    std::string text;
    for (const k3::Node* node = scene->GetFirstChild(); node; node = node->GetNextSibling())
        text += (text.empty() ? "" : " ") + Outline(*node);
    return text;
}

Bom* BomScene::Current() const {
    return Cast<Bom>(scene->GetParamVar(Param::kCurrentBom));
}

std::vector<std::string> BomScene::Boms() const {
    std::vector<std::string> names;
    const Var boms = scene->GetParamVar(Param::kBoms);
    for (int i = 0; i < boms.size(); ++i) {
        const auto* bom = Cast<Bom>(boms.ValueAt(i));
        names.push_back(bom ? bom->GetName().ToUtf8() : "-");
    }
    return names;
}

int BomScene::BomEvents() const {
    int count = 0;
    for (const Message& message : ear->heard) {
        if (message.code != k3::kBomEvent) continue;
        EXPECT_EQ(message.value, Var(0));
        EXPECT_EQ(message.value.GetTag(), VarTag::kInt);
        ++count;
    }
    return count;
}

std::string NodesOf(const Bom& bom) {
    std::string text;
    const Var nodes = bom.GetNodes();
    for (int i = 0; i < nodes.size(); ++i) {
        const auto* node = Cast<k3::Node>(nodes.ValueAt(i));
        text += (text.empty() ? "" : " ") + (node ? Outline(*node) : "-");
    }
    return text;
}

std::string Kept(const Bom& bom) {
    std::string text;
    const k3::Node* root = bom.GetRootNode();
    for (const k3::Node* node = root ? root->GetFirstChild() : nullptr; node; node = node->GetNextSibling())
        text += (text.empty() ? "" : " ") + Outline(*node);
    return text;
}

k3::Node* NodeAt(const Bom& bom, int place) {
    return Cast<k3::Node>(bom.GetNodes().ValueAt(place));
}

}  // namespace qn::test
