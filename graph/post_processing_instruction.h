#pragma once

#include "graph/reference.h"

namespace qn::graph {

/// A stored call: class key, method number, arguments. All of it lives in the parameters.
/// Class key "qn.graph.postprocessinginstruction".
class Reference::PostProcessingInstruction : public ReferenceSource {
public:
    virtual String GetCommandKey() const = 0;
    virtual int GetMethodId() const = 0;
    virtual void SetCommandKey(const String& key) = 0;
    virtual void SetMethodId(int id) = 0;
    virtual Var GetArgument(int id) const = 0;
    /// Ids -0x10 and -0x0f overwrite key and method: nothing prevents it.
    virtual void SetArgument(int id, const Var& value) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::Reference::PostProcessingInstruction");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<PostProcessingInstruction, ReferenceSource>(this, wanted);
    }
};

}  // namespace qn::graph
