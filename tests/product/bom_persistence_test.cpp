#include "frame/host/meta.h"
#include "tests/product/product_support.h"
#include "tests/support/failing_stream.h"
#include "tests/support/nested_tape.h"

namespace qn::test {
namespace {

using k3::BomHelper;
using k3::BomImpl;
using k3::Layer;
using k3::Node;

using BomFile = BomScene;

TEST_F(BomFile, KeepsStructuresAndWhichIsCurrent) {
    AddBom(*scene_, L"design");
    const auto service = AddBom(*scene_, L"service");
    scene_->_RemoveChild(d_, true);
    service->Activate();
    const auto read = Reloaded(*scene_);
    ASSERT_NE(BomAt(*read, 1), nullptr);
    EXPECT_EQ(BomAt(*read, 0)->GetName(), String(L"design"));
    EXPECT_EQ(BomHelper(read.Get()).GetCurrentBom(), static_cast<Interface*>(BomAt(*read, 1)));
    EXPECT_EQ(ShownBy(*read), "a(b c) d");
    EXPECT_EQ(NodesOf(*BomAt(*read, 0)), "a(b c)");
    EXPECT_EQ(ShownBy(*BomAt(*read, 0)->GetRootNode()), "a(b c)");
}

TEST_F(BomFile, ItsStructuresBelongToTheSceneAndCanBeSwitched) {
    AddBom(*scene_, L"design");
    AddBom(*scene_, L"blank", true);
    const auto read = Reloaded(*scene_);
    EXPECT_EQ(BomAt(*read, 1)->GetScene(), read.Get());
    EXPECT_EQ(BomAt(*read, 1)->Activate(), ResultEnum::kSuccess);
    EXPECT_EQ(ShownBy(*read), "");
    EXPECT_EQ(BomAt(*read, 0)->Activate(), ResultEnum::kSuccess);
    EXPECT_EQ(ShownBy(*read), "a(b c) d");
}

TEST_F(BomFile, KeepsTheLayersOfAStructureThatIsNotShown) {
    Layer* layer = scene_->CreateLayer(L"l");
    layer->AddNode(b_);
    AddBom(*scene_, L"design");
    AddBom(*scene_, L"service", true)->Activate();
    const auto read = Reloaded(*scene_);
    EXPECT_EQ(read->GetLayers()->GetCount(), 0);
    BomAt(*read, 0)->Activate();
    ASSERT_EQ(read->GetLayers()->GetCount(), 1);
    const auto* kept = Cast<Layer>(read->GetLayers()->Get(0));
    EXPECT_EQ(kept->GetName(), String(L"l"));
    EXPECT_EQ(kept->GetScene(), read.Get());
    EXPECT_EQ(kept->GetMembers()->Get(0), static_cast<Interface*>(read->GetFirstChild()->GetFirstChild()));
}

TEST_F(BomFile, KeepsTheLinksOfCorrespondingNodes) {
    AddBom(*scene_, L"design");
    AddBom(*scene_, L"service");
    const auto read = Reloaded(*scene_);
    Node* const node = read->GetFirstChild()->GetFirstChild();
    Node* const copy = BomAt(*read, 1)->GetRootNode()->GetFirstChild()->GetFirstChild();
    const Var group = GetMeta(node, Var(L"$QN.BOM.LINK"), 0);
    ASSERT_TRUE(group.IsMap());
    EXPECT_EQ(GetMeta(copy, Var(L"$QN.BOM.LINK"), 0).ToInterface(), group.ToInterface()) << "still shared";
    const auto* links = Cast<InterfaceArray>(group.Lookup(L"Links")->ToInterface());
    ASSERT_NE(links, nullptr);
    EXPECT_FALSE(links->IsStrong());
    EXPECT_EQ(links->Get(0), static_cast<Interface*>(node));
    EXPECT_EQ(links->Get(1), static_cast<Interface*>(copy));
}

TEST_F(BomFile, LeavesNodesThatAreNotShownOutOfTheGlobalList) {
    AddBom(*scene_, L"design");
    AddBom(*scene_, L"service");
    const auto read = Reloaded(*scene_);
    EXPECT_TRUE(read->GetFirstChild()->IsInGlobalList());
    const Node* hidden = BomAt(*read, 1)->GetRootNode()->GetFirstChild();
    EXPECT_FALSE(hidden->IsInGlobalList());
    EXPECT_FALSE(hidden->GetFirstChild()->IsInGlobalList());
}

TEST_F(BomFile, KeepsTheStructureOfAView) {
    k3::Viewport* viewport = AddCamera(*scene_, "model", k3::ViewKind::kModel);
    AddBom(*scene_, L"design");
    ASSERT_NE(viewport->GetParamObject(Param::kViewportOwnBom), nullptr);
    const auto read = Reloaded(*scene_);
    const auto* kept = Cast<k3::Viewport>(read->GetViewports()->Get(0));
    EXPECT_EQ(kept->GetParamObject(Param::kViewportOwnBom), static_cast<Interface*>(BomAt(*read, 0)));
}

TEST_F(BomFile, HasTheSameBytesAfterSwitchingBackAndForth) {
    scene_->SetParamVar(Param::kCarriedA, Var(4));
    scene_->SetParamVar(Param::kCarriedB, Var(0));
    scene_->CreateLayer(L"l")->AddNode(b_);
    const auto design = AddBom(*scene_, L"design");
    const auto service = AddBom(*scene_, L"service");
    const std::string before = BytesOf(*scene_);
    for (int round = 0; round < 10; ++round) {
        service->Activate();
        design->Activate();
    }
    EXPECT_TRUE(BytesOf(*scene_) == before);
}

std::vector<std::string> Written(BomImpl& bom) {
    FailingStream stream;
    EXPECT_EQ(bom.Save(&stream, nullptr), ResultEnum::kSuccess);
    std::vector<std::string> objects;
    for (const std::string& line : stream.Log())
        if (line.starts_with("object 10")) objects.push_back(line);
    return objects;
}

TEST(BomChunks, OfAnEmptyStructureAreNone) {
    EXPECT_EQ(Written(*Make<BomImpl>()), std::vector<std::string>());
}

TEST(BomChunks, AreRootNodesAndOneForEachLayer) {
    const auto scene = Make<k3::Scene>();
    scene->CreateLayer(L"l");
    scene->GetLayers()->Add(nullptr);
    scene->CreateLayer(L"m");
    const auto bom = AddBom(*scene, L"design");
    EXPECT_EQ(Written(*bom), (std::vector<std::string>{"object 1000 k3_node", "object 1001 k3_vararray",
                                                       "object 1006 k3_layer", "object 1006 k3_layer"}));
}

TEST(BomChunks, AFailedWriteFailsTheSave) {
    const auto scene = Make<k3::Scene>();
    scene->CreateLayer(L"l");
    const auto bom = AddBom(*scene, L"design");
    for (int object = 1; object <= 3; ++object) {
        FailingStream stream;
        stream.FailObject(object);
        EXPECT_EQ(ToInt(bom->Save(&stream, nullptr)), -8) << object;
        EXPECT_EQ(stream.OpenChunks(), 0);
    }
}

TEST(BomChunks, ABaseThatFailsIsAllThatIsWritten) {
    const auto scene = Make<k3::Scene>();
    const auto bom = AddBom(*scene, L"design");
    FailingStream stream;
    stream.FailWrite(1);
    EXPECT_EQ(ToInt(bom->Save(&stream, nullptr)), -8);
    for (const std::string& line : stream.Log())
        EXPECT_FALSE(line.starts_with("object 100")) << line;
}

TEST(BomChunks, GiveTheSceneOfTheRootToTheStructure) {
    const auto scene = Make<k3::Scene>();
    const auto bom = Make<BomImpl>();
    OneObject stream;
    stream.object = Counted<Interface>(AddNode(*scene, "root"));
    EXPECT_EQ(bom->HandleChunk(0x1000, &stream, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(bom->GetScene(), scene.Get());
    EXPECT_EQ(bom->GetRootNode(), scene->GetFirstChild());
}

TEST(BomChunks, TakeTheSceneAwayWhereTheRootHasNone) {
    const auto scene = Make<k3::Scene>();
    const auto bom = Make<BomImpl>(scene.Get());
    OneObject stream;
    stream.object = Make<Node>();
    bom->HandleChunk(0x1000, &stream, nullptr);
    EXPECT_EQ(bom->GetScene(), nullptr);
}

TEST(BomChunks, OfTheWrongClassAreFineAndIgnored) {
    const auto scene = Make<k3::Scene>();
    const auto bom = Make<BomImpl>(scene.Get());
    OneObject stream;
    stream.object = Make<k3::Entity>();
    for (const int id : {0x1000, 0x1001, 0x1006})
        EXPECT_EQ(bom->HandleChunk(id, &stream, nullptr), ResultEnum::kSuccess) << id;
    EXPECT_EQ(bom->GetRootNode(), nullptr);
    EXPECT_EQ(bom->GetScene(), scene.Get());
    EXPECT_FALSE(bom->GetNodes().IsSet());
    EXPECT_FALSE(bom->GetLayers());
}

TEST(BomChunks, GatherLayersInAStrongArray) {
    const auto bom = Make<BomImpl>();
    OneObject stream;
    for (int i = 0; i < 2; ++i) {
        stream.object = Make<Layer>();
        bom->HandleChunk(0x1006, &stream, nullptr);
    }
    stream.object.Reset();
    ASSERT_TRUE(bom->GetLayers());
    EXPECT_TRUE(bom->GetLayers()->IsStrong());
    EXPECT_EQ(bom->GetLayers()->GetCount(), 2);
    EXPECT_NE(bom->GetLayers()->Get(0), nullptr);
}

/// A damaged file may leave out any chunk.
TEST(BomChunks, MayMissOnTheCurrentStructure) {
    const auto scene = Make<k3::Scene>();
    AddNode(*scene, "a");
    const auto damaged = Make<BomImpl>(scene.Get());
    scene->SetParamObject(Param::kCurrentBom, damaged.Get());
    const auto other = Make<BomImpl>(scene.Get());
    OneObject stream;
    stream.object = Make<Node>();
    other->HandleChunk(0x1000, &stream, nullptr);
    stream.object = VarArray::Create();
    other->HandleChunk(0x1001, &stream, nullptr);
    other->SetScene(scene.Get());
    EXPECT_EQ(other->Activate(), ResultEnum::kSuccess);
    EXPECT_EQ(ShownBy(*scene), "");
    EXPECT_EQ(NodesOf(*damaged), "a");
}

}  // namespace
}  // namespace qn::test
