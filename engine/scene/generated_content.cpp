#include "engine/scene/generated_content.h"

#include "engine/scene/named_targets.h"
#include "engine/scene/scene_access.h"
#include "engine/scene/tree_walk.h"
#include "frame/host/context.h"
#include "frame/host/generator.h"
#include "frame/host/params.h"
#include "graph/instance.h"
#include "graph/limits.h"
#include "graph/node_content.h"
#include "graph/occurrence_count.h"
#include "graph/reference.h"

namespace qn::k3 {
namespace {

std::uint64_t Mixed(std::uint64_t seed, std::uint64_t value) {
    return (seed ^ (value + 0x9e3779b97f4a7c15u)) * 0xff51afd7ed558ccdu + (seed >> 29);
}

/// Of the values below the node that can be edited without the node's knowledge.
std::uint64_t FingerprintBelow(const Node& root) {
    std::uint64_t print = 0;
    std::uint64_t place = 0;
    WalkSubtree(const_cast<Node&>(root), [&](Node& node) {
        ++place;
        if (&node == &root) return;
        if (VarMap* metadata = node.GetMetadata(false); metadata && metadata->GetCount() > 0)
            print = Mixed(Mixed(print, place), Var(metadata, 1).Hash());
        const Params* params = node.GetParams(false);
        for (int i = 0; params && i < params->GetCount(); ++i)
            print =
                Mixed(Mixed(print, static_cast<std::uint64_t>(params->IdAt(i))), params->ValueAt(i).Hash());
    });
    return print;
}

bool IsUntouched(const Node& root, const GeneratedMark& mark) {
    for (Node* node = root.GetFirstChild(); node; node = NextInSubtree(node, &root))
        if (SceneAccess::StampOf(*node) > mark.epoch) return false;
    return FingerprintBelow(root) == mark.fingerprint;
}

bool HasUsableGenerator(const Node& node) {
    const Generator* generator = Generator::Get(&node);
    return generator && generator->GetGeneratedRoot();
}

}  // namespace

bool HasOtherHierarchy(const Node& node) {
    const graph::Reference* root = graph::GeneratedReference(node);
    if (!root) return false;
    if (const graph::Instance* instance = graph::CarriedInstance(node))
        return instance->GetReference() != root;
    return SceneAccess::MarkOf(node) || SceneAccess::AreChildrenStored(node);
}

void MarkGenerated(Node& node) {
    SceneAccess::SetMark(node, {SceneAccess::Epoch(), FingerprintBelow(node)});
    SceneAccess::NextEpoch();
}

bool CanGenerateChildren(const Node& node) {
    if (SceneAccess::AreChildrenStored(node) || !HasUsableGenerator(node) || HasOtherHierarchy(node))
        return false;
    if (!node.GetFirstChild()) return true;
    const GeneratedMark* mark = SceneAccess::MarkOf(node);
    return mark && !SceneAccess::IsPointedInto(node) && IsUntouched(node, *mark);
}

bool AwaitsGeneration(const Node& node) {
    return !node.GetFirstChild() && !SceneAccess::AreChildrenStored(node) && !SceneAccess::MarkOf(node) &&
           HasUsableGenerator(node);
}

namespace {

/// A hierarchy that is too large is refused before the first of its nodes is made.
bool IsWithinLimit(const Node& node, Context& context) {
    const Generator* generator = Generator::Get(&node);
    const auto* root = Cast<graph::Reference>(generator->GetGeneratedRoot());
    constexpr std::int64_t kMost = graph::kMaxOccurrences;
    if (!root || graph::CountOccurrences(*root, kMost) < kMost) return true;
    context.Fail(
        LoadFailure::kLimit,
        String(L"the hierarchy has more than %1 occurrences, and a node is wanted for each").Arg(kMost));
    return false;
}

}  // namespace

bool GenerateChildren(Node& node, Context* context) {
    const Counted<Generator> generator(Generator::Get(&node));
    const NamedTargetsAside aside(node);
    const bool failedBefore = context && context->GetFailure() != LoadFailure::kNone;
    if (!Succeeded(generator->Generate(&node, context))) return false;
    if (context && !failedBefore && context->GetFailure() != LoadFailure::kNone) return false;
    if (context && context->IsCancelled()) return false;
    MarkGenerated(node);
    return true;
}

int GenerateMissing(Scene& scene, Context* context) {
    int generated = 0;
    scene.BeginUpdate();
    for (Counted<Node> node(&scene); node; node = Counted<Node>(NextInSubtree(node.Get(), &scene))) {
        if (!AwaitsGeneration(*node)) continue;
        if ((context && !IsWithinLimit(*node, *context)) || !GenerateChildren(*node, context)) {
            generated = -1;
            break;
        }
        ++generated;
    }
    scene.EndUpdate();
    return generated;
}

}  // namespace qn::k3
