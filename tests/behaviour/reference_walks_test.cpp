#include "graph/resolver_cache.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/foreign_instance.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// A root with two uses of one part, which has one use of a pin; every use and every definition has a
/// selector by the id of `goal`.
struct Walked {
    Walked() {
        for (const auto& child : {left, right})
            root->AddChild(child.Get());
        part->AddChild(inner.Get());
        for (const auto& use : {left, right, inner})
            SetSelectors(*use, {IdSelector(*table, IdPath({L"goal"})).Get()});
        for (const auto& reference : {root, part, pin})
            reference->AddSelectorPath(IdPath({L"goal"}));
    }
    /// Whether the selector of the element has the live path.
    template <class Element>
    bool IsLive(const Counted<Element>& element) const {
        return LivePath(*SelectorUnder(*element, Var(0))) == std::vector<Instance*>{goal.Get()};
    }

    Counted<LookupTable> table = NewTable();
    Counted<Instance> goal = EnterInstance(*table, L"goal");
    Counted<Reference> root = NewReferenceIn(*table), part = NewReferenceIn(*table),
                       pin = NewReferenceIn(*table);
    Counted<Instance> left = part->CreateInstance(), right = part->CreateInstance(),
                      inner = pin->CreateInstance();
};

Var ByObject(const Counted<Instance>& instance) {
    return Var(instance.Get(), 1);
}

TEST(ReferenceResolveWalk, StaysAtTheRootUnlessTold) {
    const Walked w;
    w.root->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(w.IsLive(w.root));
    EXPECT_FALSE(w.IsLive(w.left));
    EXPECT_FALSE(w.IsLive(w.part));
}

TEST(ReferenceResolveWalk, ReachesEveryUseAndDefinition) {
    const Walked w;
    Var cache = w.root->CreateResolverCache();
    w.root->ResolveSelectors(true, &cache);
    EXPECT_TRUE(w.IsLive(w.root) && w.IsLive(w.left) && w.IsLive(w.right));
    const auto* visited = Cast<ResolverCache>(cache);
    for (const auto& use : {w.left, w.right, w.inner})
        EXPECT_TRUE(visited->ContainsInstance(use.Get()));
    EXPECT_FALSE(visited->ContainsInstance(w.goal.Get()));
    EXPECT_TRUE(w.IsLive(w.inner));
}

TEST(ReferenceResolveWalk, TakesTheLivePathFromADefinitionThatItMeetsTwice) {
    const Walked w;
    Var cache = w.root->CreateResolverCache();
    w.root->ResolveSelectors(true, &cache);
    EXPECT_FALSE(w.IsLive(w.part)) << "its second use asks it again, when the ids are gone";
    EXPECT_TRUE(w.IsLive(w.pin)) << "its use is in the cache then";
}

TEST(ReferenceResolveWalk, GoesWithoutACache) {
    const Walked w;
    w.root->ResolveSelectors(true, nullptr);
    EXPECT_TRUE(w.IsLive(w.left) && w.IsLive(w.right) && w.IsLive(w.inner));
}

TEST(ReferenceResolveWalk, DoesNotEnterWhatTheCacheHas) {
    const Walked w;
    Var cache = w.root->CreateResolverCache();
    Cast<ResolverCache>(cache)->AddInstance(w.inner.Get());
    w.root->ResolveSelectors(true, &cache);
    EXPECT_TRUE(w.IsLive(w.left));
    EXPECT_FALSE(w.IsLive(w.inner));
    EXPECT_FALSE(w.IsLive(w.pin));
}

TEST(ReferenceResolveWalk, TakesOnlyAResolverCacheForACache) {
    const Walked w;
    Var map = MapOf({{ByObject(w.left), Var(1)}});
    w.root->ResolveSelectors(true, &map);
    EXPECT_TRUE(w.IsLive(w.left));
}

TEST(ReferenceResolveWalk, PassesOverForeignChildren) {
    const Walked w;
    const auto foreign = Make<ForeignInstance>();
    Feed(*w.root, 0x1002, ArrayOf({Var(foreign)}).ToArray());
    w.root->ResolveSelectors(true, nullptr);
    EXPECT_EQ(foreign->resolved, 0);
}

