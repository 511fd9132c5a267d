#include "tool/definition_check.h"

#include "frame/entry.h"
#include "frame/host/api.h"
#include "frame/host/importer.h"
#include "frame/host/scene.h"
#include "graph/graph.h"
#include "tests/support/assembly.h"
#include "tests/support/generated_scene.h"
#include "tests/support/static_module.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using qn::Var;
using qn::graph::Instance;
using qn::graph::Selector;
using qn::test::Assembly;
using qn::test::AssemblyBuilder;
namespace Prop = qn::graph::Prop;
using Lines = std::vector<std::string>;

class DefinitionCheck : public testing::Test {
protected:
    static Lines Check(qn::k3::Scene& scene) {
        Lines lines;
        for (const tool::DefinitionFault& fault : tool::CheckDefinitions(scene))
            lines.push_back(fault.path + " " + tool::TextsOf(fault.kind).code);
        return lines;
    }
    /// A stored name for one occurrence, kept at its last use.
    static void Rename(std::initializer_list<Instance*> path, const wchar_t* name) {
        Selector selector;
        for (Instance* const use : path)
            selector.AppendPathElement(use);
        selector.SetProperty(Prop::kName, Var(name));
        (*(path.end() - 1))->AddLocalSelector(selector);
    }
    static AssemblyBuilder Car() {
        return AssemblyBuilder("car").Child("chassis").Child("wheel", 2).Under("wheel", "tyre");
    }

    qn::test::EntryModule module_{&K3DLLFunc};
};

TEST_F(DefinitionCheck, FindsNothingInASoundAssembly) {
    const Assembly car = Car().Build();
    EXPECT_EQ(Check(*qn::test::GeneratedScene(car)), Lines{});
}

TEST_F(DefinitionCheck, FindsNothingInASceneWithoutHierarchy) {
    const auto scene = qn::Make<qn::k3::Scene>();
    scene->CreateEmptyNode(0, 0, 0)->CreateChildNode(0, 0, 0);
    EXPECT_EQ(Check(*scene), Lines{});
}

TEST_F(DefinitionCheck, AcceptsOverridesOfOccurrencesThatAreThere) {
    const Assembly car = Car().Build();
    Rename({car.At("wheel", 1), car.At("tyre")}, L"worn");
    Rename({car.At("tyre")}, L"any tyre");
    Rename({car.RootInstance(), car.At("wheel", 0), car.At("tyre")}, L"new");
    EXPECT_EQ(Check(*qn::test::GeneratedScene(car)), Lines{});
}

TEST_F(DefinitionCheck, FindsOverridesWithAStepThatIsNone) {
    const Assembly car = Car().Build();
    Rename({car.At("chassis"), car.At("tyre")}, L"no tyre there");
    EXPECT_EQ(Check(*qn::test::GeneratedScene(car)), Lines{"car/wheel[1]/tyre override-without-occurrence"});
}

TEST_F(DefinitionCheck, FindsOverridesThatStandAtAnotherUse) {
    const Assembly car = Car().Build();
    Selector selector;
    selector.AppendPathElement(car.At("wheel", 0));
    selector.SetProperty(Prop::kName, Var(L"first"));
    car.At("wheel", 1)->AddLocalSelector(selector);
    EXPECT_EQ(Check(*qn::test::GeneratedScene(car)), Lines{"car/wheel[2] override-without-occurrence"});
}

TEST_F(DefinitionCheck, FindsOverridesBelowAUseThatIsGone) {
    const Assembly car = Car().Build();
    Rename({car.At("wheel", 1), car.At("tyre")}, L"worn");
    car.Root()->RemoveChild(car.At("wheel", 1));
    EXPECT_EQ(Check(*qn::test::GeneratedScene(car)), Lines{"car/wheel/tyre override-without-occurrence"});
}

TEST_F(DefinitionCheck, RepairTakesAnOverrideOutOfTheMiddleAndLeavesNoGap) {
    const Assembly car = Car().Build();
    Instance* const tyre = car.At("tyre");
    Rename({car.At("wheel", 0), tyre}, L"first");
    Rename({car.At("chassis"), tyre}, L"nowhere");
    Rename({car.At("wheel", 1), tyre}, L"second");
    const auto scene = qn::test::GeneratedScene(car);
    tool::RepairDefinitions(tool::CheckDefinitions(*scene));
    EXPECT_EQ(Check(*scene), Lines{});
    ASSERT_EQ(tyre->GetSelectorCount(), 2);
    EXPECT_EQ(tyre->GetSelector(0).GetProperty(Prop::kName, 0), Var(L"first"));
    EXPECT_EQ(tyre->GetSelector(1).GetProperty(Prop::kName, 0), Var(L"second"));
    Rename({car.At("wheel", 1), tyre}, L"third");
    EXPECT_EQ(tyre->GetSelectorCount(), 3);
}

TEST_F(DefinitionCheck, FindsEveryCircleAndEveryEmptyUse) {
    const Assembly car = Car().Build();
    car.Ref("tyre")->AddChild(car.Ref("wheel")->CreateInstance().Get());
    car.Ref("chassis")->AddChild(car.Ref("chassis")->CreateInstance().Get());
    car.Root()->AddChild(qn::CreateAs<Instance>(qn::graph::ClassKey::kInstance).Get());
    const auto scene = qn::test::GeneratedScene(car);
    EXPECT_EQ(Check(*scene),
              (Lines{"car/chassis/chassis circular-definition", "car/wheel[1]/tyre/wheel circular-definition",
                     "car/(no name) use-without-definition"}));
    tool::RepairDefinitions(tool::CheckDefinitions(*scene));
    EXPECT_EQ(Check(*scene), Lines{});
    EXPECT_EQ(car.Root()->GetChildCount(), 3);
}

TEST_F(DefinitionCheck, RepairRemovesSeveralUsesOfOneDefinition) {
    const Assembly car = AssemblyBuilder("car").Build();
    for (const wchar_t* name : {L"a", L"b", L"c"}) {
        const auto use = qn::CreateAs<Instance>(qn::graph::ClassKey::kInstance);
        use->SetProperty(Prop::kName, Var(name));
        car.Root()->AddChild(use.Get());
        car.Root()->AddChild(car.Table()->GetOrCreateReference(qn::String())->CreateInstance().Get());
    }
    const auto scene = qn::test::GeneratedScene(car);
    EXPECT_EQ(Check(*scene).size(), 3u);
    tool::RepairDefinitions(tool::CheckDefinitions(*scene));
    EXPECT_EQ(Check(*scene), Lines{});
    EXPECT_EQ(car.Root()->GetChildCount(), 3);
}

TEST_F(DefinitionCheck, LeavesTheContainerOfAFileOutOfPaths) {
    const Assembly file = AssemblyBuilder("file").Child("car").Under("car", "wheel").Build();
    Var metadata;
    metadata.At(qn::kFileGroup).At(qn::kFileContainer) = Var(true);
    file.Root()->SetProperty(Prop::kMetadata, metadata);
    file.Ref("wheel")->AddChild(file.Ref("wheel")->CreateInstance().Get());
    const auto scene = qn::test::GeneratedScene(file);
    EXPECT_EQ(Check(*scene), Lines{"car/wheel/wheel circular-definition"});
    tool::RepairDefinitions(tool::CheckDefinitions(*scene));
}

TEST_F(DefinitionCheck, LooksAtEachSharedDefinitionOnce) {
    const Assembly shared(qn::test::SharedShape(100'000'000));
    EXPECT_EQ(Check(*qn::test::GeneratedScene(shared)), Lines{});
}

}  // namespace
}  // namespace assembly::tests
