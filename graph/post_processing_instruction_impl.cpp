#include "graph/post_processing_instruction_impl.h"

#include "frame/host/parameter_ids.h"

namespace qn::graph {

const ClassRecord& PostProcessingInstructionImpl::StaticClass() {
    static const ClassRecord& record = InternClass("qn::graph::PostProcessingInstructionImpl");
    return record;
}

String PostProcessingInstructionImpl::GetCommandKey() const {
    return GetParamVar(Param::kCommandKey).ToText();
}

int PostProcessingInstructionImpl::GetMethodId() const {
    return GetParamVar(Param::kMethodId).ToInt();
}

void PostProcessingInstructionImpl::SetCommandKey(const String& key) {
    SetParamVar(Param::kCommandKey, Var(key));
}

void PostProcessingInstructionImpl::SetMethodId(int id) {
    SetParamVar(Param::kMethodId, Var(id));
}

Var PostProcessingInstructionImpl::GetArgument(int id) const {
    return GetParamVar(id);
}

void PostProcessingInstructionImpl::SetArgument(int id, const Var& value) {
    SetParamVar(id, value);
}

ResultEnum PostProcessingInstructionImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* other = Cast<PostProcessingInstructionImpl>(source);
    return other ? ReferenceSource::CloneFrom(*other, flags) : ResultEnum::kWrongClass;
}

bool PostProcessingInstructionImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kPostProcessingInstruction) || ReferenceSource::IsTypeOf(name);
}

}  // namespace qn::graph
