#include "tests/support/museum.h"

#include "construction/hierarchy_factory.h"
#include "frame/host/api.h"
#include "frame/host/scene.h"
#include "graph/graph.h"
#include "product/bom.h"
#include "tests/support/accepted_leaks.h"
#include "tests/support/assembly.h"
#include "tests/support/generated_scene.h"

namespace qn::test {
namespace {

using graph::Instance;
using graph::Reference;
using graph::Selector;

constexpr int kHolder = 0x4001;  // a parameter that keeps an object in the file

AssemblyBuilder CarBuilder() {
    return AssemblyBuilder("car").Child("chassis").Child("wheel", 2).Under("wheel", "tyre").WithContent();
}

Counted<k3::Scene> NodesOf(const Assembly& assembly) {
    auto scene = Make<k3::Scene>();
    k3::Node* const top = scene->CreateEmptyNode(0, 0, 0);
    Selector start;
    start.AppendPathElement(assembly.RootInstance());
    CreateAs<graph::HierarchyFactory>(graph::ClassKey::kHierarchyFactory)->GenerateNodes(start, top);
    top->SetParamVar(Param::kInstance, Var(assembly.RootInstance(), 1));
    top->SetName(L"car");
    return scene;
}

k3::Node& At(k3::Scene& scene, std::initializer_list<int> path) {
    k3::Node* node = scene.GetFirstChild();
    for (const int step : path)
        node = node->GetChildAt(step);
    return *node;
}

Var Carried(const k3::Node& node) {
    return node.GetParamVar(Param::kInstance);
}

Counted<k3::Scene> WrongInstance() {
    auto scene = SoundNodes();
    At(*scene, {1}).SetParamVar(Param::kInstance, Carried(At(*scene, {0})));
    return scene;
}

Counted<k3::Scene> MissingInstance() {
    auto scene = SoundNodes();
    At(*scene, {2, 0}).DeleteParam(Param::kInstance);
    return scene;
}

Counted<k3::Scene> WrongObject() {
    auto scene = SoundNodes();
    At(*scene, {0}).SetObject(Make<k3::Object3D>().Get());
    return scene;
}

Counted<k3::Scene> TooManyChildren() {
    auto scene = SoundNodes();
    At(*scene, {1}).CreateChildNode(0, 0, 0)->SetName(L"valve");
    return scene;
}

/// The tyre contains the car: below nodes that end where the circle closes, and as definitions alone.
Counted<k3::Scene> CircleOfNodes() {
    const AcceptedLeaks leaks;
    const Assembly assembly = CarBuilder().Build();
    auto scene = NodesOf(assembly);
    assembly.Ref("tyre")->AddChild(assembly.Root()->CreateInstance().Get());
    return scene;
}

Counted<k3::Scene> CircleOfDefinitions() {
    const AcceptedLeaks leaks;
    const Assembly assembly = CarBuilder().Build();
    auto scene = GeneratedScene(assembly);
    assembly.Ref("tyre")->AddChild(assembly.Root()->CreateInstance().Get());
    return scene;
}

Counted<k3::Scene> UseWithoutDefinition() {
    const Assembly assembly = CarBuilder().Build();
    const auto use = CreateAs<Instance>(graph::ClassKey::kInstance);
    use->SetProperty(graph::Prop::kName, Var(L"bolt"));
    assembly.Ref("wheel")->AddChild(use.Get());
    return GeneratedScene(assembly);
}

/// The tyre of the second wheel has a name of its own, then the wheel goes.
Counted<k3::Scene> DeadOverride() {
    const Assembly assembly = CarBuilder().Build();
    const Selector occurrence = assembly.Path({"car", "wheel#1", "tyre"});
    Selector path;
    path.AppendPathElement(occurrence.GetPathElement(1));
    path.AppendPathElement(occurrence.GetPathElement(2));
    path.SetProperty(graph::Prop::kName, Var(L"worn tyre"));
    occurrence.GetPathElement(2)->AddLocalSelector(path);
    auto scene = GeneratedScene(assembly);
    assembly.Root()->RemoveChild(occurrence.GetPathElement(1));
    return scene;
}

Counted<k3::Scene> OrphanedMember() {
    auto scene = SoundNodes();
    const Counted<k3::Node> wheel(&At(*scene, {2}));
    scene->GetFirstChild()->_RemoveChild(wheel.Get(), true);
    scene->SetParamObject(kHolder, wheel.Get());
    k3::Layer* const layer = scene->CreateLayer(L"shown");
    layer->AddNode(&At(*scene, {0}));
    layer->AddNode(wheel.Get());
    return scene;
}

Counted<k3::Scene> ForeignMember() {
    auto scene = SoundNodes();
    k3::Layer* const layer = scene->CreateLayer(L"shown");
    layer->AddNode(&At(*scene, {0}));
    layer->GetMembers()->Add(At(*scene, {0}).GetObject());
    return scene;
}

Counted<k3::Scene> ForeignMemberOfAView() {
    auto scene = SoundNodes();
    const auto layer = Make<k3::Layer>(scene.Get());
    layer->SetName(L"detail");
    layer->AddNode(&At(*scene, {1}));
    layer->GetMembers()->Add(At(*scene, {0}).GetObject());
    scene->CreateViewport(L"front")->SetLayer(layer.Get());
    return scene;
}

Counted<k3::Bom> AddStructure(k3::Scene& scene, const wchar_t* name) {
    auto bom = CreateAs<k3::Bom>(k3::kBomKey);
    bom->SetScene(&scene);
    bom->Initialize(Var(name), false);
    return bom;
}

Counted<k3::Scene> BrokenSecondStructure() {
    auto scene = SoundNodes();
    AddStructure(*scene, L"design");
    const auto service = AddStructure(*scene, L"service");
    auto* const copy = Cast<k3::Node>(service->GetNodes().ValueAt(0));
    copy->GetChildAt(1)->DeleteParam(Param::kInstance);
    return scene;
}

constexpr const char* kNoWheel = "Node ['wheel'] does not have an associated instance.";

}  // namespace

Counted<k3::Scene> SoundNodes() {
    return NodesOf(CarBuilder().Build());
}

Counted<k3::Scene> SoundDefinitions() {
    return GeneratedScene(CarBuilder().Build());
}

const std::vector<Exhibit>& Museum() {
    static const std::vector<Exhibit> exhibits = {
        {"wrong_instance", &WrongInstance, "wrong-instance", "car/wheel[1]", kNoWheel},
        {"missing_instance", &MissingInstance, "wrong-instance", "car/wheel[2]/tyre",
         "Node ['tyre'] does not have an associated instance."},
        {"wrong_object", &WrongObject, "wrong-object", "car/chassis",
         "Different geometry objects: ['chassis'] node, [''] instance and ['chassis'] reference. The object "
         "links are broken."},
        {"too_many_children", &TooManyChildren, "too-many-children", "car/wheel[1]",
         "Node ['valve'] has different number of children than implied by the associated instance"},
        {"circle_of_definitions", &CircleOfDefinitions, "circular-definition", "car/wheel[1]/tyre/car", ""},
        {"circle_of_nodes", &CircleOfNodes, "circular-definition", "car/wheel[1]/tyre/car",
         "Invalid instance/reference hierarchy - found circular reference to entity car"},
        {"use_without_definition", &UseWithoutDefinition, "use-without-definition", "car/wheel[1]/bolt", ""},
        {"dead_override", &DeadOverride, "override-without-occurrence", "car/wheel/tyre", ""},
        {"orphaned_member", &OrphanedMember, "orphaned-layer-member", "wheel",
         "1 orphaned nodes detected in layer shown"},
        {"foreign_member", &ForeignMember, "invalid-layer-member", "",
         "1 invalid nodes detected in layer shown"},
        {"foreign_member_of_a_view", &ForeignMemberOfAView, "invalid-layer-member", "",
         "1 invalid nodes detected in layer detail"},
        {"second_structure", &BrokenSecondStructure, "wrong-instance", "car/wheel[1]", kNoWheel},
    };
    return exhibits;
}

}  // namespace qn::test
