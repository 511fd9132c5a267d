#include "frame/host/meta.h"

#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "graph/instance.h"
#include "graph/reference.h"

namespace qn {
namespace {

/// The instance of a node; null for any other object.
graph::Instance* InstanceOf(const Extension* object) {
    return Cast<k3::Node>(object) ? Cast<graph::Instance>(object->GetParamVar(Param::kInstance)) : nullptr;
}

void MergeMetadata(Var& merged, const Extension* object) {
    if (VarMap* metadata = object ? object->GetMetadata(false) : nullptr) merged.Merge(Var(metadata, 1), 0);
}

}  // namespace

Var GetMeta(const Extension* object, const Var& key, int) {
    const VarMap* metadata = object ? object->GetMetadata(false) : nullptr;
    const Var* value = metadata ? metadata->Lookup(key) : nullptr;
    return value ? *value : Var();
}

void SetMeta(Extension* object, const Var& key, const Var& value) {
    if (object) object->SetMetaValue(key, value);
}

namespace meta {

VarMap* AccessInstanceMetadata(Extension* object, bool create) {
    if (!object) return nullptr;
    if (!Cast<k3::Node>(object)) return object->GetMetadata(create);
    graph::Instance* instance = InstanceOf(object);
    return instance ? instance->GetMetadata(create) : nullptr;
}

VarMap* AccessReferenceMetadata(Extension* object, bool create) {
    if (!object) return nullptr;
    if (!Cast<k3::Node>(object)) return object->GetMetadata(create);
    const graph::Instance* instance = InstanceOf(object);
    graph::Reference* reference = instance ? instance->GetReference() : nullptr;
    return reference ? reference->GetMetadata(create) : nullptr;
}

Var GetAllExistingMetadata(k3::Node* node, const Var& key) {
    if (!node) return Var();
    const Var merged =
        node->GetExtendedMetadata(k3::MetadataFormatEnum::kPlain, k3::ExtendedMetadata::kAll, 0);
    const Var* value = merged.Lookup(key);
    return value ? *value : Var();
}

}  // namespace meta

namespace k3 {

Var Node::GetExtendedMetadata(MetadataFormatEnum, int mask, int) const {
    const graph::Instance* instance = InstanceOf(this);
    Var merged;
    if (instance && (mask & ExtendedMetadata::kReference)) MergeMetadata(merged, instance->GetReference());
    if (instance && (mask & ExtendedMetadata::kInstance)) MergeMetadata(merged, instance);
    if (mask & ExtendedMetadata::kNode) MergeMetadata(merged, this);
    return merged;
}

}  // namespace k3
}  // namespace qn
