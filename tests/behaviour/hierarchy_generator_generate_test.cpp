#include "construction/hierarchy_generator.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/recording_api.h"
#include "tests/support/assembly.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// A node with a child, a generator, and two assemblies to make nodes of.
struct Stage {
    ResultEnum Generate(Context* with) const { return generator->Generate(node, with); }
    ResultEnum Generate() const { return Generate(context.Get()); }

    Assembly car = AssemblyBuilder("car").Child("wheel", 2).Build();
    Assembly boat = AssemblyBuilder("boat").Child("sail").Build();
    Counted<HierarchyGenerator> generator = CreateAs<HierarchyGenerator>(ClassKey::kHierarchyGenerator);
    Counted<RecordingContext> context = MakeContext();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, L"node");
    k3::Node* former = AddNode(*node, L"former");
};

/// Says that it is a node.
class Pretender final : public Extension {
public:
    bool IsTypeOf(const char* name) const override { return EqualKeys(name, "k3_node"); }
};

TEST(HierarchyGenerator, MakesTheNodesOfItsSelectorInsteadOfTheFormerOnes) {
    const Stage s;
    s.generator->SetSelector(s.car.Path({"car"}));
    EXPECT_EQ(s.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(Outline(*s.node), "car(wheel wheel)");
    EXPECT_TRUE(s.context->Texts().empty());
}

TEST(HierarchyGenerator, RemovesFormerNodesFromTheScene) {
    const Stage s;
    const Counted<k3::Node> former(s.former);
    AddNode(*s.node, L"another");
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    EXPECT_FALSE(former->GetParent());
    EXPECT_EQ(s.node->GetChildCount(), 2);
}

TEST(HierarchyGenerator, KnowsItsNodeAndItsDefinition) {
    const Stage s;
    s.generator->SetSelector(s.car.Path({"car"}));
    EXPECT_EQ(s.generator->GetRootReference(), s.car.Root());
    EXPECT_FALSE(s.generator->GetTargetNode());
    s.Generate();
    EXPECT_EQ(s.generator->GetTargetNode(), s.node);
    EXPECT_EQ(ShownBy(*s.node), s.car.RootInstance());
}

TEST(HierarchyGenerator, DoesNotKeepItsNodeAlive) {
    const Stage s;
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    s.node->Remove(0);
    EXPECT_FALSE(s.generator->GetTargetNode());
}

TEST(HierarchyGenerator, EntersTheNodesInTheTableOfTheSelector) {
    const Stage s;
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    EXPECT_EQ(s.car.Table()->GetInstanceOfNode(s.node).Get(), s.car.RootInstance());
    EXPECT_EQ(s.car.Table()->GetInstanceOfNode(s.node->GetLastChild()).Get(), s.car.At("wheel", 1));
}

TEST(HierarchyGenerator, BindsTheTableToSceneAndContext) {
    const Stage s;
    s.generator->SetSelector(s.car.Path({"car"}));
    EXPECT_FALSE(s.car.Table()->GetContext());
    s.Generate();
    EXPECT_EQ(s.car.Table()->GetContext(), s.context.Get());
    k3::Node* late = AddNode(*s.scene, L"late");
    s.car.Table()->Rebuild();
    EXPECT_TRUE(s.car.Table()->GetInstanceOfNode(late)) << "it knows the scene";
}

TEST(HierarchyGenerator, MakesNodesWithoutTableToo) {
    const Stage s;
    const Assembly bare = AssemblyBuilder("bare").Child("part").WithoutTable().Build();
    s.generator->SetSelector(bare.Path({"bare"}));
    EXPECT_EQ(s.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(Outline(*s.node), "bare(part)");
}

TEST(HierarchyGenerator, StartsInTheMiddleOfAHierarchy) {
    const Stage s;
    s.generator->SetSelector(s.boat.Path({"boat", "sail"}));
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "sail");
    EXPECT_EQ(ShownBy(*s.node), s.boat.At("sail"));
    EXPECT_EQ(s.generator->GetRootReference(), s.boat.Ref("sail"));
}

TEST(HierarchyGenerator, RefusesWhatIsNoNode) {
    const Stage s;
    const auto no = NewReference();
    for (const bool stale : {false, true}) {
        if (stale) s.generator->SetSelector(s.car.Path({"car"}));
        EXPECT_EQ(s.generator->Generate(nullptr, s.context.Get()), ResultEnum::kWrongClass) << stale;
        EXPECT_EQ(s.generator->Generate(no.Get(), s.context.Get()), ResultEnum::kWrongClass) << stale;
        EXPECT_FALSE(s.generator->GetTargetNode());
    }
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "car(wheel wheel)") << "it is still stale";
}

TEST(HierarchyGenerator, DoesNothingWithWhatPretendsToBeANode) {
    const Stage s;
    const auto pretender = Make<Pretender>();
    EXPECT_EQ(s.generator->Generate(pretender.Get(), s.context.Get()), ResultEnum::kSuccess) << "it is clean";
    s.generator->SetSelector(s.car.Path({"car"}));
    EXPECT_EQ(s.generator->Generate(pretender.Get(), s.context.Get()), ResultEnum::kNothing);
    EXPECT_FALSE(s.generator->GetTargetNode());
    EXPECT_FALSE(s.car.Table()->GetContext());
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "car(wheel wheel)") << "it is still stale";
}

