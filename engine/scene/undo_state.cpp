#include "engine/scene/undo_state.h"

#include "engine/scene/layer_members.h"
#include "engine/scene/scene_access.h"
#include "engine/scene/scene_data.h"

#include <unordered_set>

namespace qn::k3 {
namespace {

ArrayState StateOf(const Counted<InterfaceArray>& array) {
    ArrayState state{array, {}};
    for (int i = 0; array && i < array->GetCount(); ++i)
        state.entries.emplace_back(array->Get(i), array->IsStrong() ? 1 : 0);
    return state;
}

Counted<InterfaceArray> Restored(const ArrayState& state) {
    if (!state.array) return {};
    state.array->Clear();
    for (const Var& entry : state.entries)
        state.array->Add(entry.ToInterface());
    return state.array;
}

}  // namespace

NodeFields SceneAccess::FieldsOf(const Node& node, unsigned kinds) {
    NodeFields fields;
    fields.kinds = kinds;
    if (kinds & FieldKind::kName) {
        fields.name = node.name_;
        if (node.rare_) fields.displayName = node.rare_->displayName;
    }
    if (kinds & FieldKind::kAttributes) {
        fields.flags = node.flags_;
        fields.word1 = node.word1_;
        fields.integerAttribute = node.GetIntegerAttribute();
        fields.shortValue = node.shortValue_;
        fields.opacity = node.GetOpacity();
        fields.text = node.GetText();
    }
    if (kinds & FieldKind::kObject) fields.object = node.object_;
    if (kinds & FieldKind::kTransform) {
        node.GetMatrix(&fields.matrix, 0);
        node.GetMatrix(&fields.ownMatrix, 1);
        node.GetThirdMatrix(&fields.thirdMatrix);
    }
    return fields;
}

void SceneAccess::SetFields(Node& node, const NodeFields& fields) {
    if (fields.kinds & FieldKind::kName) {
        node.SetName(fields.name.c_str());
        node.SetDisplayName(fields.displayName);
    }
    if (fields.kinds & FieldKind::kAttributes) {
        node.SetFlags(fields.flags);
        node.SetAttributeWord(1, fields.word1);
        node.SetIntegerAttribute(fields.integerAttribute, 0);
        node.SetShortValue(fields.shortValue);
        node.SetOpacity(fields.opacity);
        node.SetText(fields.text);
    }
    if (fields.kinds & FieldKind::kObject) node.SetObject(fields.object.Get());
    if (fields.kinds & FieldKind::kTransform) {
        node.SetMatrix(&fields.matrix, 0);
        node.SetMatrix(&fields.ownMatrix, 1);
        node.SetThirdMatrix(fields.thirdMatrix);
    }
}

std::vector<std::pair<int, Counted<Track>>> SceneAccess::TracksOf(const Node& node) {
    return node.rare_ ? node.rare_->tracks : std::vector<std::pair<int, Counted<Track>>>();
}

std::vector<Counted<Node>> SceneAccess::ChildrenOf(const Node& parent) {
    std::vector<Counted<Node>> children;
    children.reserve(static_cast<std::size_t>(parent.childCount_));
    for (Node* child = parent.first_; child; child = child->next_)
        children.emplace_back(child);
    return children;
}

void SceneAccess::DropOtherChildren(Node& parent, const std::vector<Counted<Node>>& children) {
    std::unordered_set<const Node*> wanted;
    for (const auto& child : children)
        wanted.insert(child.Get());
    for (Node* child = parent.first_; child;) {
        Node* next = child->next_;
        if (!wanted.contains(child)) parent.Unlink(child);
        child = next;
    }
}

void SceneAccess::SetChildren(Node& parent, const std::vector<Counted<Node>>& children) {
    DropOtherChildren(parent, children);
    for (const auto& child : children)
        if (child->parent_ != &parent) child->AttachTo(&parent);
    // All of them are children now; what is left to do is their order.
    Node* previous = nullptr;
    for (const auto& child : children) {
        if (child->parent_ != &parent) continue;  // would have made a ring
        child->previous_ = previous;
        (previous ? previous->next_ : parent.first_) = child.Get();
        previous = child.Get();
    }
    parent.last_ = previous;
    (previous ? previous->next_ : parent.first_) = nullptr;
    if (parent.childIndex_) parent.childIndex_->Clear();
    parent.Changed();
}

std::vector<Weak<Interface>> SceneAccess::MembersOf(const Layer& layer) {
    std::vector<Weak<Interface>> members;
    const PointerArray* array = layer.GetMembers();
    for (int i = 0; array && i < array->GetCount(); ++i)
        members.emplace_back(array->Get(i));
    return members;
}

void SceneAccess::SetMembers(Layer& layer, const std::vector<Weak<Interface>>& members) {
    if (!layer.members_) {
        if (members.empty()) return;
        layer.members_ = std::make_unique<Layer::Members>();
    }
    layer.members_->list.Clear();
    for (const auto& member : members)
        layer.members_->list.Array()->Add(member.Get());
}

SceneArrays SceneAccess::ArraysOf(Scene& scene) {
    const Scene::Data& data = *scene.data_;
    SceneArrays arrays{StateOf(data.layers), StateOf(data.viewports), StateOf(data.entities), {}};
    if (data.selection) arrays.selection = StateOf(Counted<InterfaceArray>(data.selection->Array()));
    return arrays;
}

void SceneAccess::SetArrays(Scene& scene, const SceneArrays& arrays) {
    Scene::Data& data = *scene.data_;
    data.layers = Restored(arrays.layers);
    data.viewports = Restored(arrays.viewports);
    data.entities = Restored(arrays.entities);
    const Counted<InterfaceArray> selection = Restored(arrays.selection);
    scene.SetSelectedNodes(Cast<PointerArray>(selection.Get()));
}

}  // namespace qn::k3
