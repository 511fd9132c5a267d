#include "frame/host/generator.h"

#include "engine/scene/engine_parameter_ids.h"
#include "frame/host/stream.h"

namespace qn::k3 {

void Generator::OnAttach(ReferenceSource*) {}
void Generator::OnDetach(ReferenceSource*) {}
ResultEnum Generator::OnPropertiesUI(Context*) {
    return ResultEnum::kNothing;
}

Generator* Generator::Get(const Extension* object) {
    return object ? Cast<Generator>(object->GetParamVar(EngineParam::kGenerator)) : nullptr;
}

bool Generator::IsPresent(const Extension* object, const char* key) {
    const Generator* generator = Get(object);
    return generator && EqualKeys(generator->GetInterfaceName(), key);
}

void Generator::Attach(ReferenceSource* object, Generator* generator) {
    if (!object || Get(object) == generator) return;
    const Counted<Generator> hold(generator);
    Detach(object);
    if (!generator) return;
    object->SetParamVar(EngineParam::kGenerator, Var(generator, 1));
    generator->OnAttach(object);
}

void Generator::Detach(ReferenceSource* object) {
    const Counted<Generator> present(Get(object));
    if (!present) return;
    object->DeleteParam(EngineParam::kGenerator);
    present->OnDetach(object);
}

ResultEnum Generator::Save(Stream* stream, Context* context) {
    if (const ResultEnum base = ReferenceSource::Save(stream, context); base != ResultEnum::kSuccess)
        return base;
    Interface* root = GetGeneratedRoot();
    if (root && !stream->WriteObjectChunk(root, context, kRootChunk)) return ResultEnum::kWriteFailed;
    return ResultEnum::kSuccess;
}

bool Generator::IsTypeOf(const char* name) const {
    return EqualKeys(name, "qn.k3.generator") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& Generator::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Generator");
    return record;
}

void* Generator::CastTo(const ClassRecord& wanted) {
    return CastThrough<Generator, ReferenceSource>(this, wanted);
}

}  // namespace qn::k3
