#pragma once

#include "frame/host/node.h"
#include "graph/instance.h"
#include "graph/reference.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace assembly::tool {

/// What users see of an element without a name.
inline constexpr const char* kUnnamed = "(no name)";

/// The name of an element, UTF-8, empty without one or for null.
std::string NameOfElement(const qn::graph::HierarchyElement* element);
/// What a use goes by in a path: its own name, else its definition's.
std::string NameInPath(const qn::graph::Instance* use);

/// Paths of nodes that may carry wrong instances: a node goes by its own name first.
class CheckedNodePaths {
public:
    std::string PathOf(const qn::k3::Node& node);

private:
    const std::string& SegmentOf(const qn::k3::Node& node);
    std::unordered_map<const qn::k3::Node*, std::string> segments_;
};

/// The parts of paths that the uses of a definition go by, found once for each definition.
class UseSegments {
public:
    const std::string& Of(const qn::graph::Reference& definition, int child);

private:
    std::unordered_map<const qn::graph::Reference*, std::vector<std::string>> segments_;
};

}  // namespace assembly::tool
