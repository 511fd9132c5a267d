// What is written to the places that are made for the occurrences of a hierarchy.

#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/plain_traverser.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// A definition `car` with a use of `wheel`, in a table, and a place to build at.
struct Making {
    Making() {
        car->GetReference()->AddChild(wheel.Get());
        SetUp(*car, L"car");
        SetUp(*wheel, L"wheel");
    }
    static void SetUp(Instance& use, const wchar_t* name) {
        use.GetReference()->SetProperty(Prop::kName, Var(name));
    }
    /// The place that was made for the selector, borrowed.
    PlainTraverser* Make(const Selector& selector) const {
        const auto made = factory->CreateNodesFromSelector(selector, at.Get());
        return static_cast<PlainTraverser*>(made.Get());
    }
    PlainTraverser* MakeCar() const { return Make(PathOf({car.Get()})); }
    void Store(Instance& on, const Selector& path, const Var& attributes) const {
        Selector selector = path;
        selector.SetAttributes(attributes);
        on.AddSelector(selector);
    }

    Counted<HierarchyFactory> factory = NewFactory();
    Counted<LookupTable> table = NewTable();
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<Instance> wheel = EnterInstance(*table, L"wheel");
    Counted<PlainTraverser> at = qn::Make<PlainTraverser>();
};

TEST(MadePlaces, StandForOneOccurrenceEachParentsFirst) {
    const Making m;
    std::vector<Instance*> order;
    m.at->onCreated = [&](Instance* made) { order.push_back(made); };
    PlainTraverser* top = m.MakeCar();
    ASSERT_TRUE(top);
    EXPECT_EQ(top, m.at->Child(0));
    EXPECT_EQ(m.at->Children(), 1u);
    ASSERT_EQ(top->Children(), 1u);
    EXPECT_EQ(top->Child(0)->Shown(), m.wheel.Get());
    EXPECT_EQ(order, (std::vector<Instance*>{m.car.Get(), m.wheel.Get()}));
}

TEST(MadePlaces, AreNoneForASelectorWithoutInstance) {
    const Making m;
    EXPECT_FALSE(m.factory->CreateNodesFromSelector(Selector(), m.at.Get()));
    EXPECT_FALSE(m.factory->CreateNodesFromSelector(PathOf({m.car.Get(), nullptr}), m.at.Get()));
    EXPECT_EQ(m.at->Children(), 0u);
}

TEST(MadePlaces, AreNoneWhereTheTraverserMakesNone) {
    const Making m;
    m.at->refuses = true;
    EXPECT_FALSE(m.MakeCar());
}

TEST(MadePlaces, TakeSelectorThenUseThenDefinition) {
    const Making m;
    for (HierarchyElement* element : {static_cast<HierarchyElement*>(m.car.Get()),
                                      static_cast<HierarchyElement*>(m.car->GetReference())}) {
        element->SetProperty(Prop::kText, Var(L"below"));
        element->SetProperty(Prop::kShortValue, Var(1));
    }
    m.car->SetProperty(Prop::kText, Var(L"use"));
    m.car->SetProperty(Prop::kShortValue, Var(2));
    Selector selector = PathOf({m.car.Get()});
    selector.SetProperty(Prop::kShortValue, Var(3));
    const PlainTraverser* made = m.Make(selector);
    EXPECT_EQ(made->Written(Prop::kName), std::vector<Var>{Var(L"car")});
    EXPECT_EQ(made->Written(Prop::kText), std::vector<Var>{Var(L"use")});
    EXPECT_EQ(made->Written(Prop::kShortValue), std::vector<Var>{Var(3)});
}

TEST(MadePlaces, TakeSetValuesAloneInRisingOrder) {
    const Making m;
    m.car->SetProperty(Prop::kText, Var());
    m.car->SetProperty(Prop::kHidden, Var(true));
    EXPECT_EQ(m.MakeCar()->WrittenIds(),
              (std::vector<int>{Key(Prop::kName), Key(Prop::kHidden), Key(Prop::kLocalId)}));
}

TEST(MadePlaces, TakeTheOriginBlindly) {
    const Making m;
    m.car->SetProperty(Prop::kOrigin, Var(L"origin"));
    EXPECT_EQ(m.MakeCar()->Written(Prop::kOrigin), std::vector<Var>{Var(L"origin")});
}

TEST(MadePlaces, TakeNoServerIdsOfUses) {
    const Making m;
    for (const PropEnum id : {Prop::kBsId, Prop::kAttachedIdentifier, Prop::kPrimaryIdentifier}) {
        m.car->SetProperty(id, Var(L"use"));
        m.car->GetReference()->SetProperty(id, Var(L"definition"));
    }
    Selector selector = PathOf({m.car.Get()});
    selector.SetProperty(Prop::kBsId, Var(L"selector"));
    const PlainTraverser* made = m.Make(selector);
    for (const PropEnum id : {Prop::kBsId, Prop::kAttachedIdentifier, Prop::kPrimaryIdentifier})
        EXPECT_TRUE(made->Written(id).empty()) << Key(id);
}

TEST(MadePlaces, TakeServerIdsOfStoredSelectors) {
    const Making m;
    m.Store(*m.car, PathOf({m.car.Get()}),
            MapOf({{Var(0x14), Var(L"a")}, {Var(0x22), Var(L"b")}, {Var(0x23), Var(L"c")}}));
    const PlainTraverser* made = m.MakeCar();
    EXPECT_EQ(made->Written(Prop::kBsId), std::vector<Var>{Var(L"a")});
    EXPECT_EQ(made->Written(Prop::kAttachedIdentifier), std::vector<Var>{Var(L"b")});
    EXPECT_EQ(made->Written(Prop::kPrimaryIdentifier), std::vector<Var>{Var(L"c")});
}

