#include "graph/node_traverser.h"
#include "tests/behaviour/foreign_instance.h"
#include "tests/behaviour/stored_selector.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;
using Path = std::vector<Instance*>;

struct Garage : TableScene {
    Counted<Instance> a = EnterInstance(*table, L"a");
    Counted<Instance> b = EnterInstance(*table, L"b");

    Selector Resolved(PersistentSelector* source) const {
        Selector out = PathOf({b.Get(), b.Get()});
        out.SetProperty(Prop::kName, Var(L"former"));
        table->ResolvePersistentSelector(out, source);
        return out;
    }
    bool Remembers(const wchar_t* id) const { return Fields().instancesById.count(id) != 0; }
};

// From a selector.

TEST(PersistentSelectorTable, MakesIdsAndPathFromASelector) {
    const Garage g;
    const auto made = g.table->CreatePersistentSelector(PathOf({g.a.Get(), g.b.Get(), g.a.Get()}));
    ASSERT_TRUE(made);
    EXPECT_EQ(FieldsOf(made).idPath, IdPath({L"a", L"b", L"a"}));
    EXPECT_EQ(PathIn(*made), (Path{g.a.Get(), g.b.Get(), g.a.Get()}));
    EXPECT_EQ(made->GetRefCount(), 1) << "in no index";
}

TEST(PersistentSelectorTable, MakesAnEmptyIdForAnElementWithoutOne) {
    const Garage g;
    const auto nameless = NewInstance();
    const auto made = g.table->CreatePersistentSelector(PathOf({g.a.Get(), nameless.Get(), g.b.Get()}));
    EXPECT_EQ(FieldsOf(made).idPath, ArrayOf({Var(L"a"), Var(), Var(L"b")}));
    EXPECT_EQ(PathIn(*made), (Path{g.a.Get(), nameless.Get(), g.b.Get()}));
}

TEST(PersistentSelectorTable, MakesALostSelectorFromAnEmptyOne) {
    const Garage g;
    const auto made = g.table->CreatePersistentSelector(Selector());
    ASSERT_TRUE(made);
    EXPECT_TRUE(FieldsOf(made).idPath.IsArray());
    EXPECT_EQ(FieldsOf(made).idPath.size(), 0);
    EXPECT_TRUE(PathIn(*made).empty());
}

TEST(PersistentSelectorTable, TakesOverTheOwnAttributesAsTheyAre) {
    const Garage g;
    g.a->SetProperty(Prop::kText, Var(L"not own"));
    Selector selector = PathOf({g.a.Get()});
    EXPECT_TRUE(FieldsOf(g.table->CreatePersistentSelector(selector)).attributes.IsEmpty());
    selector.SetAttributes(MapOf({{Var(1), Var(L"name")}, {Var(2), Var()}, {Var(0x99), Var(L"foreign")}}));
    EXPECT_EQ(FieldsOf(g.table->CreatePersistentSelector(selector)).attributes, selector.GetAttributes());
}

/// A selector on a traverser of a node with a name and metadata.
struct OnTraverser : Garage {
    OnTraverser() {
        node = NodeOf(a.Get());
        node->SetName(L"node");
        selector.AssignTraverser(
            Make<NodeTraverser>(table.Get(), node, &Fields().nodeToInstance, &Fields().instanceToNodes, false)
                .Get());
    }
    k3::Node* node;
    Selector selector;
};

TEST(PersistentSelectorTable, MakesNoWeakPathFromALiveTraverser) {
    const OnTraverser s;
    const auto made = s.table->CreatePersistentSelector(s.selector);
    EXPECT_TRUE(PathIn(*made).empty());
    EXPECT_EQ(FieldsOf(made).idPath, IdPath({L"a"}));
}

TEST(PersistentSelectorTable, StoresAll36AttributesOfALiveTraverserEvenIfEmpty) {
    const OnTraverser s;
    const auto made = s.table->CreatePersistentSelector(s.selector);
    const Var& attributes = FieldsOf(made).attributes;
    EXPECT_EQ(attributes.size(), 36);
    for (int id = kFirstProp; id <= kLastProp; ++id) {
        ASSERT_TRUE(attributes.Lookup(id)) << id;
        EXPECT_EQ(*attributes.Lookup(id), id == 1 ? Var(L"node") : Var()) << id;
    }
}

TEST(PersistentSelectorTable, StoresNoOwnAttributesBesideALiveTraverser) {
    OnTraverser s;
    s.selector.SetAttributes(MapOf({{Var(0x20), Var(L"own")}, {Var(0x99), Var(L"own")}}));
    const auto made = s.table->CreatePersistentSelector(s.selector);
    EXPECT_EQ(FieldsOf(made).attributes.size(), 36);
    EXPECT_TRUE(made->GetProperty(Prop::kText, 0).IsEmpty());
}

