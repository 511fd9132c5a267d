#include "frame/host/unique_id.h"

#include "engine/scene/engine_parameter_ids.h"
#include "frame/host/extension.h"

namespace qn {
namespace {

// Places in the array that is kept with the object.
constexpr int kModel = 0;
constexpr int kObjectId = 1;

}  // namespace

UniqueId GetUniqueID(const Extension* object) {
    const Var stored = object ? object->GetParamVar(k3::EngineParam::kUniqueId) : Var();
    const VarArray* parts = stored.ToArray();
    return parts ? UniqueId(parts->Get(kModel).ToMap(), parts->Get(kObjectId)) : UniqueId();
}

void SetUniqueID(Extension* object, const UniqueId& id) {
    if (!object) return;
    if (!id.IsValid()) return object->DeleteParam(k3::EngineParam::kUniqueId);
    const Counted<VarArray> parts = VarArray::Create();
    parts->Set(kModel, Var(id.GetModel(), 1));
    parts->Set(kObjectId, id.GetObjectId());
    object->SetParamVar(k3::EngineParam::kUniqueId, Var(parts));
}

}  // namespace qn
