#include "engine/scene/scene_access.h"

#include "engine/scene/layer_members.h"
#include "engine/scene/scene_data.h"
#include "engine/scene/tree_walk.h"

#include <unordered_set>

namespace qn::k3 {

std::uint32_t SceneAccess::epoch_ = 0;

void SceneAccess::NoteChange(Scene& scene) {
    if (!scene.data_) return;  // the scene is being destroyed
    Scene::Data& data = *scene.data_;
    if (data.updateDepth > 0) {
        data.changeHeldBack = true;
        return;
    }
    ++data.changeEvents;
    if (!data.observers.empty()) scene.Notify(Scene::kChangeEvent, Var());
}

void SceneAccess::SetMark(Node& node, const GeneratedMark& mark) {
    Node::Rare& rare = node.Rarely();
    rare.generated = std::make_unique<GeneratedMark>(mark);
    rare.childrenStored = false;
}

void SceneAccess::ForgetGenerated(Node& node) {
    if (!MarkOf(node)) return;
    node.rare_->generated.reset();
    node.rare_->childrenStored = true;
}

bool SceneAccess::IsPointedInto(const Node& node) {
    if (!node.scene_) return PointedOutside().contains(&node);
    return node.scene_->data_ && node.scene_->data_->pointedInto.contains(&node);
}

namespace {

/// Every layer of the two arrays (each may be null), once.
std::unordered_set<Layer*> LayersIn(const InterfaceArray* layers, const InterfaceArray* viewports) {
    std::unordered_set<Layer*> found;
    for (int i = 0; layers && i < layers->GetCount(); ++i)
        if (auto* layer = Cast<Layer>(layers->Get(i))) found.insert(layer);
    for (int i = 0; viewports && i < viewports->GetCount(); ++i)
        if (const auto* viewport = Cast<Viewport>(viewports->Get(i)); viewport && viewport->GetLayer())
            found.insert(viewport->GetLayer());
    return found;
}

}  // namespace

void SceneAccess::DetachSubtree(Scene& scene, Node& root) {
    std::vector<Node*> grouped;
    WalkSubtree(root, [&](Node& node) {
        if (node.grouped_) grouped.push_back(&node);
    });
    if (grouped.empty() || !scene.data_) return;
    Scene::Data& data = *scene.data_;
    for (Layer* layer : LayersIn(data.layers.Get(), data.viewports.Get()))
        for (Node* node : grouped)
            layer->RemoveNode(node);
    if (!data.selection) return;
    for (Node* node : grouped) {
        if (!data.selection->Has(node)) continue;
        BeforeArraysChange(scene);
        data.selection->Remove(node);
    }
}

void SceneAccess::MoveEntities(Scene& from, Scene& to) {
    BeforeArraysChange(to);
    const auto move = [&to](Counted<InterfaceArray>& source, Counted<InterfaceArray>& target) {
        if (!source || source->GetCount() == 0) return;
        if (!target) target = InterfaceArray::CreateStrong();
        for (int i = 0; i < source->GetCount(); ++i) {
            auto* entity = Cast<Entity>(source->Get(i));
            if (!entity) continue;
            entity->SetScene(&to);
            target->Add(entity);
            auto* viewport = Cast<Viewport>(entity);
            if (!viewport) continue;
            viewport->DeleteParam(Param::kViewportOwnBom);
            if (viewport->GetLayer()) viewport->GetLayer()->SetScene(&to);
        }
        source->Clear();
    };
    move(from.data_->layers, to.data_->layers);
    move(from.data_->viewports, to.data_->viewports);
    move(from.data_->entities, to.data_->entities);
    NoteChange(to);
}

SceneUndo* SceneAccess::RecorderOf(Scene* scene) {
    return scene && scene->data_ ? scene->data_->undo.get() : nullptr;
}

void SceneAccess::BeforeChildrenChange(Scene* scene, Node* parent, Node* otherParent) {
    SceneUndo* undo = RecorderOf(scene);
    if (!undo) return;
    if (parent) undo->BeforeChildrenChange(*parent);
    if (otherParent) undo->BeforeChildrenChange(*otherParent);
}

// Between two scenes each recorder knows its own side alone.
void SceneAccess::BeforeMove(const Node& node, Node* parent) {
    Scene* from = node.scene_;
    Scene* to = parent ? parent->scene_ : nullptr;
    if (from && to && from != to) {
        BeforeChildrenChange(from, node.parent_, nullptr);
        BeforeChildrenChange(to, parent, nullptr);
    } else {
        BeforeChildrenChange(from ? from : to, node.parent_, parent);
    }
}

void SceneAccess::BeforeMembersChange(Scene* scene, Layer* layer) {
    if (SceneUndo* undo = RecorderOf(scene)) undo->BeforeMembersChange(*layer);
}

void SceneAccess::BeforeListedChange(Scene* scene, Node& node) {
    if (SceneUndo* undo = RecorderOf(scene)) undo->BeforeListedChange(node);
}

void SceneAccess::BeforeArraysChange(Scene& scene) {
    if (SceneUndo* undo = RecorderOf(&scene)) undo->BeforeArraysChange();
}

}  // namespace qn::k3
