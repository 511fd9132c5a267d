// What a definition takes from the places below a traverser.

#include "frame/host/object3d.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/plain_traverser.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// A traverser on a use `car` of a definition of its own, in a table.
struct Place {
    Place() { definition->SetProperty(Prop::kName, Var(L"former")); }

    Counted<Reference> Fill(const wchar_t* id = L"id") const {
        return factory->CreateReferenceFromTraverser(at.Get(), table.Get(), id);
    }
    /// A known definition without children and uses.
    Counted<Reference> Leaf(const wchar_t* id = L"id") const { return table->GetOrCreateReference(id); }

    Counted<HierarchyFactory> factory = NewFactory();
    Counted<LookupTable> table = NewTable();
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<Reference> definition{car->GetReference()};
    Counted<PlainTraverser> at = Make<PlainTraverser>(car.Get());
};

TEST(FillingADefinition, TakesTheTransformsOfThePlace) {
    const Place p;
    p.car->SetProperty(Prop::kLocalMatrix, Var(Shift(9)));
    p.at->Say(Prop::kLocalMatrix, Var(Shift(1))).Say(Prop::kOwnMatrix, Var(Shift(2)));
    p.at->Say(Prop::kThirdMatrix, Var(Shift(3)));
    p.Fill();
    EXPECT_EQ(p.car->GetProperty(Prop::kLocalMatrix, 0), Var(Shift(1)));
    EXPECT_EQ(p.car->GetProperty(Prop::kOwnMatrix, 0), Var(Shift(2)));
    EXPECT_EQ(p.car->GetProperty(Prop::kThirdMatrix, 0), Var(Shift(3)));
}

TEST(FillingADefinition, TakesNothingElseOfThePlaceItself) {
    const Place p;
    p.car->SetProperty(Prop::kOwnMatrix, Var(Shift(9)));
    p.at->Say(Prop::kLocalMatrix, Var(L"no matrix")).Say(Prop::kName, Var(L"place"));
    p.Fill();
    EXPECT_TRUE(p.car->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
    EXPECT_EQ(p.car->GetProperty(Prop::kOwnMatrix, 0), Var(Shift(9)));
    EXPECT_TRUE(NameOf(*p.car).IsEmpty());
}

TEST(FillingADefinition, TakesTheTransformsOfPartsToo) {
    const Place p;
    const auto wheel = EnterInstance(*p.table, L"wheel");
    p.at->Add(wheel.Get())->Say(Prop::kLocalMatrix, Var(Shift(5)));
    p.Fill();
    EXPECT_EQ(wheel->GetProperty(Prop::kLocalMatrix, 0), Var(Shift(5)));
}

TEST(FillingADefinition, TakesTheTargetOfTheFormerOne) {
    const Place p;
    const auto object = Make<k3::Object3D>();
    p.definition->SetTarget(Var(object));
    EXPECT_EQ(p.Fill()->GetTarget(), Var(object));
}

TEST(FillingADefinition, TakesAnEmptyTargetToo) {
    const Place p;
    p.Leaf()->SetTarget(Var(L"file.qn"));
    EXPECT_TRUE(p.Fill()->GetTarget().IsEmpty());
}

TEST(FillingADefinition, MergesMetadataOfTheFormerOneIntoItsOwn) {
    const Place p;
    const auto leaf = p.Leaf();
    leaf->SetProperty(Prop::kMetadata, MapOf({{Var(L"a"), Var(1)}, {Var(L"b"), Var(1)}}));
    p.definition->SetProperty(Prop::kMetadata, MapOf({{Var(L"b"), Var(2)}, {Var(L"c"), Var(2)}}));
    p.Fill();
    EXPECT_EQ(leaf->GetProperty(Prop::kMetadata, 0),
              MapOf({{Var(L"a"), Var(1)}, {Var(L"b"), Var(2)}, {Var(L"c"), Var(2)}}));
    EXPECT_EQ(p.definition->GetProperty(Prop::kMetadata, 0),
              MapOf({{Var(L"b"), Var(2)}, {Var(L"c"), Var(2)}}));
}

TEST(FillingADefinition, KeepsItsMetadataWhereTheFormerOneHasNone) {
    const Place p;
    const auto leaf = p.Leaf();
    leaf->SetProperty(Prop::kMetadata, MapOf({{Var(L"a"), Var(1)}}));
    p.Fill();
    EXPECT_EQ(leaf->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"a"), Var(1)}}));
}

TEST(FillingADefinition, TakesMetadataAsTheyAreWhereItHasNone) {
    const Place p;
    p.definition->SetProperty(Prop::kMetadata, MapOf({{Var(L"a"), Var(1)}}));
    EXPECT_EQ(p.Fill()->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"a"), Var(1)}}));
}

TEST(FillingADefinition, TakesProperty18WhetherOrNotItIsSet) {
    const Place set, unset;
    set.definition->SetProperty(Prop::kFlag8000, Var(true));
    EXPECT_EQ(set.Fill()->GetProperty(Prop::kFlag8000, 0), Var(true));

    const auto leaf = unset.Leaf();
    leaf->SetProperty(Prop::kFlag8000, Var(true));
    unset.Fill();
    EXPECT_TRUE(leaf->GetProperty(Prop::kFlag8000, 0).IsEmpty());
}

