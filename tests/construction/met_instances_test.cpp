#include "construction/met_instances.h"

#include "tests/construction/construction_support.h"

namespace qn::test {
namespace {

using namespace qn::graph;

/// A named instance and a path to it.
struct Wheel {
    Wheel() {
        instance->SetProperty(kName, Var(L"wheel"));
        path.AppendPathElement(instance.Get());
    }
    std::string NameGiven(const Selector& source, unsigned state = 0) {
        const auto target = Make<FakeTraverser>();
        met.CopyTo(*target, source, state);
        return Utf8(target->Written(kName));
    }
    Counted<InstanceImpl> instance = LooseInstance(Make<ReferenceImpl>().Get());
    Selector path;
    MetInstance met{instance.Get()};
};

TEST(MetInstance, GivesTheSameEachTime) {
    Wheel wheel;
    for (int time = 1; time <= 3; ++time)
        EXPECT_EQ(wheel.NameGiven(wheel.path), "wheel") << time;
}

TEST(MetInstance, ReadsAgainWhatMayHaveChanged) {
    Wheel wheel;
    for (int time = 1; time <= 3; ++time)
        wheel.NameGiven(wheel.path);
    wheel.instance->SetProperty(kName, Var(L"renamed"));
    for (int time = 1; time <= 3; ++time)
        EXPECT_EQ(wheel.NameGiven(wheel.path, 1), "renamed") << time;
}

TEST(MetInstance, AsksASelectorThatSaysSomethingItself) {
    Wheel wheel;
    for (int time = 1; time <= 3; ++time)
        wheel.NameGiven(wheel.path);
    Selector special = wheel.path;
    special.SetProperty(kName, Var(L"front wheel"));
    EXPECT_EQ(wheel.NameGiven(special), "front wheel");
    EXPECT_EQ(wheel.NameGiven(wheel.path), "wheel");
}

TEST(MetInstance, PlacesEachNodeByItsOwnInstance) {
    Wheel wheel;
    wheel.instance->SetProperty(kLocalMatrix, Shift(1));
    const auto definition = Make<ReferenceImpl>();
    definition->SetProperty(kLocalMatrix, Shift(10));
    for (int time = 1; time <= 3; ++time) {
        const auto target = Make<FakeTraverser>();
        target->instance = LooseInstance(definition.Get());
        wheel.met.CopyTo(*target, wheel.path, 0);
        EXPECT_EQ(ShiftOf(target->Written(kLocalMatrix)), 10) << time;
    }
}

TEST(MetInstances, ReadTheSelectorsOfAnInstanceOnce) {
    const auto wheel = AssemblyBuilder("wheel").Build();
    MetInstances met;
    EXPECT_FALSE(met.Of(wheel.RootInstance()).GetSelectors());
    wheel.RootInstance()->AddSelector(wheel.Path({"wheel"}));
    EXPECT_FALSE(met.Of(wheel.RootInstance()).GetSelectors());
    EXPECT_TRUE(MetInstances().Of(wheel.RootInstance()).GetSelectors());
}

}  // namespace
}  // namespace qn::test
