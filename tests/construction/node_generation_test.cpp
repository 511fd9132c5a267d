#include "construction/node_generation.h"

#include "tests/construction/construction_support.h"
#include "tests/construction/forwarding_reference.h"

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using namespace qn::graph;

/// "car(wheel)": the definitions that were shown below a position.
std::string ShownBelow(const FakeTraverser& top) {
    std::string text;
    for (const auto& child : top.children) {
        const std::string below = ShownBelow(*child);
        text += (text.empty() ? "" : ",") + NameOf(child->instance->GetReference()) +
                (below.empty() ? "" : "(" + below + ")");
    }
    return text;
}

std::string Generate(const Selector& selector) {
    const auto top = Make<FakeTraverser>();
    Factory()->CreateNodesFromSelector(selector, top.Get());
    return ShownBelow(*top);
}

TEST(CreateNodesFromSelector, MakesOneNodeForEachOccurrence) {
    const auto car = AssemblyBuilder("car").Child("chassis").Child("wheel", 2).Under("wheel", "tyre").Build();
    EXPECT_EQ(Generate(car.Path({"car"})), "car(chassis,wheel(tyre),wheel(tyre))");
}

TEST(CreateNodesFromSelector, StartsAtTheEndOfThePath) {
    const auto car = AssemblyBuilder("car").Child("wheel").Under("wheel", "tyre").Build();
    EXPECT_EQ(Generate(car.Path({"car", "wheel"})), "wheel(tyre)");
}

TEST(CreateNodesFromSelector, GivesThePositionOfTheNodeThatItMade) {
    const auto car = AssemblyBuilder("car").Build();
    const auto top = Make<FakeTraverser>();
    const auto result = Factory()->CreateNodesFromSelector(car.Path({"car"}), top.Get());
    EXPECT_EQ(result.Get(), top->children.at(0).Get());
}

TEST(CreateNodesFromSelector, GivesNullForNull) {
    const auto car = AssemblyBuilder("car").Build();
    EXPECT_FALSE(Factory()->CreateNodesFromSelector(car.Path({"car"}), nullptr));
    EXPECT_FALSE(Factory()->CreateNodesFromSelector(Selector(), Make<FakeTraverser>().Get()));
}

TEST(CreateNodesFromSelector, GivesNullWhereNoNodeCanBeMade) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    const auto top = Make<FakeTraverser>();
    top->refuses = true;
    EXPECT_FALSE(Factory()->CreateNodesFromSelector(car.Path({"car"}), top.Get()));
}

TEST(CreateNodesFromSelector, MakesAndFillsANodeBeforeItsChildren) {
    const auto car = AssemblyBuilder("car").Child("wheel").Child("chassis").WithoutTable().Build();
    std::vector<std::string> log;
    const auto top = Make<FakeTraverser>(&log);
    Factory()->CreateNodesFromSelector(car.Path({"car"}), top.Get());
    EXPECT_THAT(
        log, testing::ElementsAre("make car", "write 1", "make wheel", "write 1", "make chassis", "write 1"));
}

TEST(CreateNodesFromSelector, MakesANodeWithoutChildrenForAnInstanceWithoutDefinition) {
    const auto instance = LooseInstance();
    Selector selector;
    selector.AppendPathElement(instance.Get());
    EXPECT_EQ(Generate(selector), "(null)");
}

/// The text that the node of a use of "wheel" got.
std::string TextOfWheel(const Assembly& car, const Selector& start) {
    const auto top = Make<FakeTraverser>();
    Factory()->CreateNodesFromSelector(start, top.Get());
    const FakeTraverser* place = top.Get();
    while (!place->children.empty())
        place = place->children[0].Get();
    EXPECT_TRUE(place->instance == car.At("wheel"));
    return Utf8(place->Written(Prop::kText));
}

void AddText(const Assembly& car, std::initializer_list<std::string_view> path, const wchar_t* text) {
    Selector selector = car.Path(path);
    selector.SetProperty(Prop::kText, Var(text));
    car.At("wheel")->AddSelector(selector);
}

TEST(CreateNodesFromSelector, AppliesASelectorOfTheInstance) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    AddText(car, {"car", "wheel"}, L"mine");
    EXPECT_EQ(TextOfWheel(car, car.Path({"car"})), "mine");
}

TEST(CreateNodesFromSelector, LetsTheMostSpecificSelectorWin) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    AddText(car, {"car", "wheel"}, L"whole path");
    Selector alone;
    alone.AppendPathElement(car.At("wheel"));
    alone.SetProperty(Prop::kText, Var(L"end of path"));
    car.At("wheel")->AddSelector(alone);
    EXPECT_EQ(TextOfWheel(car, car.Path({"car"})), "whole path");
}