// Back to a selector.

TEST(PersistentSelectorTable, ResolvesNothingToANewSelector) {
    const Garage g;
    const auto foreign = Make<ForeignSelector>();
    for (PersistentSelector* source : std::initializer_list<PersistentSelector*>{nullptr, foreign.Get()}) {
        const Selector out = g.Resolved(source);
        EXPECT_EQ(out.GetPathElementCount(), 0);
        EXPECT_TRUE(out.GetAttributes().IsEmpty());
    }
}

TEST(PersistentSelectorTable, ResolvesTheAttributesInPlaceOfFormerOnes) {
    const Garage g;
    const auto source = NewStoredSelector();
    EXPECT_TRUE(g.Resolved(source.Get()).GetAttributes().IsEmpty());
    source->SetProperty(Prop::kText, Var(L"text"));
    const Selector out = g.Resolved(source.Get());
    EXPECT_EQ(out.GetAttributes(), MapOf({{Var(0x20), Var(L"text")}}));
    EXPECT_EQ(out.GetPathElementCount(), 0) << "lost, but with its attributes";
}

TEST(PersistentSelectorTable, ResolvesIds) {
    const Garage g;
    const auto source = NewStoredSelector();
    FieldsOf(source).idPath = IdPath({L"b", L"a"});
    EXPECT_EQ(ElementsOf(g.Resolved(source.Get())), (Path{g.b.Get(), g.a.Get()}));
    EXPECT_TRUE(PathIn(*source).empty()) << "the source stays as it was";
}

TEST(PersistentSelectorTable, ResolvesUpToTheFirstIdThatLeadsNowhere) {
    const Garage g;
    g.Fields().instancesById[L"null"];
    for (const wchar_t* bad : {L"", L"unknown", L"null"}) {
        const auto source = NewStoredSelector();
        FieldsOf(source).idPath = IdPath({L"a", bad, L"b"});
        EXPECT_EQ(ElementsOf(g.Resolved(source.Get())), Path{g.a.Get()}) << String(bad).ToUtf8();
    }
    EXPECT_FALSE(g.Remembers(L"unknown"));
}

TEST(PersistentSelectorTable, ResolvesIdsAsTextAndWithoutPrefix) {
    const Garage g;
    const auto seven = EnterInstance(*g.table, L"7");
    g.table->PushIdPrefix(g.b.Get());
    const auto source = NewStoredSelector();
    FieldsOf(source).idPath = ArrayOf({Var(7), Var(L"a")});
    EXPECT_EQ(ElementsOf(g.Resolved(source.Get())), (Path{seven.Get(), g.a.Get()}));
}

TEST(PersistentSelectorTable, ResolvesNoIdsThatAreNoArray) {
    const Garage g;
    const auto source = NewStoredSelector();
    FieldsOf(source).idPath = Var(L"a");
    EXPECT_EQ(g.Resolved(source.Get()).GetPathElementCount(), 0);
    FieldsOf(source).idPath = MapOf({{Var(0), Var(L"a")}});
    EXPECT_EQ(g.Resolved(source.Get()).GetPathElementCount(), 0);
}

TEST(PersistentSelectorTable, ResolvesTheLivePathBeforeTheIds) {
    const Garage g;
    const auto source = LiveSelector({g.a.Get()});
    FieldsOf(source).idPath = IdPath({L"b", L"b"});
    EXPECT_EQ(ElementsOf(g.Resolved(source.Get())), Path{g.a.Get()});
}

TEST(PersistentSelectorTable, ResolvesDeadElementsToNull) {
    const Garage g;
    auto mortal = NewInstance();
    const auto source = LiveSelector({g.a.Get(), mortal.Get(), g.b.Get()});
    mortal.Reset();
    const Selector out = g.Resolved(source.Get());
    EXPECT_EQ(ElementsOf(out), (Path{g.a.Get(), nullptr, g.b.Get()}));
    EXPECT_FALSE(out.IsValid());
}

TEST(PersistentSelectorTable, DoesNotFallBackToIdsWhenTheLivePathIsDead) {
    const Garage g;
    auto mortal = NewInstance();
    const auto source = LiveSelector({mortal.Get()});
    FieldsOf(source).idPath = IdPath({L"a"});
    mortal.Reset();
    EXPECT_EQ(ElementsOf(g.Resolved(source.Get())), Path{nullptr});
}

}  // namespace
}  // namespace qn::test
