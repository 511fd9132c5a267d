#include "frame/host/extension.h"

#include "engine/objects/param_word.h"
#include "frame/host/collections.h"
#include "frame/host/module_code.h"
#include "frame/host/params.h"

#include <utility>

namespace qn {
namespace {

/// Shares `object` in a counted member; the old one goes last.
template <class T>
void Share(T*& member, T* object) {
    if (object) object->AddRef();
    if (T* old = std::exchange(member, object)) old->Release();
}

}  // namespace

Extension::~Extension() {
    Share<Params>(params_, nullptr);
    Share<VarMap>(metadata_, nullptr);
}

int Extension::GetInterfaceVersion() const {
    return kInterfaceVersion;
}
int Extension::GetParamType(int id) const {
    return params_ ? params_->GetParamType(id) : VarTag::kEmpty;
}
ResultEnum Extension::QueryInfo(xml::Element*, unsigned) {
    return ResultEnum::kNothing;
}
int Extension::Invoke(int, Params*, Context*) {
    return 0;
}
ResultEnum Extension::InvokeCommand(const Var&, const Var&, Context*) {
    return ResultEnum::kNothing;
}

// Every way of storing ends in SetParamVar, so a class that watches its parameters overrides one operation.
void Extension::SetParam(int id, ParamWord value, k3_VALUETYPE type) {
    SetParamVar(id, ValueOfWord(value, type));
}

ParamWord Extension::GetParam(int id, ParamWord fallback, k3_VALUETYPE type) const {
    return WordOfValue(params_ ? params_->Find(id) : nullptr, fallback, type);
}

void Extension::SetParamVar(int id, const Var& value) {
    if (value.IsEmpty()) return DeleteParam(id);
    if (Params* params = GetParams(true)) params->SetParamVar(id, value);
}

Var Extension::GetParamVar(int id) const {
    return params_ ? params_->GetParamVar(id) : Var();
}

void Extension::DeleteParam(int id) {
    if (params_) params_->DeleteParam(id);
}

VarMap* Extension::GetMetadata(bool create) const {
    if (!metadata_ && create) metadata_ = VarMap::Create().Detach();
    return metadata_;
}

void Extension::SetMetadata(VarMap* map) {
    Share(metadata_, map);
}

Params* Extension::GetParams(bool create) {
    if (!params_ && create) params_ = Params::Create().Detach();
    return params_;
}

void Extension::SetParams(Params* params) {
    Share(params_, params);
}

bool Extension::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_extension") || Interface::IsTypeOf(name);
}

const ClassRecord& Extension::StaticClass() {
    static const ClassRecord& record = InternClass("qn::Extension");
    return record;
}

void* Extension::CastTo(const ClassRecord& wanted) {
    return CastThrough<Extension, Interface>(this, wanted);
}

void Extension::SetMetaValue(const Var& key, const Var& value) {
    const Var held(value);  // may stand in the map, which growing moves
    if (VarMap* metadata = GetMetadata(true)) metadata->At(key) = held;
}

}  // namespace qn