TEST(MadePlaces, TakeOwnValuesAloneOfStoredSelectors) {
    const Making m;
    m.car->SetProperty(Prop::kText, Var(L"use"));
    m.Store(*m.car, PathOf({m.car.Get()}), MapOf({{Var(1), Var(L"stored")}, {Var(Key(Prop::kText)), Var()}}));
    const PlainTraverser* made = m.MakeCar();
    EXPECT_EQ(made->Written(Prop::kName), (std::vector<Var>{Var(L"car"), Var(L"stored")}));
    EXPECT_EQ(made->Written(Prop::kText), std::vector<Var>{Var(L"use")});
    EXPECT_EQ(made->Written(Prop::kLocalId).size(), 1u);
}

TEST(MadePlaces, TakeNoMetadataOfUsesNorOfTheSelector) {
    const Making m;
    const Var metadata = MapOf({{Var(L"a"), Var(1)}});
    m.car->SetProperty(Prop::kMetadata, metadata);
    m.car->GetReference()->SetProperty(Prop::kMetadata, metadata);
    Selector selector = PathOf({m.car.Get()});
    selector.SetProperty(Prop::kMetadata, metadata);
    EXPECT_TRUE(m.Make(selector)->Written(Prop::kMetadata).empty());
}

TEST(MadePlaces, TakeMetadataOfStoredSelectors) {
    const Making m;
    const Var metadata = MapOf({{Var(L"a"), Var(1)}});
    m.Store(*m.car, PathOf({m.car.Get()}), MapOf({{Var(0x0c), metadata}}));
    EXPECT_EQ(m.MakeCar()->Written(Prop::kMetadata), std::vector<Var>{metadata});
}

TEST(MadePlaces, TakeTheTransformOfTheDefinitionFirst) {
    const Making m;
    Matrix4<double> turn;  // a quarter about z: x becomes y
    turn.m[0][0] = turn.m[1][1] = 0, turn.m[0][1] = 1, turn.m[1][0] = -1;
    m.car->GetReference()->SetProperty(Prop::kLocalMatrix, Var(Shift(10)));
    m.car->SetProperty(Prop::kLocalMatrix, Var(turn));
    Matrix4<double> both = turn;
    both.m[3][1] = 10;  // shifted, then turned
    EXPECT_EQ(m.MakeCar()->Written(Prop::kLocalMatrix), std::vector<Var>{Var(both)});
}

TEST(MadePlaces, TakeTheTransformOfTheSelectorInsteadOfThatOfTheUse) {
    const Making m;
    m.car->GetReference()->SetProperty(Prop::kLocalMatrix, Var(Shift(10)));
    m.car->SetProperty(Prop::kLocalMatrix, Var(Shift(1)));
    Selector selector = PathOf({m.car.Get()});
    selector.SetProperty(Prop::kLocalMatrix, Var(Shift(2)));
    EXPECT_EQ(m.Make(selector)->Written(Prop::kLocalMatrix), std::vector<Var>{Var(Shift(12))});
}

TEST(MadePlaces, TakeTheTransformOfTheDefinitionAlone) {
    const Making m;
    m.car->GetReference()->SetProperty(Prop::kLocalMatrix, Var(Shift(10)));
    m.wheel->SetProperty(Prop::kLocalMatrix, Var(Shift(1)));
    const PlainTraverser* made = m.MakeCar();
    EXPECT_EQ(made->Written(Prop::kLocalMatrix), std::vector<Var>{Var(Shift(10))});
    EXPECT_EQ(made->Child(0)->Written(Prop::kLocalMatrix), std::vector<Var>{Var(Shift(1))});
}

TEST(MadePlaces, PutTheTransformOfTheDefinitionBeforeThatOfAStoredSelector) {
    const Making m;
    m.car->GetReference()->SetProperty(Prop::kLocalMatrix, Var(Shift(10)));
    m.car->SetProperty(Prop::kLocalMatrix, Var(Shift(1)));
    m.Store(*m.car, PathOf({m.car.Get()}), MapOf({{Var(2), Var(Shift(3))}}));
    m.Store(*m.car, PathOf({m.car.Get()}), MapOf({{Var(1), Var(L"no transform")}}));
    EXPECT_EQ(m.MakeCar()->Written(Prop::kLocalMatrix), (std::vector<Var>{Var(Shift(11)), Var(Shift(13))}));
}

TEST(MadePlaces, TakeOtherTransformsWithoutProduct) {
    const Making m;
    m.car->GetReference()->SetProperty(Prop::kOwnMatrix, Var(Shift(10)));
    m.car->SetProperty(Prop::kOwnMatrix, Var(Shift(1)));
    m.car->GetReference()->SetProperty(Prop::kThirdMatrix, Var(Shift(5)));
    const PlainTraverser* made = m.MakeCar();
    EXPECT_EQ(made->Written(Prop::kOwnMatrix), std::vector<Var>{Var(Shift(1))});
    EXPECT_EQ(made->Written(Prop::kThirdMatrix), std::vector<Var>{Var(Shift(5))});
}

TEST(MadePlaces, TakeATransformThatIsNoneAsItIs) {
    const Making m;
    m.car->SetProperty(Prop::kLocalMatrix, Var(L"odd"));
    EXPECT_EQ(m.MakeCar()->Written(Prop::kLocalMatrix), std::vector<Var>{Var(L"odd")});
}

}  // namespace
}  // namespace qn::test
