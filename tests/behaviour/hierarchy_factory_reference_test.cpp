// Definitions of a table that are made from a traverser.

#include "frame/host/object3d.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/plain_traverser.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

struct Place {
    Counted<Reference> Fill(const wchar_t* id = L"id") const {
        return factory->CreateReferenceFromTraverser(at.Get(), table.Get(), id);
    }
    Counted<Reference> Known(const wchar_t* id = L"id") const { return table->GetOrCreateReference(id); }
    void AddSelector(std::initializer_list<std::pair<Var, Var>> attributes, Instance* last = nullptr) const {
        Selector selector = PathOf({last ? last : car.Get()});
        selector.SetAttributes(MapOf(attributes));
        car->AddSelector(selector);
    }

    Counted<HierarchyFactory> factory = NewFactory();
    Counted<LookupTable> table = NewTable();
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<PlainTraverser> at = Make<PlainTraverser>(car.Get());
};

TEST(ReferenceFromTraverser, IsMadeUnderAnUnknownId) {
    const Place p;
    const auto made = p.Fill(L"new");
    ASSERT_TRUE(made);
    EXPECT_EQ(p.table->FindReferenceById(L"new"), made);
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0), Var(L"new"));
    EXPECT_EQ(made->GetLookupTable(), p.table.Get());
}

TEST(ReferenceFromTraverser, GetsTheNextIdForAnEmptyOne) {
    const Place p;
    const auto made = p.Fill(L""), again = p.Fill(L"");
    EXPECT_FALSE(made == again);
    EXPECT_EQ(p.table->FindReferenceById(made->GetProperty(Prop::kLocalId, 0).ToText()), made);
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0).ToText().At(0), L'e');
}

TEST(ReferenceFromTraverser, IsThePrefixOfIdsThatAreMadeMeanwhile) {
    const Place p;
    std::vector<String> prefixes;
    p.at->onAsked = [&] { prefixes.push_back(p.table->GetCurrentIdPrefix()); };
    p.Fill(L"new");
    p.Known(L"leaf");
    p.Fill(L"leaf");
    ASSERT_FALSE(prefixes.empty());
    EXPECT_EQ(prefixes.front(), L"new");
    EXPECT_EQ(prefixes.back(), L"leaf");
    EXPECT_TRUE(p.table->GetCurrentIdPrefix().IsEmpty());
}

TEST(ReferenceFromTraverser, ReusesAKnownOneWithPartsUntouched) {
    const Place p;
    const auto known = p.Known();
    const auto part = EnterInstance(*p.table, L"part");
    known->AddChild(part.Get());
    known->SetProperty(Prop::kName, Var(L"known"));
    p.car->SetProperty(Prop::kName, Var(L"car"));
    p.AddSelector({{Var(1), Var(L"selector")}});
    bool asked = false;
    p.at->onAsked = [&] { asked = true; };
    p.at->Add(EnterInstance(*p.table, L"other").Get());

    EXPECT_EQ(p.Fill(), known);
    EXPECT_EQ(NameOf(*known), L"known");
    EXPECT_EQ(ChildrenOf(*known), std::vector<Instance*>{part.Get()});
    EXPECT_EQ(known->GetInstanceCount(), 0);
    EXPECT_FALSE(p.car->GetReference() == known.Get());
    EXPECT_EQ(p.car->GetSelectorCount(), 1);
    EXPECT_FALSE(asked) << "no instance results";
}

TEST(ReferenceFromTraverser, ReusesAKnownOneWithContentUntouched) {
    const Place p;
    const auto known = p.Known();
    const auto object = Make<k3::Object3D>();
    known->SetTarget(Var(object));
    EXPECT_EQ(p.Fill(), known);
    EXPECT_EQ(known->GetTarget(), Var(object));
    EXPECT_EQ(known->GetInstanceCount(), 0);
}

TEST(ReferenceFromTraverser, FillsAKnownLeafAlsoWhenItNamesAFile) {
    const Place p;
    const auto known = p.Known();
    known->SetTarget(Var(L"file.qn"));
    const auto part = EnterInstance(*p.table, L"part");
    p.at->Add(part.Get());
    EXPECT_EQ(p.Fill(), known);
    EXPECT_EQ(ChildrenOf(*known), std::vector<Instance*>{part.Get()});
    EXPECT_EQ(p.car->GetReference(), known.Get());
}

