#include "frame/host/selector.h"

#include "engine/scene/selector_step.h"
#include "frame/host/collections.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"

namespace qn::graph {
namespace {

bool AnswersSet(const Selector::Traverser& traverser, PropEnum id) {
    return traverser.GetProperty(id, 0).IsSet();
}

}  // namespace

Selector::~Selector() = default;

bool Selector::IsValid() const {
    return traverser_ ? traverser_->IsValid() : last_ && last_->IsComplete();
}

Instance* Selector::GetInstance() const {
    if (traverser_ && last_ && last_->origin != traverser_.Get()) {
        // The path was lengthened by hand: the traverser's own element stands above.
        for (Step* step = last_.get(); step; step = step->above.get())
            if (step->origin == traverser_.Get()) return step->Ask();
    }
    return last_ ? last_->Ask() : nullptr;
}

Reference* Selector::GetReference() const {
    const Instance* instance = GetInstance();
    return instance ? instance->GetReference() : nullptr;
}

int Selector::GetChildCount() const {
    if (traverser_) return traverser_->GetChildCount();
    const Reference* reference = GetReference();
    return reference ? reference->GetChildCount() : 0;
}

Selector Selector::GetChild(unsigned index) const {
    Selector child;
    if (static_cast<int>(index) < 0) return child;
    if (traverser_) {
        child.traverser_ = traverser_->GetChild(static_cast<int>(index));
        if (child.traverser_) child.last_ = std::make_shared<Step>(last_, child.traverser_.Get());
        return child;
    }
    const Reference* reference = GetReference();
    const Counted<Instance> instance =
        reference ? reference->GetChild(static_cast<int>(index)) : Counted<Instance>();
    if (instance) child.last_ = std::make_shared<Step>(last_, instance.Get());
    return child;
}

int Selector::GetPathElementCount() const {
    return last_ ? last_->depth + 1 : 0;
}

Instance* Selector::GetPathElement(unsigned index) const {
    if (index >= static_cast<unsigned>(GetPathElementCount())) return nullptr;
    return last_->At(static_cast<int>(index))->Ask();
}

void Selector::AppendPathElement(Instance* instance) {
    last_ = std::make_shared<Step>(last_, instance);
}

void Selector::AssignTraverser(Traverser* traverser) {
    traverser_ = Counted<Traverser>(traverser);
    if (traverser) last_ = std::make_shared<Step>(nullptr, traverser);
}

bool Selector::HasSelectorPersistentData() const {
    if (attributes_.IsMap() && attributes_.size() > 0) return true;
    return traverser_ &&
           (AnswersSet(*traverser_, Prop::kBsId) || AnswersSet(*traverser_, Prop::kAttachedIdentifier) ||
            AnswersSet(*traverser_, Prop::kPrimaryIdentifier));
}

Var Selector::GetProperty(PropEnum id, int inherit) const {
    if (traverser_) return traverser_->GetProperty(id, inherit);
    if (const Var* own = attributes_.IsMap() ? attributes_.Lookup(Key(id)) : nullptr) return *own;
    const Instance* instance = inherit ? GetInstance() : nullptr;
    return instance ? instance->GetProperty(id, 1) : Var();
}

void Selector::SetProperty(PropEnum id, const Var& value) {
    if (traverser_)
        traverser_->SetProperty(id, value);
    else
        attributes_.At(Key(id)) = Var(value);
}

LookupTable* Selector::GetLookupTable() const {
    if (traverser_) return traverser_->GetLookupTable();
    const Instance* instance = GetInstance();
    return instance ? instance->GetLookupTable() : nullptr;
}

}  // namespace qn::graph
