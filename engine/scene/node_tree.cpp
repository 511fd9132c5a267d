#include "engine/scene/node_rare.h"
#include "engine/scene/scene_access.h"
#include "engine/scene/tree_walk.h"

namespace qn::k3 {

void Node::ChildIndex::Forget(const Node* child) {
    if (Count() == 0) return;
    if (nodes[front] == child) {
        ++front;
        if (lastAsked > 0) --lastAsked;
        if (Count() == 0) Clear();
        return;
    }
    if (nodes.back() == child) {
        nodes.pop_back();
        return;
    }
    const std::size_t place = front + lastAsked;
    if (place < nodes.size() && nodes[place] == child)
        nodes.resize(place);  // what stands before it is still right
    else
        Clear();
}

Node* Node::GetChildAt(int index) const {
    if (index < 0 || index >= childCount_) return nullptr;
    if (index == 0) return first_;
    if (index == childCount_ - 1) return last_;
    if (!childIndex_) childIndex_ = std::make_unique<ChildIndex>();
    ChildIndex& known = *childIndex_;
    const auto wanted = static_cast<std::size_t>(index);
    while (known.Count() <= wanted)
        known.nodes.push_back(known.Count() == 0 ? first_ : known.nodes.back()->next_);
    known.lastAsked = wanted;
    return known.nodes[known.front + wanted];
}

void Node::Link(Node* child) {
    child->AddRef();
    child->parent_ = this;
    child->previous_ = last_;
    child->next_ = nullptr;
    (last_ ? last_->next_ : first_) = child;
    last_ = child;
    ++childCount_;
    child->SetSceneOfSubtree(scene_);
    SceneAccess::ForgetGenerated(*this);
    child->Changed();
}

Counted<Node> Node::Unlink(Node* child) {
    (child->previous_ ? child->previous_->next_ : first_) = child->next_;
    (child->next_ ? child->next_->previous_ : last_) = child->previous_;
    --childCount_;
    if (childIndex_) childIndex_->Forget(child);
    child->parent_ = child->next_ = child->previous_ = nullptr;
    child->SetSceneOfSubtree(nullptr);
    SceneAccess::ForgetGenerated(*this);
    Changed();
    return Counted<Node>::Adopt(child);
}

void Node::SetSceneOfSubtree(Scene* scene) {
    if (scene_ == scene) return;  // a subtree has one scene
    WalkSubtree(*this, [scene](Node& node) { node.scene_ = scene; });
}

bool Node::IsBelow(const Node* ancestor) const {
    if (!ancestor->first_) return false;
    for (const Node* node = parent_; node; node = node->parent_)
        if (node == ancestor) return true;
    return false;
}

Node* Node::CreateChildNode(int, int, int) {
    const Counted<Node> child = Make<Node>();
    if (!child) return nullptr;
    SceneAccess::BeforeChildrenChange(scene_, this, nullptr);
    Link(child.Get());
    return child.Get();
}

void Node::AttachTo(Node* parent) {
    if (scene_ && static_cast<Node*>(scene_) == this) return;
    if (parent && (parent == this || parent->IsBelow(this))) return;
    const Counted<Node> hold(this);
    SceneAccess::BeforeMove(*this, parent);
    if (parent_) parent_->Unlink(this);
    if (parent) parent->Link(this);
}

void Node::Remove(int) {
    if (parent_) parent_->_RemoveChild(this, false);
}

void Node::_RemoveChild(Node* child, bool detach) {
    if (!child || child->parent_ != this) return;
    Scene* scene = scene_;
    SceneAccess::BeforeChildrenChange(scene, this, nullptr);
    if (detach && scene) SceneAccess::DetachSubtree(*scene, *child);
    const Counted<Node> hold = Unlink(child);
}

void Node::Visit(unsigned, VisitFunction function, ParamWord argument) {
    if (!function) return;
    Counted<Node> node(this);
    while (node) {
        if (!function(node.Get(), argument)) return;
        node = Counted<Node>(NextInSubtree(node.Get(), this));
    }
}

}  // namespace qn::k3
