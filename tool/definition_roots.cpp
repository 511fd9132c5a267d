#include "tool/definition_roots.h"

#include "graph/node_content.h"
#include "services/top_level_nodes.h"
#include "tool/element_names.h"
#include "tool/occurrence_path.h"

#include <unordered_set>

namespace assembly::tool {
namespace {

using qn::Counted;
using qn::graph::Instance;
using qn::graph::Reference;
using qn::k3::Node;

class Collector {
public:
    void Add(Node& node) {
        if (Reference* const root = qn::graph::GeneratedReference(node)) Add(root, &node);
    }
    void AddCarried(const Node& node) {
        const Instance* const carried = qn::graph::CarriedInstance(node);
        if (carried && carried->GetReference()) Add(carried->GetReference(), &node);
    }
    std::vector<DefinitionRoot> Take() {
        std::vector<std::string> names;
        for (const DefinitionRoot& root : roots_)
            if (!IsContainer(*root.definition)) names.push_back(root.path);
        const std::vector<std::string> segments = PathSegments(names);
        std::size_t next = 0;
        for (DefinitionRoot& root : roots_)
            root.path = IsContainer(*root.definition) ? std::string() : segments[next++];
        return std::move(roots_);
    }

private:
    void Add(Reference* definition, const Node* node) {
        if (!known_.insert(definition).second) return;
        std::string name = NameOfElement(definition->GetInstance(definition->GetInstanceCount() - 1).Get());
        if (name.empty()) name = NameOfElement(definition);
        if (name.empty()) name = node->GetName().ToUtf8();
        roots_.push_back({Counted<Reference>(definition), std::move(name)});
    }

    std::unordered_set<const Reference*> known_;
    std::vector<DefinitionRoot> roots_;
};

bool AddToCollector(Node* node, qn::ParamWord collector) {
    reinterpret_cast<Collector*>(collector)->Add(*node);
    return true;
}

}  // namespace

std::vector<DefinitionRoot> DefinitionRoots(qn::k3::Scene& scene) {
    Collector collector;
    for (Node* const top : qn::graph::TopLevelNodes(&scene)) {
        top->Visit(0, &AddToCollector, reinterpret_cast<qn::ParamWord>(&collector));
        collector.AddCarried(*top);
    }
    return collector.Take();
}

}  // namespace assembly::tool