TEST(ReferenceFromTraverser, ListsItsUseTwiceWhereAKnownLeafHadNone) {
    const Place p;
    const auto known = p.Known();
    p.Fill();
    EXPECT_EQ(UsesOf(*known), (std::vector<Instance*>{p.car.Get(), p.car.Get()}));
}

TEST(ReferenceFromTraverser, KeepsFormerUsesOfAKnownLeaf) {
    const Place p;
    const auto known = p.Known();
    const auto former = known->CreateInstance();
    p.Fill();
    EXPECT_EQ(UsesOf(*known), (std::vector<Instance*>{former.Get(), p.car.Get()}));
    EXPECT_EQ(p.car->GetReference(), known.Get());
}

TEST(ReferenceFromTraverser, TakesAllPropertiesOfItsUseButTheLocalId) {
    const Place p;
    for (int id = kFirstProp; id <= kLastProp; ++id) {
        String text;
        text.Format(L"v%d", id);
        const bool metadata = PropEnum(id) == Prop::kMetadata;
        p.car->SetProperty(PropEnum(id), metadata ? MapOf({{Var(L"m"), Var(1)}}) : Var(text));
    }
    const auto made = p.Fill();
    for (int id = kFirstProp; id <= kLastProp; ++id) {
        const bool own = PropEnum(id) == Prop::kLocalId;
        EXPECT_EQ(made->GetProperty(PropEnum(id), 0), own ? Var(L"id") : p.car->GetProperty(PropEnum(id), 0))
            << id;
    }
}

TEST(ReferenceFromTraverser, TakesTheServerIdOfItsUse) {
    const Place p;
    p.car->SetProperty(Prop::kBsId, Var(L"server"));
    EXPECT_EQ(p.Fill()->GetParamVar(Param::kBsId), Var(L"server"));
}

TEST(ReferenceFromTraverser, KeepsWhatItsUseDoesNotSay) {
    const Place p;
    const auto known = p.Known();
    known->SetProperty(Prop::kName, Var(L"known"));
    known->SetProperty(Prop::kText, Var(L"text"));
    p.car->SetProperty(Prop::kText, Var());
    p.Fill();
    EXPECT_EQ(NameOf(*known), L"known");
    EXPECT_EQ(known->GetProperty(Prop::kText, 0), Var(L"text"));
}

TEST(ReferenceFromTraverser, MergesMetadataOfItsUseInPlace) {
    const Place p;
    const auto known = p.Known();
    known->SetProperty(Prop::kMetadata, MapOf({{Var(L"a"), Var(1)}, {Var(L"b"), Var(1)}}));
    const VarMap* map = known->GetMetadata(false);
    p.car->SetProperty(Prop::kMetadata, MapOf({{Var(L"b"), Var(2)}, {Var(L"c"), Var(2)}}));
    p.Fill();
    EXPECT_EQ(known->GetMetadata(false), map);
    EXPECT_EQ(known->GetProperty(Prop::kMetadata, 0),
              MapOf({{Var(L"a"), Var(1)}, {Var(L"b"), Var(2)}, {Var(L"c"), Var(2)}}));
    EXPECT_EQ(p.car->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"b"), Var(2)}, {Var(L"c"), Var(2)}}));
}

TEST(ReferenceFromTraverser, TakesMetadataOfItsUseWhereItHasNone) {
    const Place p;
    p.car->SetProperty(Prop::kMetadata, MapOf({{Var(L"b"), Var(2)}}));
    EXPECT_EQ(p.Fill()->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"b"), Var(2)}}));
}

TEST(ReferenceFromTraverser, LetsStoredSelectorsWinInOrder) {
    const Place p;
    p.car->SetProperty(Prop::kName, Var(L"use"));
    p.car->SetProperty(Prop::kText, Var(L"use"));
    p.AddSelector({{Var(1), Var(L"first")}, {Var(Key(Prop::kShortValue)), Var(1)}});
    p.AddSelector({{Var(1), Var(L"second")}, {Var(Key(Prop::kText)), Var()}});
    const auto made = p.Fill();
    EXPECT_EQ(NameOf(*made), L"second");
    EXPECT_EQ(made->GetProperty(Prop::kShortValue, 0), Var(1));
    EXPECT_EQ(made->GetProperty(Prop::kText, 0), Var(L"use")) << "an empty value is passed over";
}

