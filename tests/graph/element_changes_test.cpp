#include "graph/element_changes.h"
#include "graph/metadata_filter.h"
#include "tests/graph/traverser_fixture.h"

#include <algorithm>

namespace qn::test {
namespace {

class ElementChanges : public TraverserFixture {
protected:
    ~ElementChanges() override {
        for (const auto& element : linked_) {  // an instance whose link leads to a selector on its own path
            element->SetProperty(Prop::kLink, Var());
            element->SetProperty(Prop::kLinkList, Var());
        }
    }
    /// A node below `parent` that shows a new instance.
    k3::Node* ShownBelow(k3::Node* parent, const wchar_t* id) {
        k3::Node* node = parent->CreateChildNode(0, 0, 0);
        Show(node, Known(id).Get());
        return node;
    }
    void Link(const k3::Node* node, const Counted<PersistentSelectorImpl>& target) {
        linked_.emplace_back(Carried(node));
        Carried(node)->SetProperty(Prop::kLink, Var(target));
    }
    void LinkAll(const k3::Node* node, const Var& list) {
        linked_.emplace_back(Carried(node));
        Carried(node)->SetProperty(Prop::kLinkList, list);
    }
    static k3::Node* LinkedNode(const k3::Node* node) {
        return Cast<k3::Node>(node->GetParamVar(Param::kLinkedNode));
    }
    static Counted<PersistentSelectorImpl> PathTo(const k3::Node* node) {
        return StoredPath({Carried(node)});
    }
    void Apply(k3::Node* node) { table->ApplyElementChanges(node); }
    void Store(k3::Node* node) { On(node)->StoreElementChanges(node); }

private:
    std::vector<Counted<Instance>> linked_;
};

// Links.

using Links = ElementChanges;

TEST_F(Links, BecomeWeakNodeLinks) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    Link(note, PathTo(wheel));
    Apply(top);
    const Var link = note->GetParamVar(Param::kLinkedNode);
    EXPECT_EQ(LinkedNode(note), wheel);
    EXPECT_TRUE(link.IsWeak());
    EXPECT_EQ(LinkedNode(wheel), nullptr);
}

TEST_F(Links, ThatLeadNowhereLeaveTheNodeAlone) {
    k3::Node* note = ShownBelow(Top(), L"n2");
    note->SetParamVar(Param::kLinkedNode, Var(7));
    Link(note, StoredPath({}));
    Apply(note);
    Link(note, StoredPath({nullptr, Known(L"n9").Get()}));
    Apply(note);
    EXPECT_EQ(note->GetParamVar(Param::kLinkedNode), Var(7));
}

TEST_F(Links, AreFollowedFromWhatTheTableKnowsIfTheNodeCarriesNothing) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    Link(note, PathTo(wheel));
    note->SetParamVar(Param::kInstance, Var());
    Apply(note);
    EXPECT_EQ(LinkedNode(note), wheel);
}

TEST_F(Links, AreNotFollowedOnANodeThatCarriesSomethingElse) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    Link(note, PathTo(wheel));
    note->SetParamVar(Param::kInstance, Var(7));
    Apply(note);
    EXPECT_EQ(LinkedNode(note), nullptr);
}

TEST_F(Links, OfAListBecomeAMapByTheirKeys) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    LinkAll(note,
            LinkList({{PathTo(wheel).Get(), Var(L"a")}, {PathTo(wheel).Get(), Var(2)}, {nullptr, Var(3)}}));
    Apply(note);
    const Var links = note->GetParamVar(Param::kLinkList);
    ASSERT_TRUE(links.IsMap());
    ASSERT_EQ(links.size(), 2);
    EXPECT_EQ(links.KeyAt(0), Var(L"a"));
    EXPECT_EQ(links.KeyAt(1), Var(2));
    const Var row = links.ValueAt(0);
    ASSERT_EQ(row.size(), 2);
    EXPECT_EQ(Cast<k3::Node>(row.ValueAt(0)), wheel);
    EXPECT_TRUE(row.ToArray()->Get(0).IsWeak());
    EXPECT_EQ(row.ValueAt(1), Var(L"a"));
}

TEST_F(Links, OfAListMayHaveAnEmptyKey) {
    k3::Node* wheel = ShownBelow(Top(), L"n1");
    k3::Node* note = ShownBelow(Top(), L"n2");
    LinkAll(note, LinkList({{PathTo(wheel).Get(), Var()}}));
    Apply(note);
    const Var links = note->GetParamVar(Param::kLinkList);
    ASSERT_EQ(links.size(), 1);
    EXPECT_TRUE(links.KeyAt(0).IsEmpty());
}

