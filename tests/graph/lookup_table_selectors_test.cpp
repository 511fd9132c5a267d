#include "tests/graph/table_fixture.h"

namespace qn::test {
namespace {

PersistentSelectorImpl* Impl(const Counted<PersistentSelector>& selector) {
    return Cast<PersistentSelectorImpl>(selector.Get());
}

String TextAt(const Var& array, int index) {
    return array.ValueAt(index).ToText();
}

/// Answers what it was told, and its own validity.
class FakeTraverser final : public Selector::Traverser {
public:
    Counted<Instance> GetInstance() override { return instance; }
    Counted<Selector::Traverser> CreateChild(Instance*) override { return nullptr; }
    Counted<Selector::Traverser> GetParent() override { return nullptr; }
    int GetChildCount() const override { return 0; }
    Counted<Selector::Traverser> GetChild(int) override { return nullptr; }
    bool IsValid() const override { return true; }
    void ApplyElementChanges(k3::Node*, const String&, std::map<PersistentSelector*, k3::Node*>&,
                             std::map<PersistentSelector*, k3::Node*>&) override {}
    void StoreElementChanges(k3::Node*) override {}
    Var GetProperty(PropEnum id, int) const override { return id == Prop::kName ? Var(L"seen") : Var(); }
    void SetProperty(PropEnum, const Var&) override {}
    LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return String(); }

