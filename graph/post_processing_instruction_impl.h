#pragma once

#include "graph/post_processing_instruction.h"

namespace qn::graph {

/// The class behind "qn.graph.postprocessinginstruction": no fields, no chunks of its own.
class PostProcessingInstructionImpl final : public Reference::PostProcessingInstruction {
public:
    String GetCommandKey() const override;
    int GetMethodId() const override;
    void SetCommandKey(const String& key) override;
    void SetMethodId(int id) override;
    Var GetArgument(int id) const override;
    void SetArgument(int id, const Var& value) override;

    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kPostProcessingInstruction; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<PostProcessingInstructionImpl, PostProcessingInstruction>(this, wanted);
    }
};

}  // namespace qn::graph