TEST(CreateNodesFromSelector, CountsTheWholePathOfTheStart) {
    const auto car = AssemblyBuilder("car").Child("axle").Under("axle", "wheel").Build();
    AddText(car, {"car", "axle", "wheel"}, L"mine");
    EXPECT_EQ(TextOfWheel(car, car.Path({"car", "axle"})), "mine");
}

TEST(CreateNodesFromSelector, AppliesASelectorToItsOwnOccurrenceOnly) {
    const auto car = AssemblyBuilder("car").Child("axle", 2).Under("axle", "wheel").Build();
    AddText(car, {"car", "axle#1", "wheel"}, L"rear");
    const auto top = Make<FakeTraverser>();
    Factory()->CreateNodesFromSelector(car.Path({"car"}), top.Get());
    const auto& axles = top->children.at(0)->children;
    EXPECT_FALSE(axles.at(0)->children.at(0)->Wrote(Prop::kText));
    EXPECT_EQ(Utf8(axles.at(1)->children.at(0)->Written(Prop::kText)), "rear");
}

TEST(CreateNodesFromSelector, PutsMetadataOnNodesFromSelectorsAlone) {
    const auto car = AssemblyBuilder("car").Build();
    car.RootInstance()->SetProperty(kMetadata, MapOf(L"Mass", Var(7)));
    const auto plain = Make<FakeTraverser>();
    Factory()->CreateNodesFromSelector(car.Path({"car"}), plain.Get());
    EXPECT_FALSE(plain->children.at(0)->Wrote(kMetadata));

    Selector selector = car.Path({"car"});
    selector.SetProperty(kMetadata, MapOf(L"Colour", Var(L"red")));
    car.RootInstance()->AddSelector(selector);
    const auto special = Make<FakeTraverser>();
    Factory()->CreateNodesFromSelector(car.Path({"car"}), special.Get());
    EXPECT_EQ(special->children.at(0)->Written(kMetadata), MapOf(L"Colour", Var(L"red")));
}

/// car(link(bolt)), where "link" stands for a file.
struct LinkedCar {
    LinkedCar() {
        link->SetTarget(Var(L"wheel.stp"));
        link->SetProperty(kName, Var(L"link"));
        use = link->CreateInstance();
        link->AddChild(bolt.RootInstance());
        car.Root()->AddChild(use.Get());
    }
    Assembly car = AssemblyBuilder("car").Build();
    Assembly bolt = AssemblyBuilder("bolt").Build();
    Counted<ForwardingReference> link = Make<ForwardingReference>();
    Counted<Instance> use;
};

TEST(CreateNodesFromSelector, ReloadsADefinitionThatLiesElsewhereOnceAndGoesOn) {
    const LinkedCar linked;
    EXPECT_EQ(Generate(linked.car.Path({"car"})), "car(link(bolt))");
    EXPECT_EQ(linked.link->reloads, 1);
}

TEST(CreateNodesFromSelector, GivesTheStartItselfWhereTheDefinitionLiesElsewhere) {
    const LinkedCar linked;
    Selector selector;
    selector.AppendPathElement(linked.use.Get());
    const auto top = Make<FakeTraverser>();
    EXPECT_EQ(Factory()->CreateNodesFromSelector(selector, top.Get()).Get(), top.Get());
    EXPECT_EQ(ShownBelow(*top), "link(bolt)");
}

TEST(CreateNodesFromSelector, StartsANewPathWhereTheDefinitionLiesElsewhere) {
    const LinkedCar linked;
    Selector whole = linked.car.Path({"car"}), shortened;
    whole.AppendPathElement(linked.use.Get());
    whole.AppendPathElement(linked.bolt.RootInstance());
    whole.SetProperty(Prop::kText, Var(L"whole path"));
    shortened.AppendPathElement(linked.use.Get());
    shortened.AppendPathElement(linked.bolt.RootInstance());
    shortened.SetProperty(Prop::kText, Var(L"from the link on"));
    linked.bolt.RootInstance()->AddSelector(shortened);
    linked.bolt.RootInstance()->AddSelector(whole);
    const auto top = Make<FakeTraverser>();

    Factory()->CreateNodesFromSelector(linked.car.Path({"car"}), top.Get());

    const auto& bolt = top->children.at(0)->children.at(0)->children.at(0);
    EXPECT_EQ(Utf8(bolt->Written(Prop::kText)), "from the link on");
}

