#include "graph/path_trimming.h"
#include "tests/graph/table_fixture.h"

namespace qn::test {
namespace {

/// A dropped root, a definition with one child below it, and a selector on that child.
class PathTrimming : public testing::Test {
protected:
    PathTrimming() {
        definition->AddChild(child.Get());
        stored = StoredPath({root.Get(), child.Get()});
    }
    ~PathTrimming() override {
        child->SetProperty(Prop::kLink, Var());
        child->SetProperty(Prop::kLinkList, Var());
    }
    void Trim() {
        std::set<Reference*> visited;
        TrimSelectorPaths(root.Get(), definition.Get(), visited);
    }
    void PutInSelectors(const Counted<PersistentSelectorImpl>& selector) {
        child->Selectors().At(child->Selectors().size()) = Var(selector);
    }

    Counted<ReferenceImpl> definition = Make<ReferenceImpl>();
    Counted<ReferenceImpl> part = Make<ReferenceImpl>();
    Counted<InstanceImpl> root = Make<InstanceImpl>();
    Counted<InstanceImpl> child = Make<InstanceImpl>(part.Get());
    Counted<PersistentSelectorImpl> stored;
};

TEST_F(PathTrimming, TakesTheRootOffTheFront) {
    PutInSelectors(stored);
    Trim();
    ASSERT_EQ(stored->path.size(), 1u);
    EXPECT_EQ(stored->path[0].Get(), child.Get());
}

TEST_F(PathTrimming, LeavesAPathOfOneElementThatIsTheRoot) {
    stored = StoredPath({root.Get()});
    PutInSelectors(stored);
    Trim();
    EXPECT_EQ(stored->path.size(), 1u);
}

TEST_F(PathTrimming, LeavesAPathThatStartsElsewhere) {
    stored = StoredPath({child.Get(), root.Get()});
    PutInSelectors(stored);
    Trim();
    EXPECT_EQ(stored->path.size(), 2u);
}

TEST_F(PathTrimming, ReachesTheLinkOfAnInstance) {
    child->SetProperty(Prop::kLink, Var(stored));
    Trim();
    EXPECT_EQ(stored->path.size(), 1u);
}

TEST_F(PathTrimming, ReachesTheLinkListOfAnInstance) {
    child->SetProperty(Prop::kLinkList, LinkList({{stored.Get(), Var(1)}}));
    Trim();
    EXPECT_EQ(stored->path.size(), 1u);
}

TEST_F(PathTrimming, ReachesWhatASelectorLinksTo) {
    const auto owner = StoredPath({child.Get()});
    const auto listed = StoredPath({root.Get(), child.Get()});
    owner->SetProperty(Prop::kLink, Var(stored));
    owner->SetProperty(Prop::kLinkList, LinkList({{listed.Get(), Var(1)}}));
    PutInSelectors(owner);
    Trim();
    EXPECT_EQ(stored->path.size(), 1u);
    EXPECT_EQ(listed->path.size(), 1u);
}

TEST_F(PathTrimming, ReachesSelectorsUnderATextKey) {
    child->Selectors().At(L"n7") = Var(stored);
    Trim();
    EXPECT_EQ(stored->path.size(), 1u);
}

TEST_F(PathTrimming, VisitsASharedDefinitionOnce) {
    const auto leaf = Make<InstanceImpl>();
    leaf->Selectors().At(0) = Var(stored);
    stored->path = {Weak<Instance>(root.Get()), Weak<Instance>(root.Get()), Weak<Instance>(leaf.Get())};
    part->AddChild(leaf.Get());
    const auto second = Make<InstanceImpl>(part.Get());
    definition->AddChild(second.Get());
    Trim();
    EXPECT_EQ(stored->path.size(), 2u);
}

TEST_F(PathTrimming, PassesOverWhatTheCallerHasVisited) {
    const auto leaf = Make<InstanceImpl>();
    leaf->Selectors().At(0) = Var(stored);
    part->AddChild(leaf.Get());
    std::set<Reference*> visited{part.Get()};
    TrimSelectorPaths(root.Get(), definition.Get(), visited);
    EXPECT_EQ(stored->path.size(), 2u);
}

TEST_F(PathTrimming, ReachesTenThousandLevels) {
    Counted<ReferenceImpl> above = part;
    for (int i = 0; i < 10000; ++i) {
        const auto below = Make<ReferenceImpl>();
        above->AddChild(Make<InstanceImpl>(below.Get()).Get());
        above = below;
    }
    const auto leaf = Make<InstanceImpl>();
    leaf->Selectors().At(0) = Var(stored);
    above->AddChild(leaf.Get());
    Trim();
    EXPECT_EQ(stored->path.size(), 1u);
}

}  // namespace
}  // namespace qn::test
