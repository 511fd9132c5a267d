#include "construction/hierarchy_generator_impl.h"
#include "engine/scene/generated_content.h"
#include "engine/stream/scene_file.h"
#include "tests/product/product_support.h"
#include "tests/support/assembly.h"

namespace qn::test {
namespace {

using graph::HierarchyGeneratorImpl;
using k3::BomHelper;
using k3::BomImpl;
using k3::Node;

/// A scene whose only node generates "car(chassis wheel(tyre) wheel(tyre))" when asked to.
class BomOfACar : public testing::Test {
protected:
    void SetUp() override {
        node_->SetName(L"car");
        const auto generator = Make<HierarchyGeneratorImpl>();
        generator->SetSelector(car_.Path({"car"}));
        k3::Generator::Attach(node_, generator.Get());
    }
    void Generate() { EXPECT_EQ(k3::GenerateMissing(*scene_, context_.Get()), 1); }

    static constexpr const char* kCar = "car(chassis wheel(tyre) wheel(tyre))";
    const Assembly car_ =
        AssemblyBuilder("car").Child("chassis").Child("wheel", 2).Under("wheel", "tyre").Build();
    const Counted<Context> context_ = MakeContext();
    const Counted<k3::Scene> scene_ = Make<k3::Scene>();
    Node* const node_ = scene_->CreateEmptyNode(0, 0, 0);
};

TEST_F(BomOfACar, StaysCompactWhenNothingWasAddedToItsNodes) {
    Generate();
    AddBom(*scene_, L"design");
    const auto read = Reloaded(*scene_);
    EXPECT_EQ(ShownBy(*read), "car") << "the nodes are made again from the graph";
    k3::GenerateMissing(*read, context_.Get());
    EXPECT_EQ(ShownBy(*read), kCar);
}

TEST_F(BomOfACar, StaysCompactWhileItIsNotShown) {
    Generate();
    AddBom(*scene_, L"design");
    AddBom(*scene_, L"blank", true)->Activate();
    const auto read = Reloaded(*scene_);
    EXPECT_EQ(NodesOf(*BomAt(*read, 0)), "car");
    BomAt(*read, 0)->Activate();
    k3::GenerateMissing(*read, context_.Get());
    EXPECT_EQ(ShownBy(*read), kCar);
}

/// The instance of the copied top node is in no definition's list: the first save leaves its local id out.
TEST_F(BomOfACar, IsStoredWithItsNodesOnceTheyAreLinked) {
    Generate();
    AddBom(*scene_, L"design");
    AddBom(*scene_, L"service");
    const auto first = Make<k3::Scene>();
    ASSERT_TRUE(LoadSceneFromBytes(BytesOf(*scene_), L"test", *first, *context_));
    const auto read = Reloaded(*first);
    EXPECT_EQ(ShownBy(*read), kCar);
    EXPECT_EQ(NodesOf(*BomAt(*read, 1)), kCar);
}

TEST_F(BomOfACar, IsStoredWithItsNodesWhereALayerThatIsNotShownPointsAtOne) {
    Generate();
    scene_->CreateLayer(L"l")->AddNode(node_->GetLastChild());
    AddBom(*scene_, L"design");
    AddBom(*scene_, L"blank", true)->Activate();
    const auto read = Reloaded(*scene_);
    EXPECT_EQ(NodesOf(*BomAt(*read, 0)), kCar);
    const auto layers = BomAt(*read, 0)->GetLayers();
    ASSERT_TRUE(layers);
    const auto* members = Cast<k3::Layer>(layers->Get(0))->GetMembers();
    EXPECT_EQ(Cast<Node>(members->Get(0))->GetName(), String(L"wheel"));
}

TEST_F(BomOfACar, ItsCopyHasNodesOfItsOwnWithTheSameInstances) {
    Generate();
    AddBom(*scene_, L"design");
    const auto service = AddBom(*scene_, L"service");
    const Node* copy = service->GetRootNode()->GetFirstChild();
    EXPECT_EQ(TreeOf(*copy), kCar);
    EXPECT_EQ(copy->GetParamObject(Param::kInstance), node_->GetParamObject(Param::kInstance));
    EXPECT_EQ(copy->GetLastChild()->GetParamObject(Param::kInstance),
              node_->GetLastChild()->GetParamObject(Param::kInstance));
    EXPECT_EQ(k3::Generator::Get(copy), nullptr);
}

TEST_F(BomOfACar, ItsCopyMakesWhatWasNotGeneratedYet) {
    AddBom(*scene_, L"design");
    const auto service = AddBom(*scene_, L"service");
    EXPECT_EQ(ShownBy(*scene_), kCar);
    EXPECT_EQ(NodesOf(*service), kCar);
}

/// The bytes differ from those before the first switch where that gives the scene its two integers.
TEST(BomRoad, AHundredSwitchesOfTenThousandNodesLeaveTheSameBytes) {
    const auto scene = Make<k3::Scene>();
    BuildNodes(SharedShape(11'111), *scene);
    const auto design = AddBom(*scene, L"design");
    const auto service = AddBom(*scene, L"service");
    service->Activate();
    design->Activate();
    const std::string before = BytesOf(*scene);
    for (int round = 0; round < 50; ++round) {
        service->Activate();
        design->Activate();
    }
    EXPECT_TRUE(BytesOf(*scene) == before);
}

TEST(BomRoad, TenThousandTopLevelNodesSwitchInTheirOrder) {
    const auto scene = Make<k3::Scene>();
    for (int i = 0; i < 10'000; ++i)
        AddNode(*scene, std::to_string(i).c_str());
    const std::string shown = ShownBy(*scene);
    const auto design = AddBom(*scene, L"design");
    const auto blank = AddBom(*scene, L"blank", true);
    for (int round = 0; round < 10; ++round) {
        blank->Activate();
        EXPECT_EQ(scene->GetChildCount(), 0);
        design->Activate();
    }
    EXPECT_TRUE(ShownBy(*scene) == shown);
}

TEST(BomRoad, AChainOfTenThousandLevelsIsCopiedSwitchedAndStored) {
    const auto scene = Make<k3::Scene>();
    Node* node = scene.Get();
    for (int i = 0; i < 10'000; ++i)
        node = AddNode(*node, "n");
    AddBom(*scene, L"design");
    AddBom(*scene, L"service")->Activate();
    const auto read = Reloaded(*scene);
    int levels = 0;
    for (node = read->GetFirstChild(); node; node = node->GetFirstChild())
        ++levels;
    EXPECT_EQ(levels, 10'000);
}

/// A scene "a" with a second, empty structure, and one undo item that added "b".
class ChangeBeforeASwitch : public testing::Test {
protected:
    void SetUp() override {
        scene_->EnableUndo(true);
        undo_ = scene_->GetUndoRecorder(1);
        undo_->BeginItem(L"add");
        AddNode(*scene_, "b");
        undo_->EndItem(L"add");
    }
    const Counted<k3::Scene> scene_ = Make<k3::Scene>();
    Node* const a_ = AddNode(*scene_, "a");
    const Counted<BomImpl> design_ = AddBom(*scene_, L"design");
    const Counted<BomImpl> blank_ = AddBom(*scene_, L"blank", true);
    k3::UndoRecorder* undo_ = nullptr;
};

TEST_F(ChangeBeforeASwitch, IsNotTakenBackWhileAnotherStructureIsShown) {
    blank_->Activate();
    EXPECT_FALSE(undo_->Undo());
    EXPECT_EQ(ShownBy(*scene_), "");
    EXPECT_EQ(NodesOf(*design_), "a b");
}

TEST_F(ChangeBeforeASwitch, IsTakenBackOnceItsStructureIsShownAgain) {
    blank_->Activate();
    design_->Activate();
    EXPECT_TRUE(undo_->Undo());
    EXPECT_EQ(ShownBy(*scene_), "a");
    blank_->Activate();
    EXPECT_FALSE(undo_->Redo());
    design_->Activate();
    EXPECT_TRUE(undo_->Redo());
    EXPECT_EQ(ShownBy(*scene_), "a b");
}

TEST(ChangeBeforeTheFirstStructure, IsTakenBackInIt) {
    const auto scene = Make<k3::Scene>();
    scene->EnableUndo(true);
    k3::UndoRecorder* undo = scene->GetUndoRecorder(1);
    undo->BeginItem(L"add");
    AddNode(*scene, "a");
    undo->EndItem(L"add");
    const auto design = AddBom(*scene, L"design");
    EXPECT_TRUE(undo->Undo());
    EXPECT_EQ(ShownBy(*scene), "");
    EXPECT_TRUE(undo->Redo());
    EXPECT_EQ(ShownBy(*scene), "a");
}

TEST(ChangeBeforeTheFirstStructure, MayBeTheStructureItself) {
    const auto scene = Make<k3::Scene>();
    AddNode(*scene, "a");
    scene->EnableUndo(true);
    k3::UndoRecorder* undo = scene->GetUndoRecorder(1);
    undo->BeginItem(L"create");
    const auto blank = AddBom(*scene, L"blank", true);
    undo->EndItem(L"create");
    EXPECT_EQ(ShownBy(*scene), "");
    EXPECT_TRUE(undo->Undo());
    EXPECT_EQ(ShownBy(*scene), "a");
    EXPECT_EQ(BomHelper(scene.Get()).GetCurrentBom(), nullptr);
    EXPECT_TRUE(undo->Redo());
    EXPECT_EQ(ShownBy(*scene), "");
    EXPECT_EQ(BomHelper(scene.Get()).GetCurrentBom(), static_cast<Interface*>(blank.Get()));
}

}  // namespace
}  // namespace qn::test
