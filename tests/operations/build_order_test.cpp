#include "construction/hierarchy_factory.h"
#include "graph/lookup_table.h"
#include "graph/persistent_selector.h"
#include "tests/operations/operations_support.h"

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using graph::Selector;
using testing::ElementsAre;

/// Makes definitions and notes how far the hierarchy is when it ties a node to one. The rest answers null.
class NotingFactory final : public graph::HierarchyFactory {
public:
    Counted<graph::Reference> CreateReference() override { return MakeReference(); }
    void ApplyNodeToReference(k3::Node* node, graph::Reference* reference) override {
        const k3::Node* const parent = node->GetParent();
        const auto* const above =
            parent ? Cast<graph::Instance>(parent->GetParamVar(Param::kInstance)) : nullptr;
        const int uses = above ? above->GetReference()->GetChildCount() : 0;
        const bool isBare =
            node->GetParamVar(Param::kInstance).IsEmpty() && reference->GetProperty(kBsId, 0).IsEmpty();
        notes.push_back(node->GetName().ToUtf8() + " after " + std::to_string(uses) + " uses" +
                        (isBare ? "" : ", not bare"));
    }

    Counted<graph::LookupTable> CreateLookupTable() override { return {}; }
    Counted<graph::Reference> CreateReferenceFromTraverser(Selector::Traverser*, graph::LookupTable*,
                                                           const String&) override {
        return {};
    }
    Counted<Selector::Traverser> CreateNodesFromSelector(const Selector&, Selector::Traverser*) override {
        return {};
    }
    Counted<k3::Node> GenerateNodes(const Selector&, k3::Node*) override { return {}; }
    Counted<graph::Reference> CreateStandaloneReference(k3::Node*) override { return {}; }
    Counted<graph::Reference> CreateReferenceFromNode(k3::Node*, graph::LookupTable*) override { return {}; }
    Counted<graph::Instance> CreateInstanceFromNode(k3::Node*) override { return {}; }
    Counted<graph::Instance> CreateInstanceInTable(k3::Node*, graph::LookupTable*) override { return {}; }
    Selector SelectorFromPersistent(graph::PersistentSelector*) override { return {}; }
    Counted<graph::PersistentSelector> PersistentFromSelector(const Selector&) override { return {}; }
    Counted<k3::Node> FindNodeForSelector(k3::Node*, const Selector&) override { return {}; }
    Selector SelectorFromInstance(graph::Instance*) override { return {}; }
    Counted<k3::Node> FindRelatedNode(InterfaceArray*, k3::Node*) override { return {}; }
    bool HasCircularReference(graph::Reference*, Context*) override { return false; }
    void ApplyNodeToInstance(k3::Node*) override {}
    Counted<graph::LookupTable> CreateLookupTableForScene(k3::Scene*, Context*) override { return {}; }

    std::vector<std::string> notes;
};

class BuildOrder : public OperationTest {};

TEST_F(BuildOrder, TiesTheNodeToItsDefinitionBeforeTheInstanceIsHungInAndIdsAreGiven) {
    k3::Node* const car = AddNode("car");
    AddNode("left", car);
    AddNode("right", car);
    const auto factory = Make<NotingFactory>();
    ThePartners().factory = factory;
    EXPECT_EQ(Run(15), 1);
    EXPECT_THAT(factory->notes, ElementsAre("car after 0 uses", "left after 0 uses", "right after 1 uses"));
    EXPECT_EQ(ReferenceOf(car)->GetChildCount(), 2);
}

}  // namespace
}  // namespace qn::test