TEST(CreateNodesFromSelector, GoesBackToTheWholePathBesideALink) {
    const LinkedCar linked;
    const auto wheel = linked.car.Table()->GetOrCreateReference(String())->CreateInstanceWithId(String());
    linked.car.Root()->AddChild(wheel.Get());
    Selector whole = linked.car.Path({"car"});
    whole.AppendPathElement(wheel.Get());
    whole.SetProperty(Prop::kText, Var(L"whole path"));
    wheel->AddSelector(whole);
    const auto top = Make<FakeTraverser>();

    Factory()->CreateNodesFromSelector(linked.car.Path({"car"}), top.Get());

    EXPECT_EQ(Utf8(top->children.at(0)->children.at(1)->Written(Prop::kText)), "whole path");
}

TEST(CreateNodesFromSelector, ReloadsATableOfNamesToo) {
    const LinkedCar linked;
    linked.link->SetTarget(MapOf(L"key", Var(L"e1")));
    Generate(linked.car.Path({"car"}));
    EXPECT_EQ(linked.link->reloads, 1);
}

TEST(CreateNodesFromSelector, DoesNotLoadAFileWithinItself) {
    const LinkedCar linked;
    const auto same = Make<ForwardingReference>();
    same->SetTarget(Var(L"wheel.stp"));
    linked.link->AddChild(same->CreateInstance().Get());
    Generate(linked.car.Path({"car"}));
    EXPECT_EQ(same->reloads, 0);
}

TEST(CreateNodesFromSelector, GivesADefinitionWithinItselfANodeWithoutChildren) {
    const auto box = AssemblyBuilder("box").Child("lid").Child("box").Child("base").Build();
    EXPECT_EQ(Generate(box.Path({"box"})), "box(lid,box,base)");
}

TEST(CreateNodesFromSelector, EndsInARing) {
    const auto ring = AssemblyBuilder("a").Child("b").Under("b", "c").Under("c", "a").Build();
    EXPECT_EQ(Generate(ring.Path({"a"})), "a(b(c(a)))");
}

TEST(CreateNodesFromSelector, GoesDownTenThousandLevels) {
    const Assembly chain(DeepShape(10'000));
    const auto top = Make<FakeTraverser>();
    Factory()->CreateNodesFromSelector(chain.Path({chain.Shape().definitions[0].name}), top.Get());
    int levels = 0;
    for (const FakeTraverser* place = top.Get(); !place->children.empty(); place = place->children[0].Get())
        ++levels;
    EXPECT_EQ(levels, 10'000);
}

TEST(NodeGeneration, StopsAtTheLimitAndReportsIt) {
    const auto car = AssemblyBuilder("car").Child("wheel", 5).Build();
    const auto context = MakeContext();
    car.Table()->SetSceneAndContext(nullptr, context.Get());
    const auto top = Make<FakeTraverser>();

    NodeGeneration(3).Run(car.Path({"car"}), top.Get());

    EXPECT_EQ(ShownBelow(*top), "car(wheel,wheel)");
    EXPECT_EQ(context->GetFailure(), LoadFailure::kLimit);
    EXPECT_THAT(context->Texts(),
                testing::ElementsAre("The hierarchy has more than 3 occurrences. The rest is left out."));
}

TEST(NodeGeneration, ReportsNothingExactlyAtTheLimit) {
    const auto car = AssemblyBuilder("car").Child("wheel", 2).Build();
    const auto context = MakeContext();
    car.Table()->SetSceneAndContext(nullptr, context.Get());
    NodeGeneration(3).Run(car.Path({"car"}), Make<FakeTraverser>().Get());
    EXPECT_EQ(context->GetFailure(), LoadFailure::kNone);
}

TEST(NodeGeneration, StopsAtTheLimitWithoutAContext) {
    const auto car = AssemblyBuilder("car").Child("wheel", 5).WithoutTable().Build();
    const auto top = Make<FakeTraverser>();
    NodeGeneration(2).Run(car.Path({"car"}), top.Get());
    EXPECT_EQ(ShownBelow(*top), "car(wheel)");
}

TEST(NodeGeneration, StopsWhenTheContextIsCancelled) {
    const auto car = AssemblyBuilder("car").Child("wheel", 5).Build();
    const auto context = MakeContext();
    car.Table()->SetSceneAndContext(nullptr, context.Get());
    const auto top = Make<FakeTraverser>();
    context->Cancel();
    NodeGeneration().Run(car.Path({"car"}), top.Get());
    EXPECT_EQ(ShownBelow(*top), "car");
    EXPECT_EQ(context->GetFailure(), LoadFailure::kNone);
}

}  // namespace
}  // namespace qn::test
