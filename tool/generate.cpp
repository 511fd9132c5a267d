#include "tool/generate.h"

#include "frame/host/generator.h"
#include "tool/failure.h"

namespace assembly::tool {

void GenerateNodes(qn::k3::Scene& scene, qn::Context& context) {
    for (qn::k3::Node* node = scene.GetFirstChild(); node; node = node->GetNextSibling()) {
        qn::k3::Generator* generator = qn::k3::Generator::Get(node);
        if (!generator) continue;
        const bool made = qn::Succeeded(generator->Generate(node, &context));
        if (context.GetFailure() != qn::LoadFailure::kNone)
            throw Failure(CodeOf(context.GetFailure()), "the nodes of the assembly were not made");
        if (!made) throw Failure(ExitCode::kDefect, "the generator of the assembly refused its node");
    }
}

}  // namespace assembly::tool
