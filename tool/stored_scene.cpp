#include "tool/stored_scene.h"

#include "frame/host/generator.h"
#include "services/top_level_nodes.h"

namespace assembly::tool {
namespace {

using qn::k3::Node;

/// Ends the walk at a node with a generator and children, and notes it.
bool LookForStoredContent(Node* node, qn::ParamWord found) {
    if (!node->GetFirstChild() || !qn::k3::Generator::Get(node)) return true;
    *reinterpret_cast<bool*>(found) = true;
    return false;
}

bool HasStoredContent(qn::k3::Scene& scene) {
    bool found = false;
    for (Node* const top : qn::graph::TopLevelNodes(&scene))
        if (!found) top->Visit(0, &LookForStoredContent, reinterpret_cast<qn::ParamWord>(&found));
    return found;
}

}  // namespace

qn::Counted<qn::k3::Scene> LoadAsStored(Session& session, LoadRequest request) {
    request.unchecked = request.graphOnly = true;
    qn::Counted<qn::k3::Scene> scene = session.Load(request);
    if (!HasStoredContent(*scene)) return scene;
    scene = nullptr;
    request.graphOnly = false;
    return session.Load(request);
}

}  // namespace assembly::tool
