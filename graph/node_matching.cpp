#include "graph/node_matching.h"

#include "frame/host/selector.h"
#include "graph/node_content.h"
#include "graph/node_maps.h"

namespace qn::graph {

namespace {

/// `shows(node, instance)` tells whether a node stands for a path element.
template <class Shows>
k3::Node* Match(k3::Node* start, const Selector& selector, Shows&& shows) {
    const int count = selector.GetPathElementCount();
    if (!start || count == 0 || !shows(start, selector.GetPathElement(0))) return nullptr;
    k3::Node* node = start;
    for (int i = 1; i < count && node; ++i) {
        const Instance* wanted = selector.GetPathElement(static_cast<unsigned>(i));
        node = node->GetFirstChild();
        while (node && !shows(node, wanted))
            node = node->GetNextSibling();
    }
    return node;
}

}  // namespace

k3::Node* MatchPath(k3::Node* start, const Selector& selector) {
    return Match(start, selector, [](const k3::Node* node, const Instance* wanted) {
        return wanted && CarriedInstance(*node) == wanted;
    });
}

k3::Node* MatchPath(k3::Node* start, const Selector& selector, const NodeToInstance& instances) {
    return Match(start, selector, [&](const k3::Node* node, const Instance* wanted) {
        return wanted && instances.Find(node) == wanted;
    });
}

}  // namespace qn::graph
