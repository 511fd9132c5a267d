#include "tool/scene_check.h"

#include "construction/hierarchy_factory.h"
#include "frame/host/api.h"
#include "services/layer_check.h"
#include "services/node_check.h"
#include "services/top_level_nodes.h"
#include "tool/definition_check.h"
#include "tool/element_names.h"

namespace assembly::tool {
namespace {

using qn::Cast;
using qn::Interface;
using qn::graph::Instance;
using qn::graph::NodeFault;
using qn::graph::NodeFinding;
using qn::k3::Layer;
using qn::k3::Node;
using qn::k3::Scene;

std::string Quoted(const std::string& name) {
    return "\"" + name + "\"";
}

Finding WrongInstance(const NodeFinding& found, CheckedNodePaths& paths) {
    const Instance* const carried = qn::graph::CarriedInstance(*found.node);
    const std::string expected = Quoted(NameInPath(found.instance));
    return {FindingKind::kWrongInstance, paths.PathOf(*found.node),
            carried ? "the node carries the use " + Quoted(NameInPath(carried)) + " in place of " + expected
                    : "the node carries no use in place of " + expected};
}

Finding WrongObject(const NodeFinding& found, CheckedNodePaths& paths) {
    return {FindingKind::kWrongObject, paths.PathOf(*found.node),
            "the node shows another object than its definition " + Quoted(NameOfElement(found.reference)) +
                " has"};
}

Finding TooManyChildren(const NodeFinding& found, CheckedNodePaths& paths) {
    const Node& parent = *found.node->GetParent();
    return {FindingKind::kTooManyChildren, paths.PathOf(parent),
            "the node has " + std::to_string(parent.GetChildCount()) + " children, its definition " +
                Quoted(NameOfElement(found.reference)) + " has " +
                std::to_string(found.reference->GetChildCount()) + "; " + Quoted(paths.PathOf(*found.node)) +
                " is the first too many"};
}

Finding FindingOf(const NodeFinding& found, CheckedNodePaths& paths) {
    switch (found.fault) {
        case NodeFault::kInstance:
            return WrongInstance(found, paths);
        case NodeFault::kObject:
            return WrongObject(found, paths);
        case NodeFault::kChildCount:
            break;
    }
    return TooManyChildren(found, paths);
}

/// Calls `found` for whatever is wrong at and below the node; false once that did not want to go on.
template <class Found>
bool CheckTopLevelNode(Node& top, Found found) {
    return qn::graph::NodeCheck(found).Run(&top, qn::graph::CarriedInstance(top));
}

class LayerCheck {
public:
    LayerCheck(Scene& scene, std::vector<Finding>& findings) : nodes_(scene), findings_(findings) {}

    void Run(const Layer* layer) {
        if (!layer) return;
        const auto stray = qn::graph::ClassifyMembers(*layer, nodes_);
        const String& shown = layer->GetDisplayName();
        const std::string name = (shown.NonEmpty() ? shown : layer->GetName()).ToUtf8();
        for (Interface* const member : stray.orphaned)
            findings_.push_back({FindingKind::kOrphanedLayerMember, PathOf(member),
                                 "the layer " + Quoted(name) + " lists a node that has left the scene"});
        for (Interface* const member : stray.invalid)
            findings_.push_back({FindingKind::kInvalidLayerMember, std::string(),
                                 "the layer " + Quoted(name) + " lists an object of class " +
                                     Quoted(member->GetInterfaceName()) + ", which is no node"});
    }

private:
    using String = qn::String;
    std::string PathOf(Interface* member) {
        const Node* const node = Cast<Node>(member);
        return node ? paths_.PathOf(*node) : std::string();
    }

    qn::graph::SceneNodes nodes_;
    std::vector<Finding>& findings_;
    CheckedNodePaths paths_;
};

void CheckNodes(Scene& scene, std::vector<Finding>& findings) {
    CheckedNodePaths paths;
    for (Node* const top : qn::graph::TopLevelNodes(&scene))
        CheckTopLevelNode(*top, [&](const NodeFinding& found) {
            findings.push_back(FindingOf(found, paths));
            return true;
        });
}

}  // namespace

std::vector<Finding> CheckLayers(Scene& scene) {
    std::vector<Finding> findings;
    LayerCheck check(scene, findings);
    const qn::InterfaceArray& layers = *scene.GetLayers();
    for (int i = 0; i < layers.GetCount(); ++i)
        check.Run(Cast<Layer>(layers.Get(i)));
    const qn::InterfaceArray* const viewports = scene.GetViewports();
    for (int i = 0; viewports && i < viewports->GetCount(); ++i)
        if (const auto* const viewport = Cast<qn::k3::Viewport>(viewports->Get(i)))
            check.Run(viewport->GetLayer());
    return findings;
}

std::vector<Node*> BrokenTopLevelNodes(Scene& scene) {
    const auto factory = qn::CreateAs<qn::graph::HierarchyFactory>(qn::graph::ClassKey::kHierarchyFactory);
    std::vector<Node*> broken;
    for (Node* const top : qn::graph::TopLevelNodes(&scene)) {
        const Instance* const carried = qn::graph::CarriedInstance(*top);
        const bool isSound = CheckTopLevelNode(*top, [](const NodeFinding&) { return false; });
        const bool isCircular =
            isSound && factory && carried && factory->HasCircularReference(carried->GetReference(), nullptr);
        if (!isSound || isCircular) broken.push_back(top);
    }
    return broken;
}

std::vector<Finding> CheckScene(Scene& scene) {
    std::vector<Finding> findings;
    CheckNodes(scene, findings);
    for (const DefinitionFault& fault : CheckDefinitions(scene))
        findings.push_back({fault.kind, fault.path, MessageOf(fault)});
    for (Finding& finding : CheckLayers(scene))
        findings.push_back(std::move(finding));
    return findings;
}

}  // namespace assembly::tool
