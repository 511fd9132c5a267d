#include "tests/services/services_support.h"

namespace qn::test {
namespace {

std::string About(const char* name) {
    return "Node ['" + std::string(name) + "'] does not have an associated instance.";
}

class NodeValidation : public HierarchyCheck {
protected:
    SoundCar car{*scene};
};

/// What a host attaches to a node that shows a markup.
class MarkupGenerator final : public k3::Generator {
public:
    ResultEnum Generate(Extension*, Context*) override { return ResultEnum::kNothing; }
    const char* GetInterfaceName() const override { return "k3_detail_markup"; }
};

TEST_F(NodeValidation, AcceptsWhatTheFactoryGenerated) {
    EXPECT_TRUE(Validate());
    EXPECT_EQ(log->Texts(), Messages{});
}

TEST_F(NodeValidation, AcceptsAnEmptySceneAndNone) {
    EXPECT_TRUE(checker->ValidateHierarchy(Make<k3::Scene>().Get(), log.Get()));
    EXPECT_TRUE(checker->ValidateHierarchy(nullptr, log.Get()));
    EXPECT_TRUE(checker->RepairTopLevelNodes(nullptr, log.Get()));
}

TEST_F(NodeValidation, RefusesANodeWithoutInstanceBelowADefinition) {
    car.At({1})->DeleteParam(Param::kInstance);
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{About("wheel")});
    EXPECT_EQ(log->Levels(), std::vector<int>{2});
}

TEST_F(NodeValidation, RefusesANodeWithTheInstanceOfItsTwin) {
    Carry(*car.At({1}), CarriedBy(*car.At({2})));
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{About("wheel")});
}

TEST_F(NodeValidation, TakesADescriptionMapForNoInstance) {
    Var map;
    map.InitMap();
    car.At({0})->SetParamVar(Param::kInstance, map);
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{About("chassis")});
}

TEST_F(NodeValidation, NamesANodeByItsDisplayTextFirst) {
    car.At({0})->DeleteParam(Param::kInstance);
    car.At({0})->SetDisplayName(L"the frame");
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{About("the frame")});
}

TEST_F(NodeValidation, CutsReportedNamesAt512Characters) {
    car.At({0})->DeleteParam(Param::kInstance);
    car.At({0})->SetName(std::wstring(600, L'x').c_str());
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{About(std::string(512, 'x').c_str())});
}

TEST_F(NodeValidation, DoesNotDetectMissingChildren) {
    car.top->_RemoveChild(car.At({2}), true);
    EXPECT_TRUE(Validate());
    while (k3::Node* const child = car.top->GetFirstChild())
        car.top->_RemoveChild(child, true);
    EXPECT_TRUE(Validate());
}

TEST_F(NodeValidation, RefusesMoreChildrenThanTheDefinitionHasAndNamesTheFirstOfThem) {
    car.top->CreateChildNode(0, 0, 0)->SetName(L"spare");
    car.top->CreateChildNode(0, 0, 0)->SetName(L"roof");
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(),
              Messages{"Node ['spare'] has different number of children than implied by the associated "
                       "instance"});
}

TEST_F(NodeValidation, ChecksSubtreesBeforeLaterSiblings) {
    car.At({1})->CreateChildNode(0, 0, 0)->SetName(L"valve");
    car.At({2})->DeleteParam(Param::kInstance);
    EXPECT_FALSE(Validate());
    ASSERT_EQ(log->Texts().size(), 1u);
    EXPECT_NE(log->Texts()[0].find("'valve'"), std::string::npos);
}

TEST_F(NodeValidation, TakesChildrenAsTheyAreWhereTheParentCarriesNothing) {
    car.top->DeleteParam(Param::kInstance);
    car.top->CreateChildNode(0, 0, 0)->SetName(L"spare");
    EXPECT_TRUE(Validate());
    Carry(*car.At({1, 0}), CarriedBy(*car.At({0})));
    EXPECT_FALSE(Validate()) << "the wheel still carries its instance, and that tells its child";
}

TEST_F(NodeValidation, RefusesAnObjectThatIsNotTheDefinitions) {
    car.At({0})->SetObject(Make<k3::Object3D>().Get());
    car.assembly.At("chassis")->SetProperty(graph::Prop::kName, Var(L"frame"));
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{"Different geometry objects: ['chassis'] node, ['frame'] instance and "
                                     "['chassis'] reference. The object links are broken."});
}

TEST_F(NodeValidation, FillsAMarkerInsideANameWithTheNextName) {
    car.At({0})->SetObject(nullptr);
    car.At({0})->SetName(L"%2");
    car.assembly.At("chassis")->SetProperty(graph::Prop::kName, Var(L"frame"));
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{"Different geometry objects: ['frame'] node, ['frame'] instance and "
                                     "['chassis'] reference. The object links are broken."});
}