TEST(ReferenceResolveWalk, EndsInARing) {
    const Walked w;
    const auto back = w.root->CreateInstance();
    w.pin->AddChild(back.Get());
    Var cache = w.root->CreateResolverCache(), visited;
    w.root->ResolveSelectors(true, &cache);
    w.root->ResolveSelectors(true, nullptr);
    w.root->StoreSelectors(true, &visited);
    w.root->StoreSelectors(true, nullptr);
    w.pin->RemoveChildAt(0);
}

TEST(ReferenceStoreWalk, StaysAtTheRootUnlessTold) {
    const Walked w;
    w.root->StoreSelectors(false, nullptr);
    EXPECT_EQ(w.root->GetSelectorPath(0), ArrayOf({}));
    EXPECT_EQ(w.part->GetSelectorPath(0), IdPath({L"goal"}));
}

TEST(ReferenceStoreWalk, ReachesEveryUseAndDefinitionAndNotesTheUses) {
    const Walked w;
    Var visited;
    w.root->StoreSelectors(true, &visited);
    for (const auto& reference : {w.root, w.part, w.pin})
        EXPECT_EQ(reference->GetSelectorPath(0), ArrayOf({})) << "it lost its ids";
    ASSERT_TRUE(visited.IsMap());
    EXPECT_EQ(visited.size(), 3);
    for (const auto& use : {w.left, w.right, w.inner}) {
        const Var* mark = visited.Lookup(ByObject(use));
        ASSERT_NE(mark, nullptr);
        EXPECT_EQ(mark->GetTag(), VarTag::kInt);
        EXPECT_EQ(*mark, Var(1));
    }
}

TEST(ReferenceStoreWalk, GoesOnWithAMapThatItIsGiven) {
    const Walked w;
    Var visited = MapOf({{ByObject(w.inner), Var(true)}, {Var(L"other"), Var(5)}});
    w.root->StoreSelectors(true, &visited);
    EXPECT_EQ(w.part->GetSelectorPath(0), ArrayOf({}));
    EXPECT_EQ(w.pin->GetSelectorPath(0), IdPath({L"goal"})) << "its only use counts as visited";
    EXPECT_EQ(visited.size(), 4);
}

TEST(ReferenceStoreWalk, EntersWhatIsMarkedFalse) {
    const Walked w;
    Var visited = MapOf({{ByObject(w.inner), Var(0)}});
    w.root->StoreSelectors(true, &visited);
    EXPECT_EQ(w.pin->GetSelectorPath(0), ArrayOf({}));
    EXPECT_EQ(*visited.Lookup(ByObject(w.inner)), Var(1));
}

TEST(ReferenceStoreWalk, GoesWithoutAMap) {
    const Walked w;
    w.root->StoreSelectors(true, nullptr);
    EXPECT_EQ(w.pin->GetSelectorPath(0), ArrayOf({}));
}

TEST(ReferenceStoreWalk, TurnsAroundWhatTheResolveWalkDid) {
    const Walked w;
    w.root->RemoveChild(w.right.Get());
    Var cache = w.root->CreateResolverCache(), visited;
    w.root->ResolveSelectors(true, &cache);
    EXPECT_TRUE(w.IsLive(w.root) && w.IsLive(w.left) && w.IsLive(w.part) && w.IsLive(w.inner) &&
                w.IsLive(w.pin));
    w.root->StoreSelectors(true, &visited);
    for (const auto& reference : {w.root, w.part, w.pin})
        EXPECT_EQ(reference->GetSelectorPath(0), IdPath({L"goal"}));
}

TEST(ReferenceWalks, GoAsDeepAsTheAssembly) {
    constexpr int kLevels = 10'000;
    const auto table = NewTable();
    const auto root = NewReferenceIn(*table);
    Counted<Reference> last = root;
    for (int i = 0; i < kLevels; ++i) {
        const auto next = NewReferenceIn(*table);
        last->AddChild(next->CreateInstanceWithId(String()).Get());
        last = next;
    }
    last->AddSelectorPath(IdPath({L"n1"}));
    Var cache = root->CreateResolverCache(), visited;
    root->ResolveSelectors(true, &cache);
    EXPECT_EQ(LivePath(*SelectorUnder(*last, Var(0))), std::vector<Instance*>{root->GetChild(0).Get()});
    root->StoreSelectors(true, &visited);
    EXPECT_EQ(last->GetSelectorPath(0), IdPath({L"n1"}));
    EXPECT_FALSE(root->ToDebugString().IsEmpty());
}

}  // namespace
}  // namespace qn::test
