#pragma once

#include "frame/host/counted.h"
#include "frame/host/var.h"
#include "graph/reference.h"

#include <utility>
#include <vector>

namespace qn::k3 {

class Node;

/// Takes the file names off the definitions that a node's generator works from, and gives them back when it
/// dies: whoever generates nodes meanwhile opens no file, and the names stay.
class NamedTargetsAside {
public:
    explicit NamedTargetsAside(const Node& node);
    ~NamedTargetsAside();
    NamedTargetsAside(const NamedTargetsAside&) = delete;
    NamedTargetsAside& operator=(const NamedTargetsAside&) = delete;

private:
    std::vector<std::pair<Counted<graph::Reference>, Var>> targets_;
};

/// All definitions below one, itself first, each once. Costs by definitions and uses.
std::vector<Counted<graph::Reference>> DefinitionsBelow(graph::Reference& root);
/// The same for several, which differ.
std::vector<Counted<graph::Reference>> DefinitionsBelow(std::vector<Counted<graph::Reference>> roots);

}  // namespace qn::k3
