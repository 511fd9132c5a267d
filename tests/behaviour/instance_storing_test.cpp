#include "tests/behaviour/selector_scenery.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// Gives the ids to other instances; whatever has stored ids follows them when it is resolved.
struct Successors {
    explicit Successors(const Scenery& s)
        : a(EnterInstance(*s.table, L"a")), b(EnterInstance(*s.table, L"b")) {
        s.at->ResolveSelectors(false, nullptr);
    }
    Counted<Instance> a, b;
};

TEST(InstanceStoring, WritesTheIdsOfTheLivePath) {
    const Scenery s;
    const auto selector = LiveSelector({s.a.Get(), s.b.Get()});
    SetSelectors(*s.at, {selector.Get()});
    s.at->StoreSelectors(false, nullptr);
    const Successors next(s);
    EXPECT_EQ(LivePath(*selector), (Path{next.a.Get(), next.b.Get()}));
}

TEST(InstanceStoring, KeepsTheLivePath) {
    const Scenery s;
    const auto selector = LiveSelector({s.a.Get()});
    SetSelectors(*s.at, {selector.Get()});
    s.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*selector), Path{s.a.Get()});
}

TEST(InstanceStoring, ReplacesTheIdsThatWereThere) {
    const Scenery s;
    s.at->AddSelector(PathOf({s.a.Get()}));  // stored as "a"
    s.a->SetProperty(Prop::kLocalId, Var(L"b"));
    s.at->StoreSelectors(false, nullptr);
    const Successors next(s);
    EXPECT_EQ(ElementsOf(s.at->GetSelector(0)), Path{next.b.Get()});
}

TEST(InstanceStoring, EmptiesTheIdsIfOneElementHasNone) {
    const Scenery s;
    const auto nameless = NewReference()->CreateInstance();
    const auto selector = LiveSelector({s.a.Get(), nameless.Get(), s.b.Get()});
    SetSelectors(*s.at, {selector.Get()});
    s.at->StoreSelectors(false, nullptr);
    const Successors next(s);
    EXPECT_EQ(LivePath(*selector), (Path{s.a.Get(), nameless.Get(), s.b.Get()})) << "nothing to resolve";
}

TEST(InstanceStoring, ReadsTheIdOfTheInstanceItselfNotOfItsDefinition) {
    const Scenery s;
    const auto nameless = NewReferenceIn(*s.table)->CreateInstance();  // its definition has an id
    const auto selector = LiveSelector({nameless.Get()});
    SetSelectors(*s.at, {selector.Get()});
    s.at->StoreSelectors(false, nullptr);
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*selector), Path{nameless.Get()});
}

TEST(InstanceStoring, PassesOverDeadElements) {
    const Scenery s;
    auto mortal = NewReference()->CreateInstance();
    mortal->SetProperty(Prop::kLocalId, Var(L"mortal"));
    const auto selector = LiveSelector({s.a.Get(), mortal.Get(), s.b.Get()});
    SetSelectors(*s.at, {selector.Get()});
    mortal.Reset();
    s.at->StoreSelectors(false, nullptr);
    const Successors next(s);
    EXPECT_EQ(LivePath(*selector), (Path{next.a.Get(), next.b.Get()}));
}

TEST(InstanceStoring, LosesAPathThatIsIdsAlone) {
    const Scenery s;
    const auto selector = IdSelector(*s.table, IdPath({L"a"}));
    SetSelectors(*s.at, {selector.Get()});
    s.at->StoreSelectors(false, nullptr);
    EXPECT_TRUE(PathFor(*s.table, *selector).empty());
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*selector).empty());
}

TEST(InstanceStoring, TakesInTheLinkAndTheLinkList) {
    const Scenery s;
    const auto link = LiveSelector({s.a.Get()}), listed = LiveSelector({s.b.Get()});
    s.at->SetProperty(Prop::kLink, Var(link));
    s.at->SetProperty(Prop::kLinkList, ArrayOf({Var(3), ArrayOf({Var(listed)}), ArrayOf({Var(listed)})}));
    s.at->StoreSelectors(false, nullptr);
    const Successors next(s);
    EXPECT_EQ(LivePath(*link), Path{next.a.Get()});
    EXPECT_EQ(LivePath(*listed), Path{next.b.Get()});
}

TEST(InstanceStoring, DoesNotFollowTheLinksOfASelector) {
    const Scenery s;
    const auto outer = LiveSelector({s.a.Get()}), inner = LiveSelector({s.b.Get()});
    outer->SetProperty(Prop::kLink, Var(inner));
    SetSelectors(*s.at, {outer.Get()});
    s.at->StoreSelectors(false, nullptr);
    const Successors next(s);
    EXPECT_EQ(LivePath(*outer), Path{next.a.Get()});
    EXPECT_EQ(LivePath(*inner), Path{s.b.Get()}) << "it never got ids";
}

TEST(InstanceStoring, NeedsNoTable) {
    const Scenery s;
    const auto free = NewReference()->CreateInstance();
    const auto selector = LiveSelector({s.a.Get()});
    SetSelectors(*free, {selector.Get()});
    free->StoreSelectors(false, nullptr);
    SetSelectors(*s.at, {selector.Get()});
    const Successors next(s);
    EXPECT_EQ(LivePath(*selector), Path{next.a.Get()});
}

TEST(InstanceStoring, PassesOverSelectorsUnderTextKeys) {
    const Scenery s;
    const auto selector = s.table->SetPathAttributes(IdPath({L"a", L"at"}), Var());
    s.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(PathFor(*s.table, *selector), (Path{s.a.Get(), s.at.Get()})) << "its ids would be gone";
}

TEST(InstanceStoring, GoesOnBelowItsDefinitionWhenTold) {
    const Scenery s;
    const auto inside = EnterInstance(*s.table, L"inside");
    s.at->GetReference()->AddChild(inside.Get());
    const auto selector = LiveSelector({s.b.Get()});
    SetSelectors(*inside, {selector.Get()});

    s.at->StoreSelectors(false, nullptr);
    const auto unseen = EnterInstance(*s.table, L"b");
    inside->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*selector), Path{s.b.Get()});

    s.at->StoreSelectors(true, nullptr);
    inside->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*selector), Path{unseen.Get()});
}

}  // namespace
}  // namespace qn::test
