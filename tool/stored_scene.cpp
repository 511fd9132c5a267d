#include "tool/stored_scene.h"

#include "frame/host/generator.h"
#include "graph/graph.h"
#include "services/top_level_nodes.h"

namespace assembly::tool {
namespace {

using qn::k3::Node;

/// Whether the definitions alone do not tell all of a node with a generator: its content is stored, or the
/// generator is of another kind, whose own chunks only its class knows.
bool NeedsItsGenerator(const Node& node) {
    const qn::k3::Generator* const generator = qn::k3::Generator::Get(&node);
    return generator && (node.GetFirstChild() || !qn::EqualKeys(generator->GetInterfaceName(),
                                                                qn::graph::ClassKey::kHierarchyGenerator));
}

/// Ends the walk at the first such node, and notes it.
bool LookForGenerators(Node* node, qn::ParamWord found) {
    if (!NeedsItsGenerator(*node)) return true;
    *reinterpret_cast<bool*>(found) = true;
    return false;
}

bool NeedsGenerators(qn::k3::Scene& scene) {
    bool found = false;
    for (Node* const top : qn::graph::TopLevelNodes(&scene))
        if (!found) top->Visit(0, &LookForGenerators, reinterpret_cast<qn::ParamWord>(&found));
    return found;
}

}  // namespace

qn::Counted<qn::k3::Scene> LoadAsStored(Session& session, LoadRequest request) {
    request.unchecked = request.graphOnly = true;
    qn::Counted<qn::k3::Scene> scene = session.Load(request);
    if (!NeedsGenerators(*scene)) return scene;
    scene = nullptr;
    request.graphOnly = false;
    return session.Load(request);
}

}  // namespace assembly::tool
