// Definitions that lie elsewhere: their target is a text, an array or a map.

#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/plain_traverser.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// top(car(wheel)), where the definition of `car` lies elsewhere.
struct Linked {
    explicit Linked(const Var& target = ArrayOf({Var(L"somewhere")})) {
        top->GetReference()->AddChild(car.Get());
        car->GetReference()->AddChild(wheel.Get());
        car->GetReference()->SetTarget(target);
    }

    Counted<HierarchyFactory> factory = NewFactory();
    Counted<LookupTable> table = NewTable();
    Counted<Instance> top = EnterInstance(*table, L"top");
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<Instance> wheel = EnterInstance(*table, L"wheel");
    Counted<PlainTraverser> at = Make<PlainTraverser>();
};

TEST(LinkedDefinition, IsBuiltButTheGivenPlaceIsTheAnswer) {
    for (const Var& target : {ArrayOf({Var(L"a")}), MapOf({{Var(L"k"), Var(L"a")}}), Var(L"missing.qn")}) {
        const Linked l(target);
        EXPECT_EQ(l.factory->CreateNodesFromSelector(PathOf({l.car.Get()}), l.at.Get()).Get(), l.at.Get());
        ASSERT_EQ(l.at->Children(), 1u);
        EXPECT_EQ(l.at->Child(0)->Shown(), l.car.Get());
        ASSERT_EQ(l.at->Child(0)->Children(), 1u);
        EXPECT_EQ(l.at->Child(0)->Child(0)->Shown(), l.wheel.Get());
    }
}

TEST(LinkedDefinition, IsBuiltBelowItsParentToo) {
    const Linked l;
    const auto made = l.factory->CreateNodesFromSelector(PathOf({l.top.Get()}), l.at.Get());
    EXPECT_EQ(made.Get(), l.at->Child(0));
    ASSERT_EQ(l.at->Child(0)->Children(), 1u);
    EXPECT_EQ(l.at->Child(0)->Child(0)->Child(0)->Shown(), l.wheel.Get());
}

TEST(LinkedDefinition, ForgetsTheNameOfAFileThatCannotBeLoaded) {
    const Linked l{Var(L"missing.qn")};
    l.factory->CreateNodesFromSelector(PathOf({l.car.Get()}), l.at.Get());
    EXPECT_TRUE(l.car->GetReference()->GetTarget().IsEmpty());
    EXPECT_EQ(UsesOf(*l.car->GetReference()), std::vector<Instance*>{l.car.Get()});
}

TEST(LinkedDefinition, KeepsATargetThatIsATableOfNames) {
    const Linked l;
    l.factory->CreateNodesFromSelector(PathOf({l.car.Get()}), l.at.Get());
    EXPECT_EQ(l.car->GetReference()->GetTarget(), ArrayOf({Var(L"somewhere")}));
}

TEST(LinkedDefinition, GivesItsUseTheNameOfTheSelector) {
    const Linked l;
    l.car->SetProperty(Prop::kName, Var(L"former"));
    Selector selector = PathOf({l.top.Get(), l.car.Get()});
    selector.SetProperty(Prop::kName, Var(L"selector"));
    selector.SetProperty(Prop::kText, Var(L"selector"));
    l.factory->CreateNodesFromSelector(selector, l.at.Get());
    EXPECT_EQ(NameOf(*l.car), L"selector");
    EXPECT_TRUE(l.car->GetProperty(Prop::kText, 0).IsEmpty());
}

TEST(LinkedDefinition, StoresTheSelectorOnItsUseEachTime) {
    const Linked l;
    Selector selector = PathOf({l.top.Get(), l.car.Get()});
    selector.SetProperty(Prop::kText, Var(L"selector"));
    for (int run = 1; run <= 2; ++run) {
        l.factory->CreateNodesFromSelector(selector, l.at.Get());
        ASSERT_EQ(l.car->GetSelectorCount(), run);
        EXPECT_EQ(ElementsOf(l.car->GetSelector(run - 1)), ElementsOf(selector));
        EXPECT_EQ(l.car->GetSelector(run - 1).GetProperty(Prop::kText, 0), Var(L"selector"));
    }
}

TEST(LinkedDefinition, StoresASelectorOnEverythingBelow) {
    const Linked l;
    l.factory->CreateNodesFromSelector(PathOf({l.car.Get()}), l.at.Get());
    ASSERT_EQ(l.wheel->GetSelectorCount(), 1);
    EXPECT_EQ(ElementsOf(l.wheel->GetSelector(0)), (std::vector<Instance*>{l.car.Get(), l.wheel.Get()}));
}

TEST(LinkedDefinition, StartsThePathsOfWhatIsBuiltAnew) {
    const Linked l;
    Selector longer = PathOf({l.top.Get(), l.car.Get()}), shorter = PathOf({l.car.Get()});
    longer.SetProperty(Prop::kText, Var(L"longer"));
    shorter.SetProperty(Prop::kText, Var(L"shorter"));
    l.car->AddSelector(longer);
    l.car->AddSelector(shorter);
    l.factory->CreateNodesFromSelector(PathOf({l.top.Get(), l.car.Get()}), l.at.Get());
    EXPECT_EQ(l.at->Child(0)->Written(Prop::kText), std::vector<Var>{Var(L"shorter")});
}

TEST(LinkedDefinition, LosesWhatTheSelectorItselfSays) {
    const Linked l;
    Selector selector = PathOf({l.top.Get(), l.car.Get()});
    selector.SetProperty(Prop::kText, Var(L"selector"));
    l.factory->CreateNodesFromSelector(selector, l.at.Get());
    EXPECT_TRUE(l.at->Child(0)->Written(Prop::kText).empty());
}

TEST(LinkedDefinition, AdoptsThePartsThatTheSelectorSees) {
    const Linked l;
    const auto part = EnterInstance(*l.table, L"part"), below = EnterInstance(*l.table, L"below");
    const auto place = Make<PlainTraverser>(l.car.Get());
    place->Add(nullptr);
    PlainTraverser* seen = place->Add(part.Get());
    seen->Say(Prop::kName, Var(L"seen"));
    seen->Add(below.Get());
    Selector selector;
    selector.AssignTraverser(place.Get());

    l.factory->CreateNodesFromSelector(selector, l.at.Get());
    EXPECT_EQ(ChildrenOf(*l.car->GetReference()), (std::vector<Instance*>{l.wheel.Get(), part.Get()}));
    EXPECT_EQ(ChildrenOf(*part->GetReference()), std::vector<Instance*>{below.Get()});
    EXPECT_EQ(NameOf(*part), L"seen");
    EXPECT_EQ(part->GetSelectorCount(), 1);
    ASSERT_EQ(l.at->Child(0)->Children(), 2u);
    EXPECT_EQ(l.at->Child(0)->Child(1)->Child(0)->Shown(), below.Get());
}

TEST(LinkedDefinition, ThatContainsItselfGetsOnePlaceWithoutParts) {
    const Linked l;
    const auto again = l.car->GetReference()->CreateInstance();
    l.wheel->GetReference()->AddChild(again.Get());
    l.factory->CreateNodesFromSelector(PathOf({l.car.Get()}), l.at.Get());
    const PlainTraverser* wheel = l.at->Child(0)->Child(0);
    ASSERT_EQ(wheel->Children(), 1u);
    EXPECT_EQ(wheel->Child(0)->Shown(), again.Get());
    EXPECT_EQ(wheel->Child(0)->Children(), 0u);
    l.wheel->GetReference()->RemoveChildAt(0);
}

}  // namespace
}  // namespace qn::test
