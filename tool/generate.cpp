#include "tool/generate.h"

#include "engine/runtime/context_impl.h"
#include "engine/scene/generated_content.h"
#include "tool/failure.h"

namespace assembly::tool {

void GenerateNodes(qn::k3::Scene& scene, qn::Context& context) {
    const bool made = qn::k3::GenerateMissing(scene, &context) >= 0;
    if (context.IsCancelled()) throw Failure(ExitCode::kCancelled, "cancelled");
    if (context.GetFailure() != qn::LoadFailure::kNone)
        throw Failure(CodeOf(context.GetFailure()),
                      "the nodes of the assembly were not made: " +
                          static_cast<qn::ContextImpl&>(context).GetFailureText().ToUtf8());
    if (!made) throw Failure(ExitCode::kDefect, "the generator of the assembly refused its node");
}

}  // namespace assembly::tool
