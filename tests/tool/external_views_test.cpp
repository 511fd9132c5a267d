// Views and layers of a file that a definition names follow it into the whole.

#include "construction/hierarchy_generator.h"
#include "engine/stream/scene_file.h"
#include "frame/entry.h"
#include "frame/host/scene.h"
#include "tests/support/assembly.h"
#include "tests/support/file_assembly.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <set>

namespace assembly::tests {
namespace {

using namespace qn;
using graph::Instance;
using graph::Reference;
namespace Prop = graph::Prop;

Instance* InstanceOf(const k3::Node& node) {
    return Cast<Instance>(node.GetParamObject(Param::kInstance));
}

std::string DefinitionOf(const k3::Node* node) {
    const Instance* instance = node ? InstanceOf(*node) : nullptr;
    const Reference* reference = instance ? instance->GetReference() : nullptr;
    return reference ? reference->GetProperty(Prop::kName, 0).ToText().ToUtf8() : std::string();
}

/// A node by the names of the definitions that lead to it from the top.
k3::Node* Find(k3::Node* top, const std::vector<std::string>& path) {
    for (const std::string& name : path) {
        k3::Node* child = top->GetFirstChild();
        while (child && DefinitionOf(child) != name)
            child = child->GetNextSibling();
        if (!child) return nullptr;
        top = child;
    }
    return top;
}

Var CadId(const wchar_t* id) {
    Var metadata;
    metadata.At(L"$CADMetadata").At(L"UNIQUEID") = Var(id);
    return metadata;
}

void MakePmiView(k3::Viewport& viewport, bool isCapture) {
    Var group;
    group.At(L"Kind") = Var(1);
    if (isCapture) group.At(L"IsCapture") = Var(true);
    viewport.SetMetaValue(Var(L"$QN.PMI.VIEWPORT"), group);
}

k3::Viewport* AddView(k3::Scene& scene, const wchar_t* name, k3::Node* shown,
                      std::initializer_list<k3::Node*> members) {
    k3::Viewport* view = scene.CreateViewport(name);
    view->SetViewNode(shown);
    k3::Layer* layer = scene.CreateLayer(name);
    for (k3::Node* member : members)
        layer->AddNode(member);
    view->SetLayer(layer);
    return view;
}

/// A car with a door and, in it, a lock; two views of it, a view of PMI and a capture, each with a layer.
std::string CarWithViews() {
    const auto car = test::AssemblyBuilder("car").Child("door").Under("door", "lock").Build();
    car.Root()->SetProperty(Prop::kMetadata, CadId(L"car id"));
    const auto scene = Make<k3::Scene>();
    const auto context = api->CreateContext(0, 0);
    k3::Node* top = scene->CreateEmptyNode(0, 0, 0);
    const auto generator = CreateAs<graph::HierarchyGenerator>(graph::ClassKey::kHierarchyGenerator);
    graph::Selector selector;
    selector.AppendPathElement(car.RootInstance());
    generator->SetSelector(selector);
    k3::Generator::Attach(top, generator.Get());
    generator->Generate(top, context.Get());
    k3::Node* door = Find(top, {"door"});
    k3::Node* lock = Find(top, {"door", "lock"});
    if (!lock) return std::string();
    AddView(*scene, L"front", door, {door, lock});
    AddView(*scene, L"whole", door, {top});
    MakePmiView(*AddView(*scene, L"pmi", lock, {lock}), false);
    MakePmiView(*AddView(*scene, L"capture", lock, {lock}), true);
    return SaveSceneToBytes(*scene, *context);
}

class ExternalViews : public testing::Test {
protected:
    void SetUp() override {
        const std::string car = CarWithViews();
        ASSERT_FALSE(car.empty());
        WriteAll(folder_.File("car.qn"), car);
        WriteAll(folder_.File("park.qn"), test::FileAssembly("park", {{"car", "car.qn", 2}}));
        const ToolRun run =
            RunTool({"convert", "--load", "all", folder_.File("park.qn"), folder_.File("whole.qn")});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        ASSERT_TRUE(LoadSceneFile(String::FromUtf8(folder_.File("whole.qn")), *scene_, *context_));
        park_ = scene_->GetFirstChild();
    }
    k3::Viewport* View(const wchar_t* name) const {
        const auto all = scene_->GetAllViewports();
        for (int i = 0; i < all->GetCount(); ++i)
            if (auto* view = Cast<k3::Viewport>(all->Get(i)); view->GetName() == name) return view;
        return nullptr;
    }
    static std::multiset<std::string> MembersOf(const k3::Viewport& view) {
        std::multiset<std::string> members;
        const PointerArray* nodes = view.GetLayer() ? view.GetLayer()->GetMembers() : nullptr;
        for (int i = 0; nodes && i < nodes->GetCount(); ++i)
            if (const auto* node = Cast<k3::Node>(nodes->Get(i))) members.insert(DefinitionOf(node));
        return members;
    }
    const test::EntryModule module_{&K3DLLFunc};
    TemporaryFolder folder_;
    Counted<k3::Scene> scene_ = Make<k3::Scene>();
    Counted<Context> context_ = api->CreateContext(0, 0);
    k3::Node* park_ = nullptr;
};

TEST_F(ExternalViews, AllComeAlong) {
    EXPECT_EQ(scene_->GetAllViewports()->GetCount(), 4);
    for (const wchar_t* name : {L"front", L"whole", L"pmi", L"capture"})
        EXPECT_TRUE(View(name));
}

TEST_F(ExternalViews, LookAtTheNodeInTheFirstOccurrenceOfTheFile) {
    ASSERT_TRUE(View(L"front"));
    const k3::Node* seen = View(L"front")->GetViewNode();
    ASSERT_TRUE(seen);
    EXPECT_EQ(DefinitionOf(seen), "door");
    EXPECT_EQ(DefinitionOf(seen->GetParent()), "car");
    EXPECT_EQ(seen->GetScene(), scene_.Get());
    EXPECT_EQ(DefinitionOf(View(L"pmi")->GetViewNode()), "lock");
}

TEST_F(ExternalViews, BelongToTheDefinitionOfTheFile) {
    const auto* owner = Cast<Reference>(View(L"front")->GetParamVar(Param::kViewportTarget));
    ASSERT_TRUE(owner);
    EXPECT_EQ(owner->GetProperty(Prop::kName, 0).ToText().ToUtf8(), "car");
}

TEST_F(ExternalViews, ShowTheMembersOfTheirLayersInThatOccurrence) {
    EXPECT_EQ(MembersOf(*View(L"front")), (std::multiset<std::string>{"door", "lock"}));
    EXPECT_EQ(MembersOf(*View(L"whole")).count("car"), 1u);
}

TEST_F(ExternalViews, OfPmiShowTheWholeFileAndCapturesWhatTheyHeld) {
    EXPECT_EQ(MembersOf(*View(L"pmi")), (std::multiset<std::string>{"car", "door", "lock"}));
    EXPECT_EQ(MembersOf(*View(L"capture")), (std::multiset<std::string>{"lock"}));
}

TEST_F(ExternalViews, ACaptureNamesTheNodeThatItShows) {
    k3::Node* car = View(L"capture")->GetViewNode();
    while (car && DefinitionOf(car) != "car")
        car = car->GetParent();
    ASSERT_TRUE(car);
    const Var metadata(car->GetMetadata(false), 1);
    const Var* group = metadata.Lookup(L"$CADMetadata");
    ASSERT_TRUE(group);
    EXPECT_EQ(group->Lookup(L"UNIQUEID")->ToText(), L"car id");
}

}  // namespace
}  // namespace assembly::tests