TEST_F(Links, OfAListJoinThoseThatTheNodeHas) {
    k3::Node* wheel = ShownBelow(Top(), L"n1");
    k3::Node* note = ShownBelow(Top(), L"n2");
    Var before;
    before.At(L"old") = Var(1);
    note->SetParamVar(Param::kLinkList, before);
    LinkAll(note, LinkList({{PathTo(wheel).Get(), Var(L"new")}}));
    Apply(note);
    EXPECT_EQ(note->GetParamVar(Param::kLinkList).size(), 2);
}

TEST_F(Links, OfAListAreLookedUpOnceForEachSelector) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    k3::Node* other = ShownBelow(top, L"n3");
    const auto selector = PathTo(wheel);
    LinkAll(note, LinkList({{selector.Get(), Var(1)}}));
    std::map<PersistentSelector*, k3::Node*> answers{{selector.Get(), other}};
    std::map<PersistentSelector*, k3::Node*> reserved;
    On(note)->ApplyElementChanges(note, String(), answers, reserved);
    const Var links = note->GetParamVar(Param::kLinkList);
    EXPECT_EQ(Cast<k3::Node>(links.Lookup(1)->ValueAt(0)), other);
}

TEST_F(Links, OfTheSelectorsOfTheInstanceReachTheNodeToo) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    const auto selector = Make<PersistentSelectorImpl>();
    selector->SetProperty(Prop::kLink, Var(PathTo(wheel)));
    selector->SetProperty(Prop::kLinkList, LinkList({{PathTo(wheel).Get(), Var(1)}}));
    Cast<InstanceImpl>(Carried(note))->Selectors().At(L"n2") = Var(selector);
    Apply(top);
    EXPECT_EQ(LinkedNode(note), wheel);
    EXPECT_EQ(note->GetParamVar(Param::kLinkList).size(), 1);
}

TEST_F(Links, OfSharedInstancesReachEveryNode) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    k3::Node* second = top->CreateChildNode(0, 0, 0);
    Show(second, Carried(note));
    const auto selector = Make<PersistentSelectorImpl>();
    selector->SetProperty(Prop::kLink, Var(PathTo(wheel)));
    Cast<InstanceImpl>(Carried(note))->Selectors().At(0) = Var(selector);
    Apply(top);
    EXPECT_EQ(LinkedNode(note), wheel);
    EXPECT_EQ(LinkedNode(second), wheel);
}

// Which of several nodes a selector means.

class NearestNode : public ElementChanges {
protected:
    k3::Node* Find(const Selector& selector, const k3::Node* near) {
        return FindNodeNear(selector, table->instanceToNodes, *near);
    }
    /// Two assemblies of one instance with a part of one instance each.
    void MakeTwins() {
        left = Top();
        right = Top();
        const auto assembly = Known(L"n1"), part = Known(L"n2");
        Show(left, assembly.Get());
        Show(right, assembly.Get());
        leftPart = Below(left);
        rightPart = Below(right);
        Show(leftPart, part.Get());
        Show(rightPart, part.Get());
    }
    Selector TwinPath() {
        return PathOf({table->nodeToInstance.Find(left), table->nodeToInstance.Find(leftPart)});
    }

    k3::Node* left = nullptr;
    k3::Node* right = nullptr;
    k3::Node* leftPart = nullptr;
    k3::Node* rightPart = nullptr;
};

TEST_F(NearestNode, IsNoneForAnEmptyPathOrANullStart) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    EXPECT_EQ(Find(Selector(), node), nullptr);
    EXPECT_EQ(Find(PathOf({nullptr, Carried(node)}), node), nullptr);
    EXPECT_EQ(Find(PathOf({Known(L"n9").Get()}), node), nullptr);
}

TEST_F(NearestNode, IsTheOnlyOneWhereverOneAsks) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    EXPECT_EQ(Find(PathOf({Carried(node)}), Top()), node);
}

TEST_F(NearestNode, IsBelowTheAncestorThatShowsTheStart) {
    MakeTwins();
    EXPECT_EQ(Find(TwinPath(), leftPart), leftPart);
    EXPECT_EQ(Find(TwinPath(), rightPart), rightPart);
    EXPECT_EQ(Find(TwinPath(), right), rightPart);
}

TEST_F(NearestNode, MayStartAtADescendant) {
    MakeTwins();
    k3::Node* group = Top();
    right->AttachTo(group);
    EXPECT_EQ(Find(TwinPath(), group), rightPart);
}

