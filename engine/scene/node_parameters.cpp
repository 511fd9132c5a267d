#include "engine/scene/node_rare.h"
#include "engine/scene/scene_access.h"
#include "frame/host/collections.h"

namespace qn::k3 {
namespace {

/// Parameters that are not kept in the parameter table alone.
bool IsSpecial(int id) {
    return id == Param::kFlags || id == Param::kVisible || id == Param::kBlockA || id == Param::kBlockB;
}

}  // namespace

void Node::SetParamVar(int id, const Var& value) {
    if (id == Param::kFlags) return SetFlags(static_cast<unsigned>(value.ToInt()));
    if (id == Param::kVisible) return SetVisible(value.ToBool() ? 1 : 0);
    ReferenceSource::SetParamVar(id, value);
    Changed();
}

Var Node::GetParamVar(int id) const {
    if (id == Param::kFlags) return Var(static_cast<int>(flags_));
    if (id == Param::kVisible) return Var((flags_ & NodeFlag::kHidden) == 0);
    Var stored = ReferenceSource::GetParamVar(id);
    if (stored.IsSet()) return stored;
    if (id == Param::kBlockA) return ReferenceSource::GetParamVar(Param::kWrittenBlockA);
    if (id == Param::kBlockB) return ReferenceSource::GetParamVar(Param::kWrittenBlockB);
    return stored;
}

ParamWord Node::GetParam(int id, ParamWord fallback, k3_VALUETYPE type) const {
    if (!IsSpecial(id) || type != kValueInteger) return ReferenceSource::GetParam(id, fallback, type);
    const Var value = GetParamVar(id);
    return value.IsSet() ? static_cast<ParamWord>(static_cast<std::intptr_t>(value.ToInt())) : fallback;
}

void Node::DeleteParam(int id) {
    ReferenceSource::DeleteParam(id);
    Changed();
}

VarMap* Node::GetMetadata(bool create) const {
    // Whoever asks for a map to be made is about to write into it.
    if (create) SceneAccess::Touch(*this);
    return ReferenceSource::GetMetadata(create);
}

Params* Node::GetParams(bool create) {
    if (create) SceneAccess::Touch(*this);
    return ReferenceSource::GetParams(create);
}

void Node::SetParams(Params* params) {
    ReferenceSource::SetParams(params);
    Changed();
}

void Node::SetMetadata(VarMap* map) {
    ReferenceSource::SetMetadata(map);
    Changed();
}

}  // namespace qn::k3