    Counted<Instance> instance;
};

using CreatePersistentSelector = TableFixture;

TEST_F(CreatePersistentSelector, KeepsIdsPathAndTheSelectorsAttributes) {
    const auto top = Known(L"n1"), part = Known(L"n2");
    Selector selector = PathOf({top.Get(), part.Get()});
    selector.SetProperty(Prop::kName, Var(L"door"));
    const auto made = table->CreatePersistentSelector(selector);
    ASSERT_TRUE(made);
    ASSERT_EQ(Impl(made)->idPath.size(), 2);
    EXPECT_EQ(TextAt(Impl(made)->idPath, 0), L"n1");
    EXPECT_EQ(TextAt(Impl(made)->idPath, 1), L"n2");
    ASSERT_EQ(Impl(made)->path.size(), 2u);
    EXPECT_EQ(Impl(made)->path[1].Get(), part.Get());
    EXPECT_EQ(made->GetProperty(Prop::kName, 0).ToText(), L"door");
    EXPECT_EQ(Impl(made)->attributes.size(), 1);
}

TEST_F(CreatePersistentSelector, IsMadeForAnEmptyPathToo) {
    const auto made = table->CreatePersistentSelector(Selector());
    ASSERT_TRUE(made);
    EXPECT_TRUE(Impl(made)->idPath.IsArray());
    EXPECT_TRUE(Impl(made)->path.empty());
}

TEST_F(CreatePersistentSelector, PassesOverNullElements) {
    const auto part = Known(L"n2");
    const auto made = table->CreatePersistentSelector(PathOf({nullptr, part.Get()}));
    ASSERT_EQ(Impl(made)->path.size(), 1u);
    EXPECT_EQ(Impl(made)->path[0].Get(), part.Get());
}

TEST_F(CreatePersistentSelector, OnATraverserKeepsIdsWithoutPathAndAllPropertiesEvenEmpty) {
    const auto traverser = Make<FakeTraverser>();
    traverser->instance = Known(L"n1");
    Selector selector;
    selector.AssignTraverser(traverser.Get());
    const auto made = table->CreatePersistentSelector(selector);
    EXPECT_EQ(TextAt(Impl(made)->idPath, 0), L"n1");
    EXPECT_TRUE(Impl(made)->path.empty());
    EXPECT_EQ(Impl(made)->attributes.size(), kLastProp + 1);
    EXPECT_EQ(made->GetProperty(Prop::kName, 0).ToText(), L"seen");
    ASSERT_NE(Impl(made)->attributes.Lookup(Key(Prop::kText)), nullptr);
    EXPECT_TRUE(made->GetProperty(Prop::kText, 0).IsEmpty());
}

using ResolvePersistentSelector = TableFixture;

TEST_F(ResolvePersistentSelector, StartsAnewForNull) {
    Selector out = PathOf({Known(L"n1").Get()});
    out.SetProperty(Prop::kName, Var(L"old"));
    table->ResolvePersistentSelector(out, nullptr);
    EXPECT_EQ(out.GetPathElementCount(), 0);
    EXPECT_TRUE(out.GetAttributes().IsEmpty());
}

TEST_F(ResolvePersistentSelector, FollowsIdsWhereThereIsNoPath) {
    const auto top = Known(L"n1"), part = Known(L"n2");
    const auto stored = Make<PersistentSelectorImpl>();
    stored->idPath = Ids({L"n1", L"n2"});
    stored->SetProperty(Prop::kName, Var(L"door"));
    Selector out;
    table->ResolvePersistentSelector(out, stored.Get());
    EXPECT_EQ(out.GetPathElementCount(), 2);
    EXPECT_EQ(out.GetInstance(), part.Get());
    EXPECT_EQ(out.GetProperty(Prop::kName, 0).ToText(), L"door");
    EXPECT_TRUE(stored->idPath.IsArray());
}

TEST_F(ResolvePersistentSelector, EndsAtAnUnknownIdAndKeepsThePathSoFar) {
    const auto top = Known(L"n1");
    const auto stored = Make<PersistentSelectorImpl>();
    stored->idPath = Ids({L"n1", L"n9", L"n1"});
    Selector out;
    table->ResolvePersistentSelector(out, stored.Get());
    EXPECT_EQ(out.GetPathElementCount(), 1);
    EXPECT_EQ(out.GetInstance(), top.Get());
    EXPECT_EQ(table->instancesById.count(L"n9"), 0u);
}

TEST_F(ResolvePersistentSelector, EndsAtAnEmptyIdAndAtANullEntry) {
    const auto top = Known(L"n1");
    table->instancesById[L"n9"] = nullptr;
    for (const wchar_t* end : {L"", L"n9"}) {
        const auto stored = Make<PersistentSelectorImpl>();
        stored->idPath = Ids({L"n1", end, L"n1"});
        Selector out;
        table->ResolvePersistentSelector(out, stored.Get());
        EXPECT_EQ(out.GetPathElementCount(), 1);
    }
}

TEST_F(ResolvePersistentSelector, PrefersTheLivePathAndGivesDeadEntriesAsNull) {
    const auto part = Known(L"n2");
    auto gone = Make<InstanceImpl>();
    const auto stored = StoredPath({gone.Get(), part.Get()});
    stored->idPath = Ids({L"n2"});
    gone.Reset();
    Selector out;
    table->ResolvePersistentSelector(out, stored.Get());
    EXPECT_EQ(out.GetPathElementCount(), 2);
    EXPECT_EQ(out.GetPathElement(0), nullptr);
    EXPECT_FALSE(out.IsValid());
}

TEST_F(ResolvePersistentSelector, KeepsTheAttributesOfALostSelector) {
    const auto stored = Make<PersistentSelectorImpl>();
    stored->SetProperty(Prop::kName, Var(L"door"));
    Selector out;
    table->ResolvePersistentSelector(out, stored.Get());
    EXPECT_FALSE(out.IsValid());
    EXPECT_EQ(out.GetProperty(Prop::kName, 0).ToText(), L"door");
}

using SetPathAttributes = TableFixture;

TEST_F(SetPathAttributes, IsNullForAnythingButAFilledArray) {
    EXPECT_FALSE(table->SetPathAttributes(Var(), Var()));
    EXPECT_FALSE(table->SetPathAttributes(Var(L"n1"), Var()));
    EXPECT_FALSE(table->SetPathAttributes(Ids({}), Var()));
    EXPECT_TRUE(table->instancesById.empty());
}

TEST_F(SetPathAttributes, LeavesANullForAnUnknownLastId) {
    EXPECT_FALSE(table->SetPathAttributes(Ids({L"n8", L"n9"}), Var()));
    ASSERT_EQ(table->instancesById.count(L"n9"), 1u);
    EXPECT_FALSE(table->instancesById.at(L"n9"));
    EXPECT_EQ(table->instancesById.count(L"n8"), 0u);
}

TEST_F(SetPathAttributes, StoresASelectorUnderTheLastId) {
    const auto part = Known(L"n2");
    const auto made = table->SetPathAttributes(Ids({L"n1", L"n2"}), Attributes(Prop::kName, Var(L"door")));
    ASSERT_TRUE(made);
    const Var* entry = part->Selectors().Lookup(L"n2");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(Cast<PersistentSelector>(*entry), made.Get());
    EXPECT_EQ(Impl(made)->idPath.size(), 2);
    EXPECT_EQ(made->GetProperty(Prop::kName, 0).ToText(), L"door");
}

TEST_F(SetPathAttributes, MergesIntoTheSelectorOfTheSameLastId) {
    Known(L"n2");
    const auto first = table->SetPathAttributes(Ids({L"n1", L"n2"}), Attributes(Prop::kName, Var(L"door")));
    const auto second = table->SetPathAttributes(Ids({L"n7", L"n2"}), Attributes(Prop::kText, Var(L"left")));
    EXPECT_EQ(first, second);
    EXPECT_EQ(first->GetProperty(Prop::kName, 0).ToText(), L"door");
    EXPECT_EQ(first->GetProperty(Prop::kText, 0).ToText(), L"left");
    EXPECT_EQ(TextAt(Impl(first)->idPath, 0), L"n1");
}

using GetOrCreatePersistentSelector = TableFixture;

TEST_F(GetOrCreatePersistentSelector, AppendsUnderTheRunningCountAndNotesTheOwner) {
    const auto part = Known(L"n2");
    const auto made = table->GetOrCreatePersistentSelector(L"s1", Ids({L"n1", L"n2"}), Var());
    ASSERT_TRUE(made);
    EXPECT_EQ(Cast<PersistentSelector>(*part->Selectors().Lookup(0)), made.Get());
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0).ToText(), L"s1");
    EXPECT_EQ(table->selectorOwners.at(L"s1"), L"n2");
    EXPECT_EQ(table->FindPersistentSelector(L"s1"), made);
}