TEST_F(NodeValidation, RefusesOneMissingObjectOnEitherSide) {
    car.At({0})->SetObject(nullptr);
    EXPECT_FALSE(Validate());
    car.assembly.Ref("chassis")->SetTarget(Var());
    EXPECT_TRUE(Validate()) << "both are missing";
    car.At({0})->SetObject(Make<k3::Object3D>().Get());
    EXPECT_FALSE(Validate());
}

TEST_F(NodeValidation, TakesATargetThatIsNoObjectForNone) {
    car.assembly.Ref("chassis")->SetTarget(Var(L"chassis.stp"));
    EXPECT_FALSE(Validate());
    car.At({0})->SetObject(nullptr);
    EXPECT_TRUE(Validate());
}

Counted<k3::MaterialSubstitution> InPlaceOf(k3::Object3D* object) {
    auto substitution = Make<k3::MaterialSubstitution>();
    substitution->SetSubstituted(object);
    return substitution;
}

TEST_F(NodeValidation, LooksThroughAMaterialSubstitutionOnEitherSide) {
    k3::Node& chassis = *car.At({0});
    const Counted<k3::Object3D> object(chassis.GetObject());
    chassis.SetObject(InPlaceOf(object.Get()).Get());
    EXPECT_TRUE(Validate());
    car.assembly.Ref("chassis")->SetTarget(Var(InPlaceOf(object.Get())));
    EXPECT_TRUE(Validate());
    chassis.SetObject(object.Get());
    EXPECT_TRUE(Validate());
}

TEST_F(NodeValidation, LooksThroughOneMaterialSubstitutionOnly) {
    k3::Node& chassis = *car.At({0});
    const Counted<k3::Object3D> object(chassis.GetObject());
    const auto once = InPlaceOf(object.Get());
    chassis.SetObject(InPlaceOf(once.Get()).Get());
    EXPECT_FALSE(Validate());
}

TEST_F(NodeValidation, TakesTwoSubstitutionsOfNothingForOneObject) {
    car.At({0})->SetObject(InPlaceOf(nullptr).Get());
    EXPECT_FALSE(Validate());
    car.assembly.Ref("chassis")->SetTarget(Var(InPlaceOf(nullptr)));
    EXPECT_TRUE(Validate());
}

TEST_F(NodeValidation, PassesANodeWithAMarkupGeneratorWithAnyContent) {
    k3::Node& wheel = *car.At({1});
    wheel.DeleteParam(Param::kInstance);
    wheel.CreateChildNode(0, 0, 0);
    wheel.CreateChildNode(0, 0, 0);
    EXPECT_FALSE(Validate());
    k3::Generator::Attach(&wheel, Make<MarkupGenerator>().Get());
    EXPECT_TRUE(Validate());
}

TEST_F(NodeValidation, PassesATopLevelNodeWithAMarkupGenerator) {
    car.top->CreateChildNode(0, 0, 0);
    k3::Generator::Attach(car.top, Make<MarkupGenerator>().Get());
    EXPECT_TRUE(Validate());
}

TEST_F(NodeValidation, PassesAnInstanceWithoutDefinitionAndTakesItsChildrenAsTheyAre) {
    const auto loose = CreateAs<graph::Instance>(graph::ClassKey::kInstance);
    Carry(*car.top, loose.Get());
    car.top->CreateChildNode(0, 0, 0);
    EXPECT_TRUE(Validate());
}

TEST_F(NodeValidation, StopsAtTheFirstBrokenTopLevelNode) {
    SoundCar second(*scene);
    car.At({0})->DeleteParam(Param::kInstance);
    second.At({1})->DeleteParam(Param::kInstance);
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{About("chassis")});
}

TEST_F(NodeValidation, SaysNothingWithoutALog) {
    car.At({0})->DeleteParam(Param::kInstance);
    EXPECT_FALSE(checker->ValidateHierarchy(scene.Get(), nullptr));
}

TEST_F(NodeValidation, GoesTenThousandLevelsDown) {
    const auto deep = Make<k3::Scene>();
    k3::Node* node = deep->CreateEmptyNode(0, 0, 0);
    const Assembly chain(DeepShape(10000));
    Carry(*node, chain.RootInstance());
    for (graph::Instance* at = chain.RootInstance(); at->GetReference()->GetChildCount() > 0;) {
        at = at->GetReference()->GetChild(0).Get();
        node = node->CreateChildNode(0, 0, 0);
        Carry(*node, at);
    }
    EXPECT_TRUE(checker->ValidateHierarchy(deep.Get(), log.Get()));
    node->DeleteParam(Param::kInstance);
    EXPECT_FALSE(checker->ValidateHierarchy(deep.Get(), log.Get()));
}

}  // namespace
}  // namespace qn::test
