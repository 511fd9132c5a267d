#include "graph/path_trimming.h"
#include "tests/behaviour/stored_selector.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;
using Path = std::vector<Instance*>;

Var Link(const Counted<PersistentSelector>& selector) {
    return ArrayOf({Var(selector), Var(L"more")});
}

/// root > part > piece. Paths start at the root, which is to leave.
struct LoadedFile {
    LoadedFile() {
        definition->AddChild(part.Get());
        part->GetReference()->AddChild(piece.Get());
    }
    void Trim() const {
        std::set<Reference*> visited;
        TrimSelectorPaths(root.Get(), definition.Get(), visited);
    }
    /// A stored selector from the root to the part.
    Counted<PersistentSelector> FromRoot() const { return LiveSelector({root.Get(), part.Get()}); }

    Counted<Reference> definition = NewReference();
    Counted<Instance> root = definition->CreateInstance();
    Counted<Instance> part = NewReference()->CreateInstance();
    Counted<Instance> piece = NewReference()->CreateInstance();
};

TEST(PersistentSelectorTrimming, TakesTheRootOffTheFront) {
    const LoadedFile f;
    const auto selector = LiveSelector({f.root.Get(), f.part.Get(), f.piece.Get()});
    SetSelectors(*f.part, {selector.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*selector), (Path{f.part.Get(), f.piece.Get()}));
}

TEST(PersistentSelectorTrimming, LeavesAPathOfTheRootAlone) {
    const LoadedFile f;
    const auto selector = LiveSelector({f.root.Get()});
    SetSelectors(*f.part, {selector.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*selector), Path{f.root.Get()});
}

TEST(PersistentSelectorTrimming, LeavesPathsThatStartElsewhere) {
    const LoadedFile f;
    const auto selector = LiveSelector({f.part.Get(), f.root.Get()});
    SetSelectors(*f.part, {selector.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*selector), (Path{f.part.Get(), f.root.Get()}));
}

TEST(PersistentSelectorTrimming, TakesOneElementOnly) {
    const LoadedFile f;
    const auto selector = LiveSelector({f.root.Get(), f.root.Get(), f.part.Get()});
    SetSelectors(*f.part, {selector.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*selector), (Path{f.root.Get(), f.part.Get()}));
}

TEST(PersistentSelectorTrimming, ReachesAllSelectorsOfAnInstance) {
    const LoadedFile f;
    const auto first = f.FromRoot(), second = f.FromRoot(), link = f.FromRoot(), listed = f.FromRoot();
    SetSelectors(*f.part, {first.Get(), second.Get()});
    f.part->SetProperty(Prop::kLink, Var(link));
    f.part->SetProperty(Prop::kLinkList, ArrayOf({Var(L"no array"), Link(listed)}));
    f.Trim();
    for (const auto& selector : {first, second, link, listed})
        EXPECT_EQ(PathIn(*selector), Path{f.part.Get()});
}

TEST(PersistentSelectorTrimming, ReachesTheLinksOfAnInstancesSelectors) {
    const LoadedFile f;
    const auto carrier = f.FromRoot(), link = f.FromRoot(), listed = f.FromRoot();
    carrier->SetProperty(Prop::kLink, Var(link));
    carrier->SetProperty(Prop::kLinkList, ArrayOf({Link(listed)}));
    SetSelectors(*f.part, {carrier.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*link), Path{f.part.Get()});
    EXPECT_EQ(PathIn(*listed), Path{f.part.Get()});
}

TEST(PersistentSelectorTrimming, ReachesNoLinksOfLinks) {
    const LoadedFile f;
    const auto link = f.FromRoot(), inner = f.FromRoot();
    link->SetProperty(Prop::kLink, Var(inner));
    f.part->SetProperty(Prop::kLink, Var(link));
    f.Trim();
    EXPECT_EQ(PathIn(*link), Path{f.part.Get()});
    EXPECT_EQ(PathIn(*inner), (Path{f.root.Get(), f.part.Get()}));
}

TEST(PersistentSelectorTrimming, GoesDownTheHierarchy) {
    const LoadedFile f;
    const auto selector = f.FromRoot();
    SetSelectors(*f.piece, {selector.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*selector), Path{f.part.Get()});
}

TEST(PersistentSelectorTrimming, LeavesTheSelectorsOfTheRootItself) {
    const LoadedFile f;
    const auto selector = f.FromRoot();
    SetSelectors(*f.root, {selector.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*selector), (Path{f.root.Get(), f.part.Get()}));
}

TEST(PersistentSelectorTrimming, VisitsASharedReferenceOnce) {
    const LoadedFile f;
    const auto twin = f.part->GetReference()->CreateInstance();
    f.definition->AddChild(twin.Get());
    const auto selector = LiveSelector({f.root.Get(), f.root.Get(), f.part.Get()});
    SetSelectors(*f.piece, {selector.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*selector), (Path{f.root.Get(), f.part.Get()})) << "a second visit would trim again";
}

TEST(PersistentSelectorTrimming, DoesNotEnterWhatWasVisited) {
    const LoadedFile f;
    const auto onPart = f.FromRoot(), onPiece = f.FromRoot();
    SetSelectors(*f.part, {onPart.Get()});
    SetSelectors(*f.piece, {onPiece.Get()});
    std::set<Reference*> visited{f.part->GetReference()};
    TrimSelectorPaths(f.root.Get(), f.definition.Get(), visited);
    EXPECT_EQ(PathIn(*onPart), Path{f.part.Get()});
    EXPECT_EQ(PathIn(*onPiece), (Path{f.root.Get(), f.part.Get()}));
}

TEST(PersistentSelectorTrimming, RemembersTheReferencesThatItEntered) {
    const LoadedFile f;
    std::set<Reference*> visited;
    TrimSelectorPaths(f.root.Get(), f.definition.Get(), visited);
    EXPECT_EQ(visited, (std::set<Reference*>{f.part->GetReference(), f.piece->GetReference()}));
}

TEST(PersistentSelectorTrimming, EndsInAHierarchyThatContainsItself) {
    const LoadedFile f;
    const auto ring = f.definition->CreateInstance();
    f.part->GetReference()->AddChild(ring.Get());
    const auto selector = f.FromRoot();
    SetSelectors(*ring, {selector.Get()});
    f.Trim();
    EXPECT_EQ(PathIn(*selector), Path{f.part.Get()});
    f.part->GetReference()->RemoveChild(ring.Get());
}

TEST(PersistentSelectorTrimming, PassesOverChildrenWithoutReference) {
    const LoadedFile f;
    const auto bare = NewInstance();
    const auto selector = f.FromRoot();
    SetSelectors(*bare, {selector.Get()});
    f.definition->AddChild(bare.Get());
    f.Trim();
    EXPECT_EQ(PathIn(*selector), Path{f.part.Get()});
}

}  // namespace
}  // namespace qn::test
