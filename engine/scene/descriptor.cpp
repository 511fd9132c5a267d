#include "frame/host/descriptor.h"

#include "engine/scene/engine_parameter_ids.h"
#include "frame/host/collections.h"
#include "frame/host/node.h"

namespace qn::k3 {
namespace {

/// A descriptor is a map that carries metadata.
Var GetOrCreate(Extension& owner, int id) {
    Var known = owner.GetParamVar(id);
    if (known.IsMap()) return known;
    owner.SetParamVar(id, Var(VarMap::Create()));
    return owner.GetParamVar(id);
}

}  // namespace

Var GetEntityDescriptor(Node* node) {
    const Object3D* object = node ? node->GetObject() : nullptr;
    return object ? object->GetParamVar(EngineParam::kEntityDescriptor) : Var();
}

Var GetOrCreateInstanceDescriptor(Node* node, bool withEntity) {
    if (!node) return Var();
    if (withEntity && node->GetObject()) GetOrCreate(*node->GetObject(), EngineParam::kEntityDescriptor);
    return GetOrCreate(*node, EngineParam::kInstanceDescriptor);
}

void ChangeInstanceDescriptor(Node* node) {
    if (!node) return;
    const Var present = node->GetParamVar(EngineParam::kInstanceDescriptor);
    if (!present.IsMap()) return;
    const Counted<VarMap> copy = VarMap::Create();
    copy->CopyFrom(present.ToMap(), 0);
    node->SetParamVar(EngineParam::kInstanceDescriptor, Var(copy));
}

void EntityHelper::SetMetadata(VarMap* map) {
    if (VarMap* descriptor = descriptor_.ToMap()) descriptor->SetMetadata(map);
}

VarMap* EntityHelper::GetMetadata() const {
    const VarMap* descriptor = descriptor_.ToMap();
    return descriptor ? descriptor->GetMetadata(false) : nullptr;
}

}  // namespace qn::k3
