#include "operations/replace_with_based_on.h"

#include "graph/node_content.h"
#include "graph/node_walk.h"
#include "operations/element_values.h"

namespace qn::graph {
namespace {

/// The id that the origin link gives, empty if it gives none. `Element` is `Reference` or `Instance`: only an
/// origin of the element's own class counts.
template <class Element>
Var IdOfOrigin(const Var& origin) {
    if (!origin.ToBool()) return Var();
    if (const auto* const element = Cast<Element>(origin)) {
        const Var id = element->GetProperty(Prop::kBsId, 0);
        return id.ToBool() ? id : Var();
    }
    return origin.IsText() ? origin : Var();
}

template <class Element>
void BasedOn(Element& element) {
    const Var id = IdOfOrigin<Element>(element.GetProperty(Prop::kOrigin, 0));
    if (id.IsEmpty()) return;
    element.SetProperty(Prop::kBsId, id);
    element.SetProperty(Prop::kOrigin, Var());
}

}  // namespace

void ReplaceBsIdsWithBasedOn(k3::Node& root) {
    WalkNodes(root, [](k3::Node& node) {
        Instance* const instance = CarriedInstance(node);
        if (!instance) return;
        if (Reference* const reference = instance->GetReference()) BasedOn(*reference);
        BasedOn(*instance);
    });
}

}  // namespace qn::graph