TEST_F(GetOrCreatePersistentSelector, SharesTheListWithPathAttributesUnderAnotherKindOfKey) {
    const auto part = Known(L"n2");
    table->SetPathAttributes(Ids({L"n2"}), Var());
    table->GetOrCreatePersistentSelector(L"s1", Ids({L"n2"}), Var());
    EXPECT_EQ(part->Selectors().size(), 2);
    EXPECT_NE(part->Selectors().Lookup(L"n2"), nullptr);
    EXPECT_NE(part->Selectors().Lookup(1), nullptr);
    EXPECT_EQ(part->Selectors().Lookup(0), nullptr);
}

TEST_F(GetOrCreatePersistentSelector, GivesTheKnownOneWithoutALookAtThePath) {
    Known(L"n2");
    const auto made = table->GetOrCreatePersistentSelector(L"s1", Ids({L"n2"}), Var());
    EXPECT_EQ(table->GetOrCreatePersistentSelector(L"s1", Ids({L"n9"}), Attributes(Prop::kName, Var(L"x"))),
              made);
    EXPECT_EQ(table->instancesById.count(L"n9"), 0u);
    EXPECT_TRUE(made->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST_F(GetOrCreatePersistentSelector, RemembersANullForAnUnknownInstance) {
    EXPECT_FALSE(table->GetOrCreatePersistentSelector(L"s1", Ids({L"n2"}), Var()));
    ASSERT_EQ(table->instancesById.count(L"n2"), 1u);
    EXPECT_FALSE(table->instancesById.at(L"n2"));
    Known(L"n2");
    EXPECT_FALSE(table->GetOrCreatePersistentSelector(L"s1", Ids({L"n2"}), Var()));
    EXPECT_EQ(table->selectorsById.count(L"s1"), 1u);
}

TEST_F(GetOrCreatePersistentSelector, RemembersANullForAPathThatIsNone) {
    EXPECT_FALSE(table->GetOrCreatePersistentSelector(L"s1", Var(), Var()));
    EXPECT_EQ(table->selectorsById.count(L"s1"), 1u);
}

TEST_F(GetOrCreatePersistentSelector, PutsThePrefixBeforeIdAndPathInAPrivateCopy) {
    const auto part = Known(L"car_n2");
    table->PushIdPrefix(table->GetOrCreateReference(L"car").Get());
    const Var path = Ids({L"n1", L"n2"});
    const auto made = table->GetOrCreatePersistentSelector(L"s1", path, Var());
    ASSERT_TRUE(made);
    EXPECT_EQ(TextAt(Impl(made)->idPath, 0), L"car_n1");
    EXPECT_EQ(TextAt(Impl(made)->idPath, 1), L"car_n2");
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0).ToText(), L"car_s1");
    EXPECT_EQ(table->selectorOwners.at(L"car_s1"), L"car_n2");
    EXPECT_EQ(TextAt(path, 0), L"n1");
    EXPECT_FALSE(table->FindPersistentSelector(L"s1"));
    EXPECT_EQ(table->FindPersistentSelector(L"car_s1"), made);
}

}  // namespace
}  // namespace qn::test
