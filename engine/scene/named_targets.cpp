#include "engine/scene/named_targets.h"

#include "frame/host/node.h"
#include "graph/instance.h"
#include "graph/node_content.h"

#include <unordered_set>

namespace qn::k3 {

using graph::Instance;
using graph::Reference;

std::vector<Counted<Reference>> DefinitionsBelow(Reference& root) {
    return DefinitionsBelow({Counted<Reference>(&root)});
}

std::vector<Counted<Reference>> DefinitionsBelow(std::vector<Counted<Reference>> roots) {
    std::vector<Counted<Reference>> definitions = std::move(roots);
    std::unordered_set<const Reference*> known;
    for (const Counted<Reference>& root : definitions)
        known.insert(root.Get());
    for (std::size_t at = 0; at < definitions.size(); ++at) {
        const Counted<Reference> definition = definitions[at];
        const int count = definition->GetChildCount();
        for (int i = 0; i < count; ++i) {
            const Counted<Instance> use = definition->GetChild(i);
            Reference* used = use ? use->GetReference() : nullptr;
            if (used && known.insert(used).second) definitions.emplace_back(used);
        }
    }
    return definitions;
}

NamedTargetsAside::NamedTargetsAside(const Node& node) {
    Reference* root = graph::GeneratedReference(node);
    if (!root) return;
    for (const Counted<Reference>& definition : DefinitionsBelow(*root)) {
        Var target = definition->GetTarget();
        if (!target.IsText()) continue;
        definition->SetTarget(Var());
        targets_.emplace_back(definition, std::move(target));
    }
}

NamedTargetsAside::~NamedTargetsAside() {
    for (const auto& [definition, target] : targets_)
        definition->SetTarget(target);
}

}  // namespace qn::k3
