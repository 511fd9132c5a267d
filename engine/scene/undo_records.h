#pragma once

#include "engine/scene/scene_access.h"
#include "engine/scene/undo_recorder.h"

#include <unordered_set>

namespace qn::k3 {

/// A node that a record refers to: counted, but for the scene itself, which owns the recorder.
class RecordedNode {
public:
    explicit RecordedNode(Node& node) : node_(&node), hold_(IsScene(node) ? nullptr : &node) {}
    Node& operator*() const { return *node_; }
    Node* operator->() const { return node_; }

private:
    static bool IsScene(const Node& node) { return static_cast<const Node*>(node.GetScene()) == &node; }
    Node* node_;
    Counted<Node> hold_;
};

class FieldsRecord final : public UndoRecord {
public:
    FieldsRecord(Node& node, unsigned kinds);
    void Finish() override;
    void Restore(bool before) override;

private:
    RecordedNode node_;
    NodeFields before_, after_;
};

/// The children of a node, in order; they stay alive with the record.
class ChildrenRecord final : public UndoRecord {
public:
    explicit ChildrenRecord(Node& parent);
    /// The child was not there before.
    void MarkAdded(const Node& child) { added_.insert(&child); }
    void Finish() override;
    void TakeOut(bool before) override;
    void Restore(bool before) override;

private:
    RecordedNode parent_;
    std::vector<Counted<Node>> before_, after_;
    std::unordered_set<const Node*> added_;
};

/// The tracks of a node: which they are, and what each holds.
class TracksRecord final : public UndoRecord {
public:
    explicit TracksRecord(Node& node);
    void Finish() override;
    void Restore(bool before) override;

private:
    struct State {
        int kind;
        Counted<Track> track;
        Counted<ReferenceSource> content;  // null if the track cannot be cloned
    };
    std::vector<State> Capture() const;
    RecordedNode node_;
    std::vector<State> before_, after_;
};

/// One parameter of an object; containers are copied, so that edits in place are undone, too.
class ParamRecord final : public UndoRecord {
public:
    ParamRecord(Extension& object, int id);
    void Finish() override;
    void Restore(bool before) override;

private:
    Var Capture() const;
    Extension* object_;
    Counted<Extension> hold_;
    int id_;
    Var before_, after_;
};

/// The metadata of an object. The map itself stays, for others may share it.
class MetadataRecord final : public UndoRecord {
public:
    explicit MetadataRecord(Extension& object);
    void Finish() override;
    void Restore(bool before) override;

private:
    struct State {
        Counted<VarMap> map;
        Var content;
    };
    State Capture() const;
    Counted<Extension> object_;
    State before_, after_;
};

/// Whether a node stands in the host's global list.
class ListedRecord final : public UndoRecord {
public:
    explicit ListedRecord(Node& node) : node_(node), before_(node.IsInGlobalList()), after_(before_) {}
    void Finish() override { after_ = node_->IsInGlobalList(); }
    void Restore(bool before) override { SceneAccess::SetListed(*node_, before ? before_ : after_); }

private:
    RecordedNode node_;
    bool before_, after_;
};

class MembersRecord final : public UndoRecord {
public:
    explicit MembersRecord(Layer& layer);
    void Finish() override;
    void Restore(bool before) override;

private:
    Counted<Layer> layer_;
    std::vector<Weak<Interface>> before_, after_;
};

class ArraysRecord final : public UndoRecord {
public:
    explicit ArraysRecord(Scene& scene);
    void Finish() override;
    void Restore(bool before) override;

private:
    Scene& scene_;
    SceneArrays before_, after_;
};

}  // namespace qn::k3
