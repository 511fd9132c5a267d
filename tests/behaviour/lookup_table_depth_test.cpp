#include "graph/path_trimming.h"
#include "tests/behaviour/stored_selector.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr std::size_t kLevels = 10000;

/// One use below the other, each shown by one node.
struct Chain : Stage {
    Chain() {
        k3::Node* parent = nullptr;
        for (std::size_t level = 0; level < kLevels; ++level) {
            const auto made = NewReferenceIn(*table)->CreateInstanceWithId(String());
            made->SetProperty(Prop::kName, made->GetProperty(Prop::kLocalId, 0));  // as its node: no override
            if (level > 0) path.back()->GetReference()->AddChild(made.Get());
            path.push_back(made.Get());
            parent = NodeOf(made.Get(), parent);
            shown.push_back(parent);
            selector.AppendPathElement(made.Get());
        }
    }

    std::vector<Instance*> path;
    std::vector<k3::Node*> shown;
    Selector selector;
};

TEST(LookupTableDepth, ChecksADeepPath) {
    const Chain c;
    EXPECT_TRUE(c.table->IsSelectorPathValid(c.selector));
}

TEST(LookupTableDepth, FindsTheNodeOfADeepPath) {
    const Chain c;
    for (const bool exact : {false, true})
        EXPECT_EQ(NodesIn(c.table->GetNodesOfSelector(c.selector, exact).Get()),
                  std::vector<k3::Node*>{c.shown.back()});
}

TEST(LookupTableDepth, KeepsADeepPathInBothForms) {
    const Chain c;
    const auto made = c.table->CreatePersistentSelector(c.selector);
    EXPECT_TRUE(PathIn(*made) == c.path);
    EXPECT_EQ(FieldsOf(made).idPath.size(), static_cast<int>(kLevels));
    FieldsOf(made).path.clear();
    EXPECT_TRUE(PathFor(*c.table, *made) == c.path);
}

TEST(LookupTableDepth, TrimsADeepHierarchy) {
    const Chain c;
    const auto deep = LiveSelector({c.path[0], c.path[1]});
    SetSelectors(*c.path.back(), {deep.Get()});
    std::set<Reference*> visited;
    TrimSelectorPaths(c.path[0], c.path[0]->GetReference(), visited);
    EXPECT_EQ(PathIn(*deep), std::vector<Instance*>{c.path[1]});
}

TEST(LookupTableDepth, LinksNodesOfADeepHierarchyAndBack) {
    const Chain c;
    c.shown.back()->SetParamVar(Param::kLinkedNode, Var(c.shown[kLevels / 2], 0));
    c.On(c.shown[0])->StoreElementChanges(c.shown[0]);
    c.shown.back()->DeleteParam(Param::kLinkedNode);
    c.table->ApplyElementChanges(c.shown[0]);
    EXPECT_EQ(c.shown.back()->GetParamVar(Param::kLinkedNode).ToInterface(), c.shown[kLevels / 2]);
}

TEST(LookupTableDepth, RebuildsFromADeepScene) {
    const Chain c;
    c.table->Rebuild();
    EXPECT_EQ(c.table->GetInstanceOfNode(c.shown.back()).Get(), c.path.back());
}

}  // namespace
}  // namespace qn::test
