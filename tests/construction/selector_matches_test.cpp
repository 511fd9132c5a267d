#include "construction/selector_matches.h"

#include "tests/construction/construction_support.h"

namespace qn::test {
namespace {

using namespace qn::graph;

/// A path car, axle, wheel; the wheel carries selectors with texts.
struct Wheel {
    void Add(std::initializer_list<std::string_view> names, const wchar_t* text) {
        Selector selector;
        for (const auto name : names)
            selector.AppendPathElement(car.At(name));
        selector.SetProperty(Prop::kText, Var(text));
        Instance()->AddSelector(selector);
    }
    graph::Instance* Instance() const { return car.At("wheel"); }
    std::vector<graph::Instance*> Path() const { return {car.At("car"), car.At("axle"), car.At("wheel")}; }

    Assembly car = AssemblyBuilder("car").Child("axle").Under("axle", "wheel").Build();
};

std::string MatchesOf(const SelectorsByPath& selectors, const std::vector<graph::Instance*>& path) {
    std::string texts;
    selectors.ForEachMatch(
        path, [&](const Selector& match) { texts += Utf8(match.GetProperty(Prop::kText, 0)) + " "; });
    return texts;
}

TEST(SelectorsByPath, GivesNothingForAnInstanceWithoutSelectors) {
    const Wheel wheel;
    EXPECT_EQ(MatchesOf(SelectorsByPath(wheel.Instance()), wheel.Path()), "");
}

TEST(SelectorsByPath, GivesShortPathsFirstAndTheWholePathLast) {
    Wheel wheel;
    wheel.Add({"car", "axle", "wheel"}, L"whole");
    wheel.Add({"wheel"}, L"short");
    wheel.Add({"axle", "wheel"}, L"middle");
    EXPECT_EQ(MatchesOf(SelectorsByPath(wheel.Instance()), wheel.Path()), "short middle whole ");
}

TEST(SelectorsByPath, KeepsTheInstancesOrderWithinOnePath) {
    Wheel wheel;
    wheel.Add({"axle", "wheel"}, L"first");
    wheel.Add({"axle", "wheel"}, L"second");
    EXPECT_EQ(MatchesOf(SelectorsByPath(wheel.Instance()), wheel.Path()), "first second ");
}

TEST(SelectorsByPath, GivesNothingForAnotherPath) {
    Wheel wheel;
    wheel.Add({"car", "wheel"}, L"elsewhere");
    wheel.Add({"car", "axle"}, L"above");
    EXPECT_EQ(MatchesOf(SelectorsByPath(wheel.Instance()), wheel.Path()), "");
}

TEST(SelectorsByPath, GivesNothingThatIsLongerThanThePath) {
    Wheel wheel;
    wheel.Add({"car", "axle", "wheel"}, L"whole");
    EXPECT_EQ(MatchesOf(SelectorsByPath(wheel.Instance()), {wheel.Instance()}), "");
}

TEST(SelectorsByPath, FindsALongPathWithoutShorterOnes) {
    Wheel wheel;
    wheel.Add({"car", "axle", "wheel"}, L"whole");
    EXPECT_EQ(MatchesOf(SelectorsByPath(wheel.Instance()), wheel.Path()), "whole ");
}

}  // namespace
}  // namespace qn::test
