#include "graph/reference_registration.h"

#include "frame/host/context.h"
#include "graph/instance_impl.h"
#include "graph/limits.h"
#include "graph/lookup_table_impl.h"
#include "graph/occurrence_count.h"

#include <unordered_set>

namespace qn::graph {

/// One call of `RegisterInTable`: goes by occurrence, so that a shared definition is entered once for each
/// use, with a stack of its own.
class Registration {
public:
    Registration(LookupTable* table, std::int64_t mostUses, bool isEachOnce, const Context* context)
        : table_(table),
          impl_(Cast<LookupTableImpl>(table)),
          context_(context),
          mostUses_(mostUses),
          isEachOnce_(isEachOnce) {}

    Reference* Run(ReferenceImpl& root) {
        Reference* survivor = Enter(root);
        while (!stack_.empty())
            Step();
        return survivor;
    }

private:
    struct Frame {
        Counted<ReferenceImpl> reference;
        int next = 0;
    };

    Reference* Enter(ReferenceImpl& reference);
    Reference* Merge(ReferenceImpl& reference, const Var& bsId);
    void Step();
    void RegisterChild(InstanceImpl& instance);
    static void MoveInstances(const Reference& from, Reference* to);

    LookupTable* table_;
    LookupTableImpl* impl_;
    const Context* context_;
    std::vector<Frame> stack_;
    std::unordered_set<ReferenceImpl*> descent_;  // with `isEachOnce_`: all that were entered
    std::int64_t mostUses_;
    std::int64_t uses_ = 0;
    bool isEachOnce_;
};

/// The reference that stands for this one; its children follow if that is itself.
Reference* Registration::Enter(ReferenceImpl& reference) {
    if (descent_.count(&reference) != 0) return &reference;
    const Counted<ReferenceImpl> kept(&reference);
    if (reference.GetLookupTable() != table_) reference.BindTable(table_);
    const Var bsId = reference.GetProperty(Prop::kBsId, 0);
    if (bsId.IsEmpty()) {
        reference.SetProperty(Prop::kLocalId, Var(table_->GenerateEntityId()));
        table_->RegisterReference(&reference);
    } else if (Reference* winner = Merge(reference, bsId); winner != &reference) {
        return winner;
    } else {
        table_->RegisterReferenceWithBsId(&reference);
    }
    if (reference.GetChildCount() > 0) {
        descent_.insert(&reference);
        stack_.push_back({kept});
    }
    return &reference;
}

/// Decides between the reference and the one that has its server id; all uses of the loser move to the
/// winner.
Reference* Registration::Merge(ReferenceImpl& reference, const Var& bsId) {
    const Counted<Reference> existing = table_->FindReferenceByBsId(bsId.ToText());
    if (!existing) {
        reference.SetProperty(Prop::kLocalId, Var(table_->GenerateEntityId()));
        return &reference;
    }
    if (existing == &reference) return &reference;
    if (existing->IsLeaf() && !reference.IsLeaf()) {
        MoveInstances(*existing, &reference);
        reference.SetProperty(Prop::kLocalId, existing->GetProperty(Prop::kLocalId, 0));
        return &reference;
    }
    MoveInstances(reference, existing.Get());
    return existing.Get();
}

void Registration::Step() {
    Frame& frame = stack_.back();
    Instance* child = frame.reference->PeekChild(frame.next++);
    if (!child || ++uses_ > mostUses_ || (context_ && context_->IsCancelled())) {
        if (!isEachOnce_) descent_.erase(frame.reference.Get());
        stack_.pop_back();
        return;
    }
    if (auto* instance = Cast<InstanceImpl>(child)) RegisterChild(*instance);
}

void Registration::RegisterChild(InstanceImpl& instance) {
    if (impl_) impl_->instances.insert(Counted<Instance>(&instance));
    instance.SetProperty(Prop::kLocalId, Var(table_->GenerateNodeId()));
    if (instance.GetProperty(Prop::kBsId, 0).IsSet())
        table_->RegisterInstanceWithBsId(&instance);
    else
        table_->RegisterInstance(&instance);
    if (auto* used = Cast<ReferenceImpl>(instance.GetReference())) {
        used->instances_.emplace_back(&instance);
        Enter(*used);
    }
}

void Registration::MoveInstances(const Reference& from, Reference* to) {
    for (int i = 0; i < from.GetInstanceCount(); ++i) {
        const Counted<Instance> instance = from.GetInstance(i);
        if (auto* impl = Cast<InstanceImpl>(instance.Get())) impl->SetReference(to);
    }
}

Reference* RegisterInTable(ReferenceImpl& root, LookupTable* table, std::int64_t mostUses,
                           const Context* context) {
    const bool isEachOnce = CountOccurrences(root, mostUses) > mostUses;
    return Registration(table, mostUses, isEachOnce, context).Run(root);
}

Reference* ReferenceImpl::RegisterInTable(LookupTable* table) {
    return table ? graph::RegisterInTable(*this, table, kMaxOccurrences, nullptr) : nullptr;
}

}  // namespace qn::graph
