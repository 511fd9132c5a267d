#pragma once

#include "engine/scene/node_rare.h"
#include "engine/scene/undo_state.h"
#include "frame/host/scene_document.h"

#include <cstdint>
#include <unordered_set>

namespace qn::k3 {

class SceneUndo;

/// The way of the engine's own parts into the private state of nodes, scenes and layers.
class SceneAccess {
public:
    // Change events and stamps.
    /// The present generation epoch: nodes are stamped with it when they change.
    static std::uint32_t Epoch() noexcept { return epoch_; }
    static void NextEpoch() noexcept { ++epoch_; }
    static void Touch(const Node& node) { const_cast<Node&>(node).changeStamp_ = epoch_; }
    static std::uint32_t StampOf(const Node& node) noexcept { return node.changeStamp_; }
    static void NoteChange(Scene& scene);

    // Generated content.
    static GeneratedMark* MarkOf(const Node& node) {
        return node.rare_ ? node.rare_->generated.get() : nullptr;
    }
    static void SetMark(Node& node, const GeneratedMark& mark);
    static bool AreChildrenStored(const Node& node) { return node.rare_ && node.rare_->childrenStored; }
    static void SetChildrenStored(Node& node) { node.Rarely().childrenStored = true; }
    /// The children are about to differ from what the generator made.
    static void ForgetGenerated(Node& node);
    /// Whether something outside of the node's subtree points into it, as of the last `FindPointedInto` of
    /// its scene; for a node of a structure that is not shown, of any scene.
    static bool IsPointedInto(const Node& node);
    static void FindPointedInto(Scene& scene);

    // Groups.
    static void SetListed(Node& node, bool listed) { node.unlisted_ = !listed; }
    static void SetGrouped(Node& node) { node.grouped_ = true; }
    static void DetachSubtree(Scene& scene, Node& root);
    /// Layers, viewports and entities of one scene become another's. Structures stay behind, and so no view
    /// belongs to one any more.
    static void MoveEntities(Scene& from, Scene& to);

    // Undo. Each `Before...` tells the recorder of the scene (may be null), if an item is open.
    static SceneUndo* RecorderOf(Scene* scene);
    static void BeforeChildrenChange(Scene* scene, Node* parent, Node* otherParent);
    static void BeforeMove(const Node& node, Node* parent);
    static void BeforeMembersChange(Scene* scene, Layer* layer);
    static void BeforeListedChange(Scene* scene, Node& node);
    static void BeforeArraysChange(Scene& scene);
    static NodeFields FieldsOf(const Node& node, unsigned kinds);
    static void SetFields(Node& node, const NodeFields& fields);
    static std::vector<std::pair<int, Counted<Track>>> TracksOf(const Node& node);
    static std::vector<Counted<Node>> ChildrenOf(const Node& parent);
    /// Drops the children that do not stand in the list.
    static void DropOtherChildren(Node& parent, const std::vector<Counted<Node>>& children);
    /// Makes exactly these the children, in this order.
    static void SetChildren(Node& parent, const std::vector<Counted<Node>>& children);
    static std::vector<Weak<Interface>> MembersOf(const Layer& layer);
    static void SetMembers(Layer& layer, const std::vector<Weak<Interface>>& members);
    static SceneArrays ArraysOf(Scene& scene);
    static void SetArrays(Scene& scene, const SceneArrays& arrays);

private:
    /// Nodes that stand in no scene, with something below them that others point at.
    static std::unordered_set<const Node*>& PointedOutside();
    static std::uint32_t epoch_;
};

}  // namespace qn::k3
