#include "operations/update_bs_ids.h"

#include "graph/node_content.h"
#include "graph/node_walk.h"
#include "operations/element_values.h"
#include "operations/layers.h"

#include <unordered_set>

namespace qn::graph {
namespace {

String Modified(const Var& id, const IdModification& modification) {
    const String old = id.ToText();
    return modification.asPrefix ? modification.text + old : old + modification.text;
}

/// Changes the ids of one kind of element. It remembers the new texts alone.
class ElementIds {
public:
    explicit ElementIds(const IdModification& modification) : modification_(modification) {}

    void Update(HierarchyElement& element) {
        const Var id = element.GetProperty(Prop::kBsId, 0);
        if (!id.ToBool() || made_.count(id.ToText())) return;
        const String text = Modified(id, modification_);
        element.SetProperty(Prop::kBsId, Var(text));
        made_.insert(text);
    }

private:
    const IdModification& modification_;
    std::unordered_set<String> made_;
};

void UpdateParameter(k3::Node& node, const IdModification& modification) {
    const Var id = node.GetParamVar(Param::kBsId);
    if (id.ToBool()) node.SetParamVar(Param::kBsId, Var(Modified(id, modification)));
}

}  // namespace

void UpdateBsIds(k3::Node& root, const IdModification& modification, unsigned flags) {
    ElementIds entities(modification), nodes(modification);
    WalkNodes(root, [&](k3::Node& node) {
        if (Instance* const instance = CarriedInstance(node)) {
            Reference* const reference = instance->GetReference();
            if (reference && (flags & LayerFlag::kEntity)) entities.Update(*reference);
            if (flags & LayerFlag::kNode) nodes.Update(*instance);
        }
        if (flags & LayerFlag::kSelector) UpdateParameter(node, modification);
    });
}

}  // namespace qn::graph