TEST_F(NearestNode, IsNoneIfTheNearOneLeadsNowhere) {
    MakeTwins();
    rightPart->SetParamVar(Param::kInstance, Var());
    EXPECT_EQ(Find(TwinPath(), rightPart), nullptr);
}

TEST_F(NearestNode, IsTheFirstThatLeadsAnywhereIfNoneIsNear) {
    MakeTwins();
    k3::Node* elsewhere = Top();
    const bool leftIsFirst = std::less<k3::Node*>()(left, right);
    k3::Node* first = leftIsFirst ? leftPart : rightPart;
    k3::Node* second = leftIsFirst ? rightPart : leftPart;
    EXPECT_EQ(Find(TwinPath(), elsewhere), first);
    first->SetParamVar(Param::kInstance, Var());
    EXPECT_EQ(Find(TwinPath(), elsewhere), second);
}

// Metadata.

TEST(MetadataFilter, TakesOutEqualEntriesOfTheSameGroup) {
    Var base;
    base.At(L"a").At(L"same") = Var(1);
    base.At(L"a").At(L"other") = Var(2);
    base.At(L"b").At(L"mine") = Var(3);
    Var metadata;
    metadata.At(L"a").At(L"same") = Var(1);
    metadata.At(L"a").At(L"other") = Var(7);
    metadata.At(L"a").At(L"mine") = Var(3);
    metadata.At(L"flat") = Var(1);
    EXPECT_TRUE(RemoveRepeatedMetadata(metadata, base));
    EXPECT_EQ(metadata.Lookup(L"a")->Lookup(L"same"), nullptr);
    EXPECT_EQ(metadata.Lookup(L"a")->size(), 2);
    EXPECT_EQ(metadata.size(), 2);
}

TEST(MetadataFilter, LeavesEmptyGroups) {
    Var metadata;
    metadata.At(L"a").At(L"same") = Var(1);
    Var base = metadata;
    EXPECT_TRUE(RemoveRepeatedMetadata(metadata, base));
    ASSERT_NE(metadata.Lookup(L"a"), nullptr);
    EXPECT_EQ(metadata.Lookup(L"a")->size(), 0);
    EXPECT_EQ(base.Lookup(L"a")->size(), 1);
}

TEST(MetadataFilter, WorksOnAPrivateCopy) {
    Var metadata;
    metadata.At(L"a").At(L"same") = Var(1);
    const Var holder = metadata;
    Var base;
    base.At(L"a").At(L"same") = Var(1);
    RemoveRepeatedMetadata(metadata, base);
    EXPECT_EQ(holder.Lookup(L"a")->size(), 1);
}

TEST(MetadataFilter, DoesNothingWithoutTwoMaps) {
    Var metadata;
    metadata.At(L"a").At(L"same") = Var(1);
    EXPECT_FALSE(RemoveRepeatedMetadata(metadata, Var()));
    Var none;
    EXPECT_FALSE(RemoveRepeatedMetadata(none, metadata));
}

using RepeatedMetadata = ElementChanges;

TEST_F(RepeatedMetadata, GoOutOfInstanceNodeAndSelectorsButNotOutOfTheReference) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    auto* instance = Cast<InstanceImpl>(Carried(node));
    const auto selector = Make<PersistentSelectorImpl>();
    instance->Selectors().At(0) = Var(selector);
    Var shared = Metadata(L"part", L"colour", Var(L"red"));
    shared.At(L"part").At(L"weight") = Var(3);
    Var own = Metadata(L"part", L"colour", Var(L"red"));
    own.At(L"part").At(L"weight") = Var(4);
    instance->GetReference()->SetProperty(Prop::kMetadata, shared);
    instance->SetProperty(Prop::kMetadata, own);
    selector->SetProperty(Prop::kMetadata, own);
    node->SetMetadata(own.ToMap());
    Apply(node);
    for (const Var& metadata :
         {instance->GetProperty(Prop::kMetadata, 0), selector->GetProperty(Prop::kMetadata, 0),
          Var(node->GetMetadata(false), 1)}) {
        EXPECT_EQ(metadata.Lookup(L"part")->Lookup(L"colour"), nullptr);
        EXPECT_EQ(*metadata.Lookup(L"part")->Lookup(L"weight"), Var(4));
    }
    EXPECT_EQ(MetadataOf(instance->GetReference(), L"part", L"colour"), Var(L"red"));
    EXPECT_EQ(own.Lookup(L"part")->size(), 2);
}

