#include "engine/scene/engine_parameter_ids.h"
#include "engine/scene/generated_content.h"
#include "engine/scene/node_rare.h"
#include "frame/host/generator.h"

namespace qn::k3 {
namespace {

template <class T>
std::unique_ptr<T> CopyOf(const std::unique_ptr<T>& source) {
    return source ? std::make_unique<T>(*source) : nullptr;
}

/// A generator serves one node. A copy that has children of its own needs none; one without children shares
/// it when it cannot be copied, so that its content is not lost.
void GiveOwnGenerator(const Node& source, Node& copy, unsigned mode) {
    Generator* generator = Generator::Get(&source);
    if (!generator) return;
    const auto own = CountedCast<Generator>(generator->Clone(mode));
    if (!own && !source.GetFirstChild()) return;
    copy.DeleteParam(EngineParam::kGenerator);
    if (own) Generator::Attach(&copy, own.Get());
}

}  // namespace

Counted<Node> Node::MakeSame() const {
    return Make<Node>();
}
Counted<Node> DetailMarkup::MakeSame() const {
    return Make<DetailMarkup>();
}

void Node::CopyFieldsFrom(const Node& source) {
    CloneFrom(source, 0);
    name_ = source.name_;
    object_ = source.object_;
    matrix_ = CopyOf(source.matrix_);
    flags_ = source.flags_;
    word1_ = source.word1_;
    shortValue_ = source.shortValue_;
    if (!source.rare_) return;
    Rare& rare = Rarely();
    rare.ownMatrix = CopyOf(source.rare_->ownMatrix);
    rare.thirdMatrix = CopyOf(source.rare_->thirdMatrix);
    rare.displayName = source.rare_->displayName;
    rare.text = source.rare_->text;
    rare.opacity = source.rare_->opacity;
    rare.integerAttribute = source.rare_->integerAttribute;
    rare.childrenStored = source.rare_->childrenStored;
    for (const auto& [kind, track] : source.rare_->tracks) {
        const auto own = CountedCast<Track>(track->Clone(0));
        rare.tracks.emplace_back(kind, own ? own : track);
    }
}

Counted<ReferenceSource> Node::Clone(unsigned mode) const {
    Counted<Node> root = MakeSame();
    if (!root) return {};
    const Node* from = this;
    Node* to = root.Get();
    for (;;) {
        if (AwaitsGeneration(*from)) GenerateChildren(const_cast<Node&>(*from), nullptr);
        to->CopyFieldsFrom(*from);
        GiveOwnGenerator(*from, *to, mode);
        const Node* next = from->first_;
        Node* parent = to;
        if (!next) {
            while (from != this && !from->next_)
                from = from->parent_, to = to->parent_;
            if (from == this) return root;
            next = from->next_;
            parent = to->parent_;
        }
        const Counted<Node> copy = next->MakeSame();
        if (!copy) return {};
        parent->Link(copy.Get());
        from = next;
        to = copy.Get();
    }
}

}  // namespace qn::k3
