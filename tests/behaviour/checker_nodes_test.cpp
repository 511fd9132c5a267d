// When the nodes of a scene agree with its definitions.

#include "engine/stream/stored_generator.h"
#include "frame/host/generator.h"
#include "graph/graph.h"
#include "tests/behaviour/checker_scene.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/recording_api.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qn::test {
namespace {

using namespace graph;

void AttachGenerator(k3::Node& node, const char* key) {
    k3::Generator::Attach(&node, Make<StoredGenerator>(key).Get());
}

void SetInstance(k3::Node* node, Interface* instance) {
    node->SetParamVar(Param::kInstance, Var(instance));
}

TEST(CheckerNodes, NeedTheirInstancesInTheOrderOfTheDefinition) {
    const CheckedCar s;
    s.wheel->AttachTo(s.car);
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), Lines{kNoLamp});
}

TEST(CheckerNodes, MayNotStandBelowALeaf) {
    const CheckedCar s;
    AddNode(*s.lamp, L"bulb");
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), Lines{CountDiffers("bulb")});
}

TEST(CheckerNodes, AreCheckedChildByChildBeforeTheyAreCounted) {
    const CheckedCar s;
    AddNode(*s.car, L"valve");
    SetInstance(s.lamp, nullptr);
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), Lines{kNoLamp});
}

TEST(CheckerMarkup, TakesItsPlaceAmongTheChildren) {
    const CheckedCar s;
    SetInstance(s.wheel, nullptr);
    AttachGenerator(*s.wheel, "k3_detail_markup");
    AddNode(*s.car, L"valve");
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), (Lines{CountDiffers("valve")}));
}

TEST(CheckerMarkup, IsTooMuchLikeAnyNode) {
    const CheckedCar s;
    AttachGenerator(*AddNode(*s.car, L"note"), "k3_detail_markup");
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), Lines{CountDiffers("note")});
}

TEST(CheckerMarkup, IsNoOtherGenerator) {
    const CheckedCar s;
    SetInstance(s.lamp, nullptr);
    AttachGenerator(*s.lamp, "test.other.generator");
    EXPECT_FALSE(s.Sound());
}

Counted<k3::Object3D> NewObject() {
    return Make<k3::Object3D>();
}

Counted<k3::MaterialSubstitution> Before(k3::Object3D* object) {
    auto substitution = Make<k3::MaterialSubstitution>();
    substitution->SetSubstituted(object);
    return substitution;
}

/// Whether the lamp's node may show `shown` where its definition stands for `target`.
bool Agree(k3::Object3D* shown, const Var& target) {
    const CheckedCar s;
    s.lamp->SetObject(shown);
    s.lampUse->GetReference()->SetTarget(target);
    const bool sound = s.Sound();
    EXPECT_EQ(s.Log(), sound ? Lines{} : Lines{ObjectsDiffer("lamp", "lamp", "lamp")});
    return sound;
}

TEST(CheckerObjects, AgreeBehindASubstitutionOnEitherSide) {
    const auto object = NewObject();
    EXPECT_TRUE(Agree(Before(object.Get()).Get(), Var(object)));
    EXPECT_TRUE(Agree(object.Get(), Var(Before(object.Get()))));
    EXPECT_TRUE(Agree(Before(object.Get()).Get(), Var(Before(object.Get()))));
    EXPECT_FALSE(Agree(Before(object.Get()).Get(), Var(NewObject())));
    EXPECT_FALSE(Agree(Before(object.Get()).Get(), Var()));
}

TEST(CheckerObjects, AreMissingWhereTheTargetIsNoObject) {
    for (const Var& target : {Var(L"wheel.qn"), Var(7), MapOf({}), ArrayOf({}), Var(Make<k3::Generic>())}) {
        EXPECT_TRUE(Agree(nullptr, target));
        EXPECT_FALSE(Agree(NewObject().Get(), target));
    }
}

TEST(CheckerObjects, OfTheTopLevelNodeAreCompared) {
    const CheckedCar s;
    s.car->SetObject(NewObject().Get());
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), Lines{ObjectsDiffer("car", "car", "car")});
}

TEST(CheckerObjects, OfANodeAreComparedBeforeItsChildren) {
    const CheckedCar s;
    s.car->SetObject(NewObject().Get());
    s.wheel->DeleteParam(Param::kInstance);
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), Lines{ObjectsDiffer("car", "car", "car")});
}

TEST(CheckerObjects, AreComparedAfterTheInstance) {
    const CheckedCar s;
    s.lamp->SetObject(NewObject().Get());
    s.lamp->DeleteParam(Param::kInstance);
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), Lines{kNoLamp});
}

TEST(CheckerObjects, AreToldWithoutNamesThatAreMissing) {
    const CheckedCar s;
    const auto reference = NewReference();
    const auto use = reference->CreateInstance();
    AddNode(*s.scene, L"node", use.Get())->SetObject(NewObject().Get());
    s.Sound();
    EXPECT_EQ(s.Log(), Lines{ObjectsDiffer("node", "", "")});
}

/// The car's lamp contains the car; taken apart at the end, for a ring owns itself.
struct Circle : CheckedCar {
    Circle() {
        inner = use->GetReference()->CreateInstance();
        lampUse->GetReference()->AddChild(inner.Get());
    }
    ~Circle() { lampUse->GetReference()->RemoveChild(inner.Get()); }
    Counted<Instance> inner;
};

constexpr const char* kStart =
    "Invalid instance/reference hierarchy - found circular reference to entity car";

int FactoriesIn(const RecordingApi& api) {
    return static_cast<int>(std::count(api.created.begin(), api.created.end(), ClassKey::kHierarchyFactory));
}

TEST(CheckerCircle, IsNotLookedForBelowANodeWithoutInstance) {
    const Circle s;
    k3::Node* folder = AddNode(*s.scene, L"folder");
    s.car->AttachTo(folder);
    const RecordingApi api;
    EXPECT_TRUE(s.Sound());
    EXPECT_EQ(FactoriesIn(api), 0);
}

TEST(CheckerCircle, IsFoundBelowAMarkupAtTheTop) {
    const Circle s;
    k3::Generator::Attach(s.car, Make<StoredGenerator>("k3_detail_markup").Get());
    AddNode(*s.car, L"valve");
    EXPECT_FALSE(s.Sound());
    const Lines lines = s.Log();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].find(kStart), 0u) << lines[0];
}

TEST(CheckerCircle, IsRepairedOnTheNodesAlone) {
    const Circle s;
    EXPECT_FALSE(s.checker->RepairTopLevelNodes(s.scene.Get(), s.log.Get()));
    EXPECT_EQ(s.Log().size(), 2u);
    EXPECT_TRUE(s.Sound());
    EXPECT_EQ(s.lampUse->GetReference()->GetChildCount(), 1) << "the definitions stay";
}

}  // namespace
}  // namespace qn::test