TEST_F(RepeatedMetadata, StayInTheReferenceThatSharesItsMapWithTheInstance) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    const Var shared = Metadata(L"part", L"colour", Var(L"red"));
    Carried(node)->GetReference()->SetProperty(Prop::kMetadata, shared);
    Carried(node)->SetProperty(Prop::kMetadata, shared);
    Apply(node);
    EXPECT_EQ(MetadataOf(Carried(node)->GetReference(), L"part", L"colour"), Var(L"red"));
    EXPECT_TRUE(MetadataOf(Carried(node), L"part", L"colour").IsEmpty());
}

TEST_F(ElementChanges, ClearTheReferencesMatrixSharedOrNot) {
    k3::Node* top = Top();
    k3::Node* node = ShownBelow(top, L"n1");
    Reference* reference = Carried(node)->GetReference();
    reference->CreateInstance();
    reference->SetProperty(Prop::kLocalMatrix, Var(Matrix4<double>::Translation(1, 0, 0)));
    Apply(top);
    EXPECT_TRUE(reference->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
}

TEST_F(ElementChanges, PassOverAnInstanceWithoutReference) {
    k3::Node* node = Top();
    Show(node, Make<InstanceImpl>().Get());
    Apply(node);
    EXPECT_EQ(node->GetMetadata(false), nullptr);
}

TEST_F(ElementChanges, IgnoreANullNode) {
    Apply(nullptr);
    On(nullptr)->StoreElementChanges(nullptr);
}

TEST_F(ElementChanges, StayBelowTheGivenNode) {
    k3::Node* top = Top();
    k3::Node* node = ShownBelow(top, L"n1");
    k3::Node* sibling = ShownBelow(top, L"n2");
    const Var matrix(Matrix4<double>::Translation(1, 0, 0));
    for (const k3::Node* each : {node, sibling})
        Carried(each)->GetReference()->SetProperty(Prop::kLocalMatrix, matrix);
    Apply(node);
    EXPECT_TRUE(Carried(node)->GetReference()->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
    EXPECT_EQ(Carried(sibling)->GetReference()->GetProperty(Prop::kLocalMatrix, 0), matrix);
}

TEST_F(ElementChanges, ReachTenThousandLevels) {
    k3::Node* top = Top();
    k3::Node* node = top;
    for (int i = 0; i < 10'000; ++i)
        node = node->CreateChildNode(0, 0, 0);
    k3::Node* wheel = ShownBelow(top, L"n1");
    Show(node, Known(L"n2").Get());
    Link(node, PathTo(wheel));
    Apply(top);
    EXPECT_EQ(LinkedNode(node), wheel);
    Store(top);
}

// Names of PMI.

class PmiNames : public ElementChanges {
protected:
    static void NameByCad(k3::Node* node, const wchar_t* name) {
        node->SetMetadata(Metadata(L"$CADMetadata", L"InstanceName", Var(name)).ToMap());
    }
    static void MakePmi(k3::Node* node) {
        node->SetMetadata(Metadata(L"$QN.CAD.PMI", L"PMIType", Var(4)).ToMap());
    }
    static Var PmiName(const k3::Node* node) { return MetadataOf(node, L"$QN.CAD.PMI", L"InstanceName"); }
};

TEST_F(PmiNames, AreTheNamesOfTheCadSystem) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    NameByCad(node, L"Bohrung");
    Apply(node);
    EXPECT_EQ(PmiName(node), Var(L"Bohrung"));
}

TEST_F(PmiNames, ComeFromAboveOnlyForPmi) {
    k3::Node* top = ShownBelow(Top(), L"n1");
    k3::Node* pmi = ShownBelow(top, L"n2");
    k3::Node* part = ShownBelow(top, L"n3");
    NameByCad(top, L"Bohrung");
    MakePmi(pmi);
    Apply(top);
    EXPECT_EQ(PmiName(pmi), Var(L"Bohrung"));
    EXPECT_TRUE(PmiName(part).IsEmpty());
}

TEST_F(PmiNames, AreForWhatIsBelowAloneAndNotForSiblings) {
    k3::Node* top = ShownBelow(Top(), L"n1");
    k3::Node* named = ShownBelow(top, L"n2");
    k3::Node* pmi = ShownBelow(top, L"n3");
    NameByCad(top, L"above");
    NameByCad(named, L"beside");
    MakePmi(pmi);
    Apply(top);
    EXPECT_EQ(PmiName(pmi), Var(L"above"));
}

TEST_F(PmiNames, PassThroughNodesWithoutInstance) {
    k3::Node* top = ShownBelow(Top(), L"n1");
    k3::Node* pmi = ShownBelow(Below(top), L"n2");
    NameByCad(top, L"above");
    MakePmi(pmi);
    Apply(top);
    EXPECT_EQ(PmiName(pmi), Var(L"above"));
}

TEST_F(PmiNames, StartWithTheGivenPath) {
    k3::Node* pmi = ShownBelow(Top(), L"n1");
    MakePmi(pmi);
    std::map<PersistentSelector*, k3::Node*> answers, reserved;
    On(pmi)->ApplyElementChanges(pmi, L"given", answers, reserved);
    EXPECT_EQ(PmiName(pmi), Var(L"given"));
}

// The way back.

using StoredLinks = ElementChanges;

TEST_F(StoredLinks, AreSelectorsWithThePathOfTheLinkedNode) {
    k3::Node* top = Top();
    Show(top, Known(L"n1").Get());
    k3::Node* wheel = ShownBelow(top, L"n2");
    k3::Node* note = ShownBelow(top, L"n3");
    note->SetParamVar(Param::kLinkedNode, Var(wheel, 0));
    Store(top);
    const auto link = LinkOf(*Carried(note));
    ASSERT_TRUE(link);
    ASSERT_EQ(link->path.size(), 2u);
    EXPECT_EQ(link->path[0].Get(), Carried(top));
    EXPECT_EQ(link->path[1].Get(), Carried(wheel));
}

TEST_F(StoredLinks, AreNotMadeAcrossAGap) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n2");
    k3::Node* note = ShownBelow(top, L"n3");
    note->SetParamVar(Param::kLinkedNode, Var(wheel, 0));
    Store(top);
    EXPECT_FALSE(LinkOf(*Carried(note)));
}

TEST_F(StoredLinks, NeedAnEntryInTheMap) {
    k3::Node* wheel = Top();
    Show(wheel, Known(L"n1").Get());
    k3::Node* note = Top();
    const auto instance = Known(L"n2");
    note->SetParamVar(Param::kInstance, Var(instance));
    note->SetParamVar(Param::kLinkedNode, Var(wheel, 0));
    Store(note);
    EXPECT_FALSE(LinkOf(*instance));
}

TEST_F(StoredLinks, OfAListKeepTheirKeysAndShareTheSelectorOfOneNode) {
    k3::Node* wheel = Top();
    Show(wheel, Known(L"n1").Get());
    k3::Node* note = Top();
    Show(note, Known(L"n2").Get());
    const auto entry = [&](Interface* linked, const wchar_t* key) {
        Var row(VarArray::Create(2));
        row.At(0) = Var(linked, 0);
        row.At(1) = Var(key);
        return row;
    };
    Var links;
    links.At(L"a") = entry(wheel, L"a");
    links.At(L"b") = entry(wheel, L"b");
    links.At(L"c") = entry(table.Get(), L"c");
    links.At(L"d") = Var(7);
    note->SetParamVar(Param::kLinkList, links);
    Store(note);
    const Var stored = Carried(note)->GetProperty(Prop::kLinkList, 0);
    ASSERT_EQ(stored.size(), 2);
    EXPECT_EQ(stored.ValueAt(0).ValueAt(1), Var(L"a"));
    EXPECT_EQ(stored.ValueAt(1).ValueAt(1), Var(L"b"));
    EXPECT_EQ(Cast<Interface>(stored.ValueAt(0).ValueAt(0)), Cast<Interface>(stored.ValueAt(1).ValueAt(0)));
    EXPECT_EQ(ListedLinksOf(*Carried(note))[0]->path[0].Get(), Carried(wheel));
}

TEST_F(StoredLinks, AreReadFromAnArrayToo) {
    k3::Node* wheel = Top();
    Show(wheel, Known(L"n1").Get());
    k3::Node* note = Top();
    Show(note, Known(L"n2").Get());
    note->SetParamVar(Param::kLinkList, LinkList({{wheel, Var(1)}}));
    Store(note);
    EXPECT_EQ(ListedLinksOf(*Carried(note)).size(), 1u);
    note->SetParamVar(Param::kLinkList, Var());
}

TEST_F(StoredLinks, ComeBackToTheSameNodes) {
    k3::Node* top = Top();
    Show(top, Known(L"n1").Get());
    k3::Node* wheel = ShownBelow(top, L"n2");
    k3::Node* note = ShownBelow(top, L"n3");
    note->SetParamVar(Param::kLinkedNode, Var(wheel, 0));
    Store(top);
    note->SetParamVar(Param::kLinkedNode, Var());
    Apply(top);
    EXPECT_EQ(LinkedNode(note), wheel);
}

}  // namespace
}  // namespace qn::test
