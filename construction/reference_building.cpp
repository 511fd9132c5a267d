#include "construction/reference_building.h"

#include "construction/property_set.h"
#include "graph/instance_impl.h"

#include <vector>

namespace qn::graph {

namespace {

constexpr PropEnum kTransforms[] = {Prop::kLocalMatrix, Prop::kOwnMatrix, Prop::kThirdMatrix};

/// One level of the descent through the selector's children.
struct Level {
    Selector source;
    Counted<Instance> instance;
    Counted<Reference> target;
    unsigned next = 0;
    unsigned count = 0;
};

void CopyTransforms(const Selector& source, Instance& instance) {
    for (const PropEnum id : kTransforms)
        if (const Var value = source.GetProperty(id, 0); value.IsMatrix()) instance.SetProperty(id, value);
}

/// Metadata that the target has is merged into and written back; the flag is taken over, set or not.
void CopyDefinitionData(const Reference& source, Reference& target) {
    Var metadata = target.GetProperty(Prop::kMetadata, 0);
    if (metadata.IsSet())
        metadata.Merge(source.GetProperty(Prop::kMetadata, 0), 0);
    else
        metadata = source.GetProperty(Prop::kMetadata, 0);
    target.SetProperty(Prop::kMetadata, metadata);
    target.SetProperty(Prop::kFlag8000, source.GetProperty(Prop::kFlag8000, 0));
}

/// An instance without definition has no children to go through.
Level EnterLevel(const Selector& source, Reference* target) {
    Level level{source, Counted<Instance>(source.GetInstance()), Counted<Reference>(target)};
    if (!level.instance) return level;
    CopyTransforms(source, *level.instance);
    Reference* const own = level.instance->GetReference();
    if (!own) return level;
    if (!level.target)
        level.target = Counted<Reference>(own);
    else
        level.target->SetTarget(own->GetTarget());
    if (level.target.Get() != own) CopyDefinitionData(*own, *level.target);
    level.count = static_cast<unsigned>(source.GetChildCount());
    return level;
}

/// A definition that nobody uses yet is used by the level's instance from now on.
void LeaveLevel(const Level& level) {
    if (!level.target || level.target->GetInstanceCount() != 0) return;
    if (auto* instance = Cast<InstanceImpl>(level.instance.Get())) instance->SetReference(level.target.Get());
    level.target->AddInstances({level.instance.Get()});
}

void TransferProperties(const HierarchyElement& source, Reference& target, PropertySet skipped) {
    ForEachProperty(skipped, [&](PropEnum id) {
        const Var value = source.GetProperty(id, 1);
        if (!value.IsSet()) return;
        Var present = id == Prop::kMetadata ? target.GetProperty(id, 0) : Var();
        if (present.IsMap())
            present.Merge(value, 0);  // in the map that the target shares, so nothing is written back
        else
            target.SetProperty(id, value);
    });
}

}  // namespace

Counted<Instance> FillReference(const Selector& selector, Reference* target) {
    std::vector<Level> levels;
    levels.push_back(EnterLevel(selector, target));
    const Counted<Instance> result = levels.back().instance;
    if (!result) return result;
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.count) {
            LeaveLevel(level);
            levels.pop_back();
            continue;
        }
        const Selector child = level.source.GetChild(level.next++);
        Instance* const instance = child.GetInstance();
        if (!instance) continue;
        if (child.HasSelectorPersistentData()) instance->AddSelector(child);
        level.target->AddChild(instance);
        levels.push_back(EnterLevel(child, instance->GetReference()));
    }
    return result;
}

void TransferInstanceProperties(Instance& instance, Reference& target) {
    TransferProperties(instance, target, {Prop::kLocalId});
}

void TransferSelectors(Instance& instance, Reference& target) {
    const int count = instance.GetSelectorCount();
    for (int index = 0; index < count; ++index)
        TransferProperties(instance.GetSelector(index), target,
                           {Prop::kLocalId, Prop::kExternalIds, Prop::kBsId});
    const int removals = instance.GetSelectorCount();
    for (int index = 0; index < removals; ++index)
        instance.RemoveSelector(index);
}

}  // namespace qn::graph