TEST(ReferenceFromTraverser, TakesNoIdsOfStoredSelectors) {
    const Place p;
    p.car->SetProperty(Prop::kExternalIds, Var(L"ids"));
    p.AddSelector({{Var(Key(Prop::kLocalId)), Var(L"x")},
                   {Var(Key(Prop::kExternalIds)), Var(L"x")},
                   {Var(Key(Prop::kBsId)), Var(L"x")},
                   {Var(Key(Prop::kAttachedIdentifier)), Var(L"taken")}});
    const auto made = p.Fill();
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0), Var(L"id"));
    EXPECT_EQ(made->GetProperty(Prop::kExternalIds, 0), Var(L"ids"));
    EXPECT_TRUE(made->GetProperty(Prop::kBsId, 0).IsEmpty());
    EXPECT_EQ(made->GetProperty(Prop::kAttachedIdentifier, 0), Var(L"taken"));
}

TEST(ReferenceFromTraverser, TakesWhatTheLastInstanceOfAStoredSelectorSays) {
    const Place p;
    const auto other = EnterInstance(*p.table, L"other");
    other->SetProperty(Prop::kName, Var(L"other"));
    other->GetReference()->SetProperty(Prop::kText, Var(L"inherited"));
    p.car->SetProperty(Prop::kName, Var(L"use"));
    p.AddSelector({{Var(Key(Prop::kShortValue)), Var(1)}}, other.Get());
    const auto made = p.Fill();
    EXPECT_EQ(NameOf(*made), L"other");
    EXPECT_EQ(made->GetProperty(Prop::kText, 0), Var(L"inherited"));
}

TEST(ReferenceFromTraverser, MergesMetadataOfStoredSelectors) {
    const Place p;
    p.car->SetProperty(Prop::kMetadata, MapOf({{Var(L"a"), Var(1)}, {Var(L"b"), Var(1)}}));
    p.AddSelector({{Var(Key(Prop::kMetadata)), MapOf({{Var(L"b"), Var(2)}})}});
    EXPECT_EQ(p.Fill()->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"a"), Var(1)}, {Var(L"b"), Var(2)}}));
}

TEST(ReferenceFromTraverser, TakesTheOneStoredSelectorAway) {
    const Place p;
    p.AddSelector({{Var(1), Var(L"0")}});
    p.Fill();
    EXPECT_EQ(p.car->GetSelectorCount(), 0);
}

TEST(ReferenceFromTraverser, LeavesTheLastOfThreeStoredSelectors) {
    const Place p;
    for (const wchar_t* name : {L"0", L"1", L"2"})
        p.AddSelector({{Var(1), Var(name)}});
    EXPECT_EQ(NameOf(*p.Fill()), L"2");
    EXPECT_EQ(p.car->GetSelectorCount(), 1);
    EXPECT_FALSE(SelectorUnder(*p.car, Var(0)));
    EXPECT_FALSE(SelectorUnder(*p.car, Var(1)));
    EXPECT_EQ(NameOf(*SelectorUnder(*p.car, Var(2))), L"2");
}

TEST(ReferenceFromTraverser, LeavesTheLastOfTwoStoredSelectors) {
    const Place p;
    for (const wchar_t* name : {L"0", L"1"})
        p.AddSelector({{Var(1), Var(name)}});
    p.Fill();
    EXPECT_EQ(p.car->GetSelectorCount(), 1);
    EXPECT_EQ(NameOf(*SelectorUnder(*p.car, Var(1))), L"1");
}

TEST(ReferenceFromTraverser, LeavesStoredSelectorsOfPartsAlone) {
    const Place p;
    const auto part = EnterInstance(*p.table, L"part");
    part->AddSelector(PathOf({part.Get()}));
    p.at->Add(part.Get());
    p.Fill();
    EXPECT_EQ(part->GetSelectorCount(), 1);
}

}  // namespace
}  // namespace qn::test