TEST(HierarchyGenerator, TouchesNothingWhileItIsFresh) {
    const Stage s;
    EXPECT_EQ(s.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(Outline(*s.node), "node(former)");
    EXPECT_FALSE(s.generator->GetTargetNode());
    EXPECT_FALSE(ShownBy(*s.node));
}

TEST(HierarchyGenerator, TouchesNothingASecondTime) {
    const Stage s;
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    s.node->GetFirstChild()->Remove(0);
    s.node->GetFirstChild()->SetName(L"changed");
    k3::Node* other = AddNode(*s.scene, L"other");
    EXPECT_EQ(s.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(Outline(*s.node), "car(changed)");
    EXPECT_EQ(s.generator->Generate(other, s.context.Get()), ResultEnum::kSuccess);
    EXPECT_EQ(Outline(*other), "other");
    EXPECT_EQ(s.generator->GetTargetNode(), s.node);
}

TEST(HierarchyGenerator, MakesEverythingAnewAfterEachSelector) {
    const Stage s;
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    s.generator->SetSelector(s.boat.Path({"boat"}));
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "boat(sail)");
    s.generator->SetSelector(s.boat.Path({"boat"}));
    s.node->GetFirstChild()->Remove(0);
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "boat(sail)");
}

TEST(HierarchyGenerator, TakesNoSelectorWithoutDefinition) {
    const Stage s;
    s.generator->SetSelector(Selector());
    s.generator->SetSelector(PathOf({NewInstance().Get()}));
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "node(former)") << "it is still clean";

    s.generator->SetSelector(s.car.Path({"car"}));
    s.generator->SetSelector(Selector());
    EXPECT_EQ(s.generator->GetRootReference(), s.car.Root());
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "car(wheel wheel)") << "it is still stale";
}

TEST(HierarchyGenerator, KeepsACopyOfTheSelector) {
    const Stage s;
    Selector selector = s.car.Path({"car"});
    s.generator->SetSelector(selector);
    selector.AppendPathElement(s.car.At("wheel"));
    EXPECT_EQ(s.generator->GetRootReference(), s.car.Root());
}

TEST(HierarchyGenerator, EmptiesTheNodeForABrokenSelector) {
    const Stage s;
    s.generator->SetSelector(PathOf({nullptr, s.car.RootInstance()}));
    EXPECT_EQ(s.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(Outline(*s.node), "node");
    EXPECT_EQ(ShownBy(*s.node), s.car.RootInstance());
    AddNode(*s.node, L"kept");
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "node(kept)") << "it is clean now";
}

TEST(HierarchyGenerator, MakesAContextWhereThereIsNone) {
    const Stage s;
    RecordingApi recorded;
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate(nullptr);
    EXPECT_EQ(recorded.contextRequests, (std::vector<RecordingApi::ContextRequest>{{0, 0}}));
    ASSERT_TRUE(s.car.Table()->GetContext());
    EXPECT_EQ(s.car.Table()->GetContext(), recorded.contexts[0].Get());

    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    EXPECT_EQ(s.car.Table()->GetContext(), recorded.contexts[0].Get()) << "it is kept for later";
}

TEST(HierarchyGenerator, MakesNoContextWhereThereIsOne) {
    const Stage s;
    RecordingApi recorded;
    s.Generate(nullptr);
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    EXPECT_TRUE(recorded.contextRequests.empty());
}

TEST(HierarchyGenerator, KeepsItsFirstContext) {
    const Stage s;
    auto first = MakeContext();
    const Weak<Context> watch(first.Get());
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate(first.Get());
    first.Reset();
    ASSERT_TRUE(watch) << "it is counted";
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    EXPECT_EQ(s.car.Table()->GetContext(), watch.Get());
}

TEST(HierarchyGenerator, TakesTheContextOfTheTableFirst) {
    const Stage s;
    const auto own = MakeContext();
    s.car.Table()->SetSceneAndContext(nullptr, own.Get());
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    EXPECT_EQ(s.car.Table()->GetContext(), own.Get());
}

TEST(HierarchyGenerator, ForgetsItsContextForATableWithoutOne) {
    const Stage s;
    const auto second = MakeContext();
    s.generator->SetSelector(s.car.Path({"car"}));
    s.Generate();
    s.generator->SetSelector(s.boat.Path({"boat"}));
    s.Generate(second.Get());
    EXPECT_EQ(s.boat.Table()->GetContext(), second.Get());
    EXPECT_EQ(s.car.Table()->GetContext(), s.context.Get());
}

TEST(HierarchyGenerator, KeepsTheTableAlive) {
    const Stage s;
    auto table = NewTable();
    const auto use = EnterInstance(*table, L"use");
    const Weak<LookupTable> watch(table.Get());
    s.generator->SetSelector(PathOf({use.Get()}));
    table.Reset();
    EXPECT_TRUE(watch);
    s.generator->SetSelector(s.car.Path({"car"}));
    EXPECT_FALSE(watch);
}

}  // namespace
}  // namespace qn::test
