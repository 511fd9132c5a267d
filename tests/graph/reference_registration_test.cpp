#include "graph/reference_registration.h"
#include "frame/host/object3d.h"
#include "graph/limits.h"
#include "tests/graph/graph_support.h"
#include "tests/support/recording_context.h"

namespace qn::test {

namespace {

class Registering : public testing::Test {
protected:
    Counted<LookupTableImpl> table = Make<LookupTableImpl>();
    Counted<ReferenceImpl> car = MakeReference();

    static Counted<ReferenceImpl> WithBsId(const wchar_t* bsId, int children = 0) {
        auto reference = MakeReference();
        reference->SetProperty(Prop::kBsId, Var(bsId));
        for (int i = 0; i < children; ++i)
            reference->AddChild(MakeInstance().Get());
        return reference;
    }
    static Var LocalId(const HierarchyElement& element) { return element.GetProperty(Prop::kLocalId, 0); }
};

}  // namespace

TEST_F(Registering, NullAnswersNull) {
    EXPECT_EQ(car->RegisterInTable(nullptr), nullptr);
    EXPECT_EQ(car->GetLookupTable(), nullptr);
}

TEST_F(Registering, AReferenceWithoutServerIdGetsALocalOne) {
    EXPECT_EQ(car->RegisterInTable(table.Get()), car.Get());
    EXPECT_EQ(LocalId(*car), Var(L"e1"));
    EXPECT_EQ(table->FindReferenceById(L"e1"), car.Get());
    EXPECT_EQ(table->references.count(Counted<Reference>(car.Get())), 1u);
    EXPECT_EQ(car->GetLookupTable(), table.Get());
}

TEST_F(Registering, AReferenceWithServerIdIsKnownByIt) {
    const auto part = WithBsId(L"s:1");
    EXPECT_EQ(part->RegisterInTable(table.Get()), part.Get());
    EXPECT_EQ(table->FindReferenceByBsId(L"s:1"), part.Get());
    EXPECT_EQ(table->FindReferenceById(L"e1"), part.Get());
}

TEST_F(Registering, ChangesTheTable) {
    const auto other = Make<LookupTableImpl>();
    const auto part = MakeReference(other.Get());
    part->RegisterInTable(table.Get());
    EXPECT_EQ(part->GetLookupTable(), table.Get());
}

TEST_F(Registering, GivesNewLocalIdsToAllBelow) {
    const auto part = MakeReference();
    const auto use = MakeInstance(part.Get());
    use->SetProperty(Prop::kLocalId, Var(L"old"));
    part->SetProperty(Prop::kLocalId, Var(L"old"));
    car->AddChild(use.Get());
    car->RegisterInTable(table.Get());
    EXPECT_EQ(LocalId(*use), Var(L"n1"));
    EXPECT_EQ(LocalId(*part), Var(L"e2"));
    EXPECT_EQ(table->FindInstanceById(L"n1"), use.Get());
    EXPECT_EQ(table->instances.count(Counted<Instance>(use.Get())), 1u);
    EXPECT_FALSE(table->FindInstanceById(L"old"));
}

TEST_F(Registering, ListsTheUsesWithTheirDefinitions) {
    const auto part = MakeReference();
    const auto use = MakeInstance(part.Get());
    car->AddChild(use.Get());
    car->RegisterInTable(table.Get());
    ASSERT_EQ(part->GetInstanceCount(), 1);
    EXPECT_EQ(part->GetInstance(0), use.Get());
}

TEST_F(Registering, ListsAUseAgainThatWasListedBefore) {
    const auto part = MakeReference();
    const auto use = part->CreateInstance();
    car->AddChild(use.Get());
    car->RegisterInTable(table.Get());
    EXPECT_EQ(part->GetInstanceCount(), 2);
    EXPECT_EQ(part->GetInstance(1), use.Get());
}

TEST_F(Registering, AnInstanceWithServerIdIsKnownByIt) {
    const auto use = MakeInstance();
    use->SetProperty(Prop::kBsId, Var(L"s:9"));
    car->AddChild(use.Get());
    car->RegisterInTable(table.Get());
    EXPECT_EQ(table->FindInstanceByBsId(L"s:9"), use.Get());
    EXPECT_EQ(table->FindInstanceById(L"n1"), use.Get());
}

TEST_F(Registering, ASharedDefinitionIsEnteredOnceForEachUse) {
    const auto part = MakeReference();
    AddChildren(*car, {MakeInstance(part.Get()).Get(), MakeInstance(part.Get()).Get()});
    car->RegisterInTable(table.Get());
    EXPECT_EQ(LocalId(*part), Var(L"e3"));
    EXPECT_EQ(table->FindReferenceById(L"e2"), part.Get());
    EXPECT_EQ(table->FindReferenceById(L"e3"), part.Get());
}

TEST_F(Registering, AUseBelowASharedDefinitionIsListedOnceForEachOccurrence) {
    const auto part = MakeReference();
    const auto screw = MakeReference();
    part->AddChild(MakeInstance(screw.Get()).Get());
    AddChildren(*car, {MakeInstance(part.Get()).Get(), MakeInstance(part.Get()).Get()});
    car->RegisterInTable(table.Get());
    EXPECT_EQ(screw->GetInstanceCount(), 2);
    EXPECT_EQ(screw->GetInstance(0), screw->GetInstance(1).Get());
}

TEST_F(Registering, ALeafLosesToANonLeafOfItsServerId) {
    const auto leaf = WithBsId(L"s:1");
    leaf->RegisterInTable(table.Get());
    const auto use = leaf->CreateInstance();
    const auto full = WithBsId(L"s:1", 1);
    EXPECT_EQ(full->RegisterInTable(table.Get()), full.Get());
    EXPECT_EQ(use->GetReference(), full.Get());
    EXPECT_EQ(LocalId(*full), Var(L"e1"));
    EXPECT_EQ(table->FindReferenceByBsId(L"s:1"), full.Get());
}

TEST_F(Registering, TheListsOfUsesStayWhenALeafLoses) {
    const auto leaf = WithBsId(L"s:1");
    leaf->RegisterInTable(table.Get());
    const auto use = leaf->CreateInstance();
    const auto full = WithBsId(L"s:1", 1);
    full->RegisterInTable(table.Get());
    EXPECT_EQ(leaf->GetInstanceCount(), 1);
    EXPECT_EQ(full->GetInstanceCount(), 0);
    EXPECT_EQ(table->references.count(Counted<Reference>(leaf.Get())), 1u);
}

TEST_F(Registering, TheFirstOfTwoNonLeavesWins) {
    const auto first = WithBsId(L"s:1", 1);
    first->RegisterInTable(table.Get());
    const auto second = WithBsId(L"s:1", 2);
    const auto use = second->CreateInstance();
    EXPECT_EQ(second->RegisterInTable(table.Get()), first.Get());
    EXPECT_EQ(use->GetReference(), first.Get());
    EXPECT_TRUE(LocalId(*second).IsEmpty());
    EXPECT_EQ(table->FindReferenceByBsId(L"s:1"), first.Get());
}

TEST_F(Registering, TheFirstOfTwoLeavesWins) {
    const auto first = WithBsId(L"s:1");
    first->RegisterInTable(table.Get());
    EXPECT_EQ(WithBsId(L"s:1")->RegisterInTable(table.Get()), first.Get());
}

TEST_F(Registering, ANonLeafWinsOverALaterLeaf) {
    const auto first = WithBsId(L"s:1", 1);
    first->RegisterInTable(table.Get());
    EXPECT_EQ(WithBsId(L"s:1")->RegisterInTable(table.Get()), first.Get());
}

TEST_F(Registering, ALoserIsNotEntered) {
    WithBsId(L"s:1", 1)->RegisterInTable(table.Get());
    const auto second = WithBsId(L"s:1", 1);
    second->RegisterInTable(table.Get());
    EXPECT_TRUE(LocalId(*second->GetChild(0)).IsEmpty());
}

TEST_F(Registering, ALoserBelowIsReplacedByTheWinnerInItsUse) {
    const auto first = WithBsId(L"s:1", 1);
    first->RegisterInTable(table.Get());
    const auto use = MakeInstance(WithBsId(L"s:1").Get());  // the only holder of the loser
    car->AddChild(use.Get());
    EXPECT_EQ(car->RegisterInTable(table.Get()), car.Get());
    EXPECT_EQ(use->GetReference(), first.Get());
}

TEST_F(Registering, AgainKeepsTheLocalIdOfAReferenceWithServerId) {
    const auto part = WithBsId(L"s:1");
    part->RegisterInTable(table.Get());
    part->RegisterInTable(table.Get());
    EXPECT_EQ(LocalId(*part), Var(L"e1"));
    car->RegisterInTable(table.Get());
    car->RegisterInTable(table.Get());
    EXPECT_EQ(LocalId(*car), Var(L"e3"));
}

TEST_F(Registering, ARingEnds) {
    const auto use = MakeInstance(car.Get());
    car->AddChild(use.Get());
    EXPECT_EQ(car->RegisterInTable(table.Get()), car.Get());
    EXPECT_EQ(LocalId(*car), Var(L"e1"));
    EXPECT_EQ(LocalId(*use), Var(L"n1"));
    use->SetReference(nullptr);
}

TEST_F(Registering, ADeepChainIsEnteredToItsEnd) {
    const Chain chain(kDeep);
    chain.root->RegisterInTable(table.Get());
    EXPECT_EQ(LocalId(*chain.references.back()), Var(String(L"e10000")));
    EXPECT_EQ(table->instances.size(), static_cast<std::size_t>(kDeep - 1));
}

TEST_F(Registering, EndsAtTheLimitOfOccurrences) {
    const auto wheel = MakeReference(), bolt = MakeReference();
    for (int i = 0; i < 2; ++i)
        car->AddChild(wheel->CreateInstance().Get());
    for (int i = 0; i < 3; ++i)
        wheel->AddChild(bolt->CreateInstance().Get());
    const auto isEntered = [&](const ReferenceImpl& parent, int child) {
        return LocalId(*parent.GetChild(child)).IsSet();
    };
    EXPECT_EQ(RegisterInTable(*car, table.Get(), 3), car.Get());
    EXPECT_TRUE(isEntered(*car, 0));
    EXPECT_TRUE(isEntered(*wheel, 0));
    EXPECT_TRUE(isEntered(*wheel, 1));
    EXPECT_FALSE(isEntered(*wheel, 2)) << "the fourth";
    EXPECT_FALSE(isEntered(*car, 1)) << "nothing is met any more";
}

TEST_F(Registering, CountsTheUsesOfASharedDefinitionAsOftenAsTheyOccur) {
    const auto wheel = MakeReference(), bolt = MakeReference();
    for (int i = 0; i < 2; ++i)
        car->AddChild(wheel->CreateInstance().Get());
    wheel->AddChild(bolt->CreateInstance().Get());
    RegisterInTable(*car, table.Get(), 3);
    EXPECT_EQ(LocalId(*wheel->GetChild(0)), Var(L"n2"));
    RegisterInTable(*car, Make<LookupTableImpl>().Get(), 4);
    EXPECT_EQ(LocalId(*wheel->GetChild(0)), Var(L"n4"));
}

TEST_F(Registering, EntersEachDefinitionOnceWhereMoreOccurThanTheLimit) {
    constexpr int kLevels = 40, kUses = 3;
    std::vector<Counted<ReferenceImpl>> levels{car};
    for (int level = 0; level < kLevels; ++level) {
        levels.push_back(MakeReference());
        for (int use = 0; use < kUses; ++use)
            levels[level]->AddChild(MakeInstance(levels[level + 1].Get()).Get());
    }
    EXPECT_EQ(RegisterInTable(*car, table.Get(), kMaxOccurrences), car.Get());
    EXPECT_EQ(table->instances.size(), static_cast<std::size_t>(kLevels * kUses));
    for (const auto& level : levels)
        EXPECT_EQ(table->FindReferenceById(LocalId(*level).ToText()), level.Get());
}

TEST_F(Registering, EndsWhenTheContextIsCancelled) {
    const auto context = MakeContext();
    const auto use = MakeInstance(MakeReference().Get());
    car->AddChild(use.Get());
    context->Cancel();
    EXPECT_EQ(RegisterInTable(*car, table.Get(), kMaxOccurrences, context.Get()), car.Get());
    EXPECT_TRUE(LocalId(*use).IsEmpty());
}

}  // namespace qn::test