TEST(FillingADefinition, LosesWhatOnlyTheFormerOneSaid) {
    const Place p;
    EXPECT_TRUE(NameOf(*p.Fill()).IsEmpty());
    EXPECT_EQ(NameOf(*p.definition), L"former");
}

TEST(FillingADefinition, TakesThePartsInOrder) {
    const Place p;
    const auto a = EnterInstance(*p.table, L"a"), b = EnterInstance(*p.table, L"b");
    const auto below = EnterInstance(*p.table, L"below");
    p.at->Add(b.Get());
    p.at->Add(a.Get())->Add(below.Get());
    const auto filled = p.Fill();
    EXPECT_EQ(ChildrenOf(*filled), (std::vector<Instance*>{b.Get(), a.Get()}));
    EXPECT_EQ(ChildrenOf(*a->GetReference()), std::vector<Instance*>{below.Get()});
    EXPECT_EQ(a->GetParentReference(), filled.Get());
    EXPECT_EQ(below->GetParentReference(), a->GetReference());
    EXPECT_EQ(p.definition->GetChildCount(), 0);
}

TEST(FillingADefinition, PassesOverPlacesWithoutInstance) {
    const Place p;
    const auto below = EnterInstance(*p.table, L"below"), last = EnterInstance(*p.table, L"last");
    p.at->Add(nullptr)->Add(below.Get());
    p.at->Add(last.Get());
    EXPECT_EQ(ChildrenOf(*p.Fill()), std::vector<Instance*>{last.Get()});
    EXPECT_FALSE(below->GetParentReference());
}

TEST(FillingADefinition, TakesAPartThatIsMetTwiceOnce) {
    const Place p;
    const auto part = EnterInstance(*p.table, L"part");
    p.at->Add(part.Get());
    p.at->Add(part.Get());
    EXPECT_EQ(ChildrenOf(*p.Fill()), std::vector<Instance*>{part.Get()});
}

TEST(FillingADefinition, StoresASelectorOnPartsWithIdsOfTheirOwn) {
    for (const PropEnum id : {Prop::kBsId, Prop::kAttachedIdentifier, Prop::kPrimaryIdentifier}) {
        const Place p;
        const auto wheel = EnterInstance(*p.table, L"wheel");
        p.at->Add(wheel.Get())->Say(id, Var(L"x")).Say(Prop::kName, Var(L"front"));
        p.Fill();
        ASSERT_EQ(wheel->GetSelectorCount(), 1) << Key(id);
        const auto stored = SelectorUnder(*wheel, Var(0));
        EXPECT_EQ(stored->GetProperty(id, 0), Var(L"x"));
        EXPECT_EQ(stored->GetProperty(Prop::kName, 0), Var(L"front"));
        EXPECT_EQ(PathFor(*p.table, *stored), (std::vector<Instance*>{p.car.Get(), wheel.Get()}));
        EXPECT_TRUE(LivePath(*stored).empty()) << "ids alone";
    }
}

TEST(FillingADefinition, StoresNoSelectorOnOtherPartsNorOnTheTop) {
    const Place p;
    const auto wheel = EnterInstance(*p.table, L"wheel");
    p.at->Say(Prop::kBsId, Var(L"x")).Add(wheel.Get())->Say(Prop::kName, Var(L"front"));
    p.Fill();
    EXPECT_EQ(wheel->GetSelectorCount() + p.car->GetSelectorCount(), 0);
}

TEST(FillingADefinition, MakesTheTopItsOnlyUse) {
    const Place p;
    const auto filled = p.Fill();
    EXPECT_EQ(p.car->GetReference(), filled.Get());
    EXPECT_EQ(UsesOf(*filled), std::vector<Instance*>{p.car.Get()});
}

TEST(FillingADefinition, GivesADefinitionOfAPartThatListsNoUseThatPart) {
    const Place p;
    const auto lost = EnterInstance(*p.table, L"lost"), listed = EnterInstance(*p.table, L"listed");
    lost->GetReference()->ClearInstances();
    p.at->Add(lost.Get());
    p.at->Add(listed.Get());
    p.Fill();
    EXPECT_EQ(UsesOf(*lost->GetReference()), std::vector<Instance*>{lost.Get()});
    EXPECT_EQ(UsesOf(*listed->GetReference()), std::vector<Instance*>{listed.Get()});
}

TEST(FillingADefinition, EndsAtAPlaceWithoutInstance) {
    const Place p;
    const auto nothing = Make<PlainTraverser>();
    const auto filled = p.factory->CreateReferenceFromTraverser(nothing.Get(), p.table.Get(), L"id");
    ASSERT_TRUE(filled);
    EXPECT_EQ(filled->GetChildCount() + filled->GetInstanceCount(), 0);
}

TEST(FillingADefinition, SeesNoPartsBelowAnInstanceWithoutDefinition) {
    const Place p;
    const auto bare = NewInstance();
    const auto below = EnterInstance(*p.table, L"below");
    p.at->Add(bare.Get())->Add(below.Get());
    EXPECT_EQ(ChildrenOf(*p.Fill()), std::vector<Instance*>{bare.Get()});
    EXPECT_FALSE(below->GetParentReference());
}

}  // namespace
}  // namespace qn::test
