// Which stored selectors of an instance apply to an occurrence, and in which order.

#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/plain_traverser.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

using Names = std::vector<std::wstring>;

/// car(axle(wheel) axle(wheel)): two uses of one definition with one use of the wheel.
struct Car {
    Car() {
        axle->GetReference()->AddChild(wheel.Get());
        rear = axle->GetReference()->CreateInstance();
        car->GetReference()->AddChild(axle.Get());
        car->GetReference()->AddChild(rear.Get());
    }
    void Store(const wchar_t* name, std::initializer_list<Instance*> path) const {
        Selector selector = PathOf(path);
        selector.SetProperty(Prop::kName, Var(name));
        wheel->AddLocalSelector(selector);
    }
    /// Builds the car; the names that were written to the wheel below the axle of that number.
    Names NamesOfWheel(std::size_t axleNumber = 0) const {
        const auto at = Make<PlainTraverser>();
        factory->CreateNodesFromSelector(PathOf({car.Get()}), at.Get());
        return NamesAt(*at->Child(0)->Child(axleNumber)->Child(0));
    }
    static Names NamesAt(const PlainTraverser& place) {
        Names names;
        for (const Var& name : place.Written(Prop::kName))
            names.emplace_back(name.ToText().c_str());
        return names;
    }

    Counted<HierarchyFactory> factory = NewFactory();
    Counted<LookupTable> table = NewTable();
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<Instance> axle = EnterInstance(*table, L"axle");
    Counted<Instance> wheel = EnterInstance(*table, L"wheel");
    Counted<Instance> rear;
};

TEST(MatchingSelectors, ApplyFromTheShortestToTheLongestPath) {
    const Car c;
    c.Store(L"long", {c.car.Get(), c.axle.Get(), c.wheel.Get()});
    c.Store(L"short", {c.wheel.Get()});
    c.Store(L"middle", {c.axle.Get(), c.wheel.Get()});
    EXPECT_EQ(c.NamesOfWheel(), (Names{L"short", L"middle", L"long"}));
}

TEST(MatchingSelectors, OfOnePathApplyInTheirOrder) {
    const Car c;
    c.Store(L"b", {c.wheel.Get()});
    c.Store(L"longer", {c.axle.Get(), c.wheel.Get()});
    c.Store(L"a", {c.wheel.Get()});
    EXPECT_EQ(c.NamesOfWheel(), (Names{L"b", L"a", L"longer"}));
}

TEST(MatchingSelectors, AreThoseWhosePathEndsTheOccurrencesPath) {
    const Car c;
    c.Store(L"all", {c.wheel.Get()});
    c.Store(L"rear", {c.rear.Get(), c.wheel.Get()});
    c.Store(L"start alone", {c.car.Get(), c.axle.Get()});
    c.Store(L"gap", {c.car.Get(), c.wheel.Get()});
    c.Store(L"too long", {c.rear.Get(), c.car.Get(), c.axle.Get(), c.wheel.Get()});
    EXPECT_EQ(c.NamesOfWheel(0), Names{L"all"});
    EXPECT_EQ(c.NamesOfWheel(1), (Names{L"all", L"rear"}));
}

TEST(MatchingSelectors, CountFromTheStartOfTheSelectorThatIsBuilt) {
    const Car c;
    c.Store(L"long", {c.car.Get(), c.axle.Get(), c.wheel.Get()});
    c.Store(L"middle", {c.axle.Get(), c.wheel.Get()});
    const auto at = Make<PlainTraverser>();
    c.factory->CreateNodesFromSelector(PathOf({c.axle.Get()}), at.Get());
    EXPECT_EQ(Car::NamesAt(*at->Child(0)->Child(0)), Names{L"middle"});

    const auto deeper = Make<PlainTraverser>();
    c.factory->CreateNodesFromSelector(PathOf({c.car.Get(), c.axle.Get()}), deeper.Get());
    EXPECT_EQ(Car::NamesAt(*deeper->Child(0)->Child(0)), (Names{L"middle", L"long"}));
}

TEST(MatchingSelectors, AreFoundByIdPathsToo) {
    const Car c;
    const auto stored = IdSelector(*c.table, IdPath({L"axle", L"wheel"}));
    stored->SetProperty(Prop::kName, Var(L"by id"));
    SetSelectors(*c.wheel, {stored.Get()});
    EXPECT_EQ(c.NamesOfWheel(), Names{L"by id"});
}

TEST(MatchingSelectors, AreThoseOfTheInstanceAlone) {
    const Car c;
    Selector selector = PathOf({c.wheel.Get()});
    selector.SetProperty(Prop::kName, Var(L"elsewhere"));
    c.axle->AddLocalSelector(selector);
    c.wheel->GetReference()->AddSelector(selector);
    EXPECT_EQ(c.NamesOfWheel(), Names{});
}

TEST(MatchingSelectors, AreGroupedOnceForEachRun) {
    const Car c;
    const auto at = Make<PlainTraverser>();
    at->onCreated = [&](Instance* made) {
        if (made == c.rear.Get()) c.Store(L"late", {c.wheel.Get()});
    };
    c.factory->CreateNodesFromSelector(PathOf({c.car.Get()}), at.Get());
    EXPECT_EQ(Car::NamesAt(*at->Child(0)->Child(1)->Child(0)), Names{}) << "the wheel was met before";
    EXPECT_EQ(c.NamesOfWheel(), Names{L"late"}) << "a further run looks again";
}

}  // namespace
}  // namespace qn::test
