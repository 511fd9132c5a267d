#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// car > wheel > tyre, each used once; `stray` is no child of anything, `foreign` is not in the table.
struct Garage {
    Garage() {
        car->GetReference()->AddChild(wheel.Get());
        wheel->GetReference()->AddChild(tyre.Get());
        foreignReference->AddChild(tyre.Get());
    }
    bool Accepts(std::initializer_list<Instance*> path) const {
        return table->IsSelectorPathValid(PathOf(path));
    }

    Counted<LookupTable> table = NewTable();
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<Instance> wheel = EnterInstance(*table, L"wheel");
    Counted<Instance> tyre = EnterInstance(*table, L"tyre");
    Counted<Instance> stray = EnterInstance(*table, L"stray");
    Counted<Reference> foreignReference = NewReference();
    Counted<Instance> foreign = foreignReference->CreateInstance();
};

TEST(LookupTablePaths, FollowTheChildren) {
    const Garage g;
    EXPECT_TRUE(g.Accepts({g.car.Get()}));
    EXPECT_TRUE(g.Accepts({g.car.Get(), g.wheel.Get()}));
    EXPECT_TRUE(g.Accepts({g.car.Get(), g.wheel.Get(), g.tyre.Get()}));
}

TEST(LookupTablePaths, MayStartAtAnyInstanceOfTheTable) {
    const Garage g;
    EXPECT_TRUE(g.Accepts({g.stray.Get()}));
    EXPECT_TRUE(g.Accepts({g.wheel.Get(), g.tyre.Get()}));
}

TEST(LookupTablePaths, AreNotEmpty) {
    const Garage g;
    EXPECT_FALSE(g.Accepts({}));
}

TEST(LookupTablePaths, DoNotStartOutsideTheTable) {
    const Garage g;
    EXPECT_FALSE(g.Accepts({g.foreign.Get()}));
    EXPECT_FALSE(g.Accepts({g.foreign.Get(), g.tyre.Get()}));
    EXPECT_FALSE(g.Accepts({nullptr}));
    EXPECT_FALSE(g.Accepts({nullptr, g.car.Get()}));
}

TEST(LookupTablePaths, EndAtAnInstanceThatIsNoChild) {
    const Garage g;
    EXPECT_FALSE(g.Accepts({g.car.Get(), g.stray.Get()}));
    EXPECT_FALSE(g.Accepts({g.car.Get(), g.tyre.Get()})) << "a grandchild is no child";
    EXPECT_FALSE(g.Accepts({g.car.Get(), g.car.Get()}));
    EXPECT_FALSE(g.Accepts({g.car.Get(), g.stray.Get(), g.wheel.Get()})) << "the rest does not count";
}

TEST(LookupTablePaths, PassOverNullsBehindTheStart) {
    const Garage g;
    EXPECT_TRUE(g.Accepts({g.car.Get(), nullptr}));
    EXPECT_TRUE(g.Accepts({g.car.Get(), nullptr, g.wheel.Get(), nullptr, g.tyre.Get()}));
    EXPECT_FALSE(g.Accepts({g.car.Get(), nullptr, g.stray.Get()}));
}

TEST(LookupTablePaths, PassOverUnknownInstancesBehindTheStart) {
    const Garage g;
    EXPECT_TRUE(g.Accepts({g.car.Get(), g.foreign.Get()}));
    EXPECT_TRUE(g.Accepts({g.car.Get(), g.foreign.Get(), g.wheel.Get()}));
    EXPECT_FALSE(g.Accepts({g.car.Get(), g.foreign.Get(), g.tyre.Get()}))
        << "it is a child of the unknown one";
}

TEST(LookupTablePaths, PassOverEverythingBehindAnInstanceWithoutReference) {
    const Garage g;
    const auto bare = NewInstance();
    g.table->RegisterInstance(bare.Get());
    EXPECT_TRUE(g.Accepts({bare.Get(), g.stray.Get(), g.tyre.Get(), g.car.Get()}));
}

TEST(LookupTablePaths, AreLeftAsTheyAre) {
    const Garage g;
    Selector path = PathOf({g.car.Get(), g.foreign.Get(), g.wheel.Get()});
    path.SetProperty(Prop::kName, Var(L"kept"));
    const auto before = ElementsOf(path);
    g.table->IsSelectorPathValid(path);
    EXPECT_EQ(ElementsOf(path), before);
    EXPECT_EQ(path.GetProperty(Prop::kName, 0), Var(L"kept"));
}

TEST(LookupTablePaths, NeedNoAnswerOfTheSelectorItself) {
    const Garage g;
    const Selector path = PathOf({g.car.Get(), nullptr});
    ASSERT_FALSE(path.IsValid());
    EXPECT_TRUE(g.table->IsSelectorPathValid(path));
    ASSERT_TRUE(PathOf({g.car.Get(), g.stray.Get()}).IsValid());
    EXPECT_FALSE(g.Accepts({g.car.Get(), g.stray.Get()}));
}

}  // namespace
}  // namespace qn::test
