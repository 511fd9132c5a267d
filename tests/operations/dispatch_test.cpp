#include "frame/host/change_management.h"
#include "tests/operations/operations_support.h"

namespace qn::test {
namespace {

class Dispatch : public OperationTest {};

const std::vector<int> kWithScene = {1, 2, 3, 4, 5, 7, 8, 10, 11, 12, 13, 14, 15, 16, 17, 18};

/// Arguments with which every method that takes a scene succeeds.
const std::vector<std::pair<int, Var>> kGood = {
    {1, Var(true)}, {2, Var(true)}, {3, Var(true)}, {4, Var("x")}};

TEST_F(Dispatch, AnswersZeroWithoutArguments) {
    for (int method = -1; method <= 19; ++method)
        EXPECT_EQ(operation->Invoke(method, nullptr, nullptr), 0) << method;
}

TEST_F(Dispatch, AnswersZeroForNumbersOutsideAndTouchesNothing) {
    for (const int method : {-1, 0, 19, 1000}) {
        EXPECT_EQ(Run(method, kGood), 0) << method;
        EXPECT_TRUE(ThePartners().calls.empty());
    }
}

TEST_F(Dispatch, RunsEveryMethodThatTakesAScene) {
    for (const int method : kWithScene)
        EXPECT_EQ(Run(method, kGood, context.Get()), 1) << method;
}

TEST_F(Dispatch, RunsWithoutAContext) {
    for (const int method : kWithScene)
        EXPECT_EQ(Run(method, kGood), 1) << method;
}

TEST_F(Dispatch, AnswersZeroWithoutAScene) {
    const Counted<Params> noScene = Params::Create();
    for (const int method : kWithScene) {
        EXPECT_EQ(RunWithoutScene(method, kGood), 0) << method;
        EXPECT_EQ(RunWithoutScene(method, {{0, Var(noScene)}}), 0) << method;
        EXPECT_EQ(RunWithoutScene(method, {{0, Var(L"scene")}}), 0) << method;
    }
    EXPECT_EQ(ThePartners().made, 0);
    EXPECT_TRUE(ThePartners().calls.empty());
}

TEST_F(Dispatch, AnswersZeroForANodeInPlaceOfTheScene) {
    k3::Node* const node = AddNode("a");
    for (const int method : kWithScene)
        EXPECT_EQ(RunWithoutScene(method, {{0, Var(node, 1)}}), 0) << method;
}

TEST_F(Dispatch, AnswersZeroForASceneThatIsGone) {
    auto lost = Make<k3::Scene>();
    const Var weak(lost.Get(), 0);
    lost.Reset();
    for (const int method : kWithScene)
        EXPECT_EQ(RunWithoutScene(method, {{0, weak}}), 0) << method;
}

TEST_F(Dispatch, TakesAWatchedScene) {
    EXPECT_EQ(RunWithoutScene(13, {{0, Var(scene.Get(), 0)}}), 1);
}

TEST_F(Dispatch, StopsAtAShutGateButForTheMethodThatHoldsTheScene) {
    const ShutGate gate;
    for (const int method : kWithScene)
        EXPECT_EQ(Run(method, kGood), method == 8 ? 1 : 0) << method;
    EXPECT_TRUE(ThePartners().calls.empty());
}

TEST_F(Dispatch, LetsMethodsWithoutSceneThroughAShutGate) {
    const ShutGate gate;
    EXPECT_EQ(RunWithoutScene(6, {{0, Var("a")}}), 1);
    EXPECT_EQ(RunWithoutScene(9, {{3, Var(scene)}}), 1);
}

int g_gateAsked = 0;
Context* g_gateContext = nullptr;

TEST_F(Dispatch, AsksTheGateWithTheContextAfterTheSceneCheck) {
    g_gateAsked = 0;
    ChangeManagementSupportBase::SetAvailabilityCheck([](Context* asked) {
        g_gateContext = asked;
        return ++g_gateAsked > 0;
    });
    RunWithoutScene(1, {}, context.Get());
    EXPECT_EQ(g_gateAsked, 0);
    Run(1, {}, context.Get());
    EXPECT_EQ(g_gateAsked, 1);
    EXPECT_EQ(g_gateContext, context.Get());
    ChangeManagementSupportBase::SetAvailabilityCheck(nullptr);
}

TEST_F(Dispatch, AppliesNoDefaults) {
    // The description says true for all three.
    EXPECT_EQ(Run(10), 1);
    EXPECT_TRUE(scene->GetHostCalls().empty());
}

TEST_F(Dispatch, ReadsWhateverConvertsToTrueAsTrue) {
    scene->SetParamVar(Param::kBsId, Var("s"));
    Run(1, {{3, Var("yes")}});
    EXPECT_TRUE(scene->GetParamVar(Param::kBsId).IsEmpty());
}

TEST_F(Dispatch, ReadsTheTextFalseAsFalse) {
    scene->SetParamVar(Param::kBsId, Var("s"));
    Run(1, {{3, Var("False")}});
    EXPECT_TRUE(scene->GetParamVar(Param::kBsId).IsSet());
}

TEST_F(Dispatch, HoldsTheSceneAndLetsItGoAgain) {
    const int counts = scene->GetRefCount();
    const unsigned events = scene->GetChangeEventCount();
    EXPECT_EQ(Run(8), 1);
    operation->HoldScene(nullptr);
    const auto loose = Make<k3::Node>();
    operation->HoldScene(loose.Get());
    EXPECT_EQ(scene->GetRefCount(), counts);
    EXPECT_EQ(scene->GetChangeEventCount(), events);
}

TEST_F(Dispatch, LeavesObjectsThatAreNoNodesAlone) {
    const auto reference = MakeReference("e");
    for (Interface* const object :
         {static_cast<Interface*>(reference.Get()), static_cast<Interface*>(nullptr)}) {
        operation->RemoveIds(object, 7);
        operation->RemoveHierarchyCache(object, true, true, true, true);
        operation->UpdateBsIds(object, L"x", 7, true);
        operation->RemoveNodeMetadata(object, 7, 0, false);
        operation->GenerateBsIds(object, 7, L"", L"");
    }
    operation->ReplaceBsIdsWithBasedOn(nullptr);
    EXPECT_EQ(Utf8(reference->GetProperty(kBsId, 0)), "e");
}

TEST_F(Dispatch, IsOneClassForItsThreeKeys) {
    EXPECT_STREQ(operation->GetInterfaceName(), "qn.graph.hierarchyoperation");
    EXPECT_TRUE(operation->IsTypeOf("QN.graph.HierarchyOperation"));
    EXPECT_TRUE(operation->IsTypeOf("k3_extension"));
    EXPECT_FALSE(operation->IsTypeOf("qn.graph.hierarchyoperation.invoke"));
    EXPECT_NE(Cast<graph::HierarchyOperation>(static_cast<Interface*>(operation.Get())), nullptr);
}

TEST_F(Dispatch, CopiesFromItsOwnKindOnly) {
    const auto other = Make<graph::HierarchyOperationImpl>();
    EXPECT_EQ(operation->CopyFrom(other.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(operation->CopyFrom(scene.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(operation->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

}  // namespace
}  // namespace qn::test
