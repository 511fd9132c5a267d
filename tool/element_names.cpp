#include "tool/element_names.h"

#include "graph/node_content.h"
#include "tool/occurrence_path.h"

#include <algorithm>

namespace assembly::tool {
namespace {

using qn::graph::Instance;
using qn::graph::Reference;
using qn::k3::Node;
namespace Prop = qn::graph::Prop;

std::string NameOfNode(const Node& node) {
    const std::string own = node.GetName().ToUtf8();
    return own.empty() ? NameInPath(qn::graph::CarriedInstance(node)) : own;
}

/// A scene, and the root of a structure that is not shown, have no part in a path.
bool HasSegment(const Node& node) {
    return node.GetParent() != nullptr;
}

}  // namespace

std::string NameOfElement(const qn::graph::HierarchyElement* element) {
    const qn::Var name = element ? element->GetProperty(Prop::kName, 0) : qn::Var();
    return name.IsText() ? name.ToText().ToUtf8() : std::string();
}

std::string NameInPath(const Instance* use) {
    std::string name = NameOfElement(use);
    if (name.empty() && use) name = NameOfElement(use->GetReference());
    return name.empty() ? kUnnamed : name;
}

std::string CheckedNodePaths::PathOf(const Node& node) {
    std::vector<const std::string*> parts;
    for (const Node* at = &node; at && (HasSegment(*at) || at == &node); at = at->GetParent())
        parts.push_back(&SegmentOf(*at));
    std::string path;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part)
        path += (path.empty() ? "" : "/") + **part;
    return path;
}

const std::string& CheckedNodePaths::SegmentOf(const Node& node) {
    if (const auto known = segments_.find(&node); known != segments_.end()) return known->second;
    std::vector<const Node*> siblings;
    std::vector<std::string> names;
    const Node* const parent = node.GetParent();
    for (const Node* at = parent ? parent->GetFirstChild() : &node; at; at = at->GetNextSibling()) {
        siblings.push_back(at);
        names.push_back(NameOfNode(*at));
    }
    std::vector<std::string> segments = PathSegments(names);
    for (std::size_t i = 0; i < siblings.size(); ++i)
        segments_[siblings[i]] = std::move(segments[i]);
    return segments_[&node];
}

const std::string& UseSegments::Of(const Reference& definition, int child) {
    std::vector<std::string>& segments = segments_[&definition];
    if (segments.empty()) {
        std::vector<std::string> names;
        for (int i = 0; i < definition.GetChildCount(); ++i)
            names.push_back(NameInPath(definition.GetChild(i).Get()));
        segments = PathSegments(names);
    }
    return segments[static_cast<std::size_t>(child)];
}

}  // namespace assembly::tool
