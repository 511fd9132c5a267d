#include "engine/runtime/byte_stream.h"
#include "engine/stream/scene_file.h"
#include "tests/engine/scene/scene_tests.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"

namespace qn::k3 {
namespace {

using test::AddNode;
using test::ChildNames;
using test::Names;
using test::TreeText;

class MergeFile : public ::testing::Test {
protected:
    void SetUp() override { AddNode(*scene_, L"present"); }

    Node* Merge() {
        const auto stream = ByteStream::FromBytes(SaveSceneToBytes(*file_, *context_));
        return FastMerge(scene_.Get(), context_.Get(), stream.Get());
    }

    const Counted<Context> context_ = test::MakeContext();
    const Counted<Scene> file_ = Make<Scene>();
    const Counted<Scene> scene_ = Make<Scene>();
};

TEST_F(MergeFile, BringsTheOnlyTopLevelNode) {
    AddNode(*AddNode(*file_, L"a"), L"b");
    const Node* top = Merge();
    ASSERT_NE(top, nullptr);
    EXPECT_EQ(TreeText(*top), "a(b)");
    EXPECT_EQ(ChildNames(*scene_), (Names{"present", "a"}));
    EXPECT_EQ(top->GetFirstChild()->GetScene(), scene_.Get());
}

TEST_F(MergeFile, PutsSeveralTopLevelNodesBelowANewOne) {
    AddNode(*file_, L"a");
    AddNode(*file_, L"b");
    EXPECT_EQ(TreeText(*Merge()), "(a b)");
    EXPECT_EQ(scene_->GetChildCount(), 2);
}

TEST_F(MergeFile, AnEmptyFileGivesAnEmptyNode) {
    const Node* top = Merge();
    ASSERT_NE(top, nullptr);
    EXPECT_EQ(top->GetChildCount(), 0);
}

TEST_F(MergeFile, BringsViewsLayersAndCameras) {
    Node* a = AddNode(*file_, L"a");
    Node* camera = AddNode(*file_, L"camera");
    Viewport* view = file_->CreateViewport(L"v");
    view->SetKind(ViewKind::kModel);
    view->SetViewNode(camera);
    file_->CreateLayer(L"l")->AddNode(a);
    scene_->CreateViewport(L"own");
    const Node* top = Merge();
    EXPECT_EQ(ChildNames(*scene_), (Names{"present", "a", "camera"}));
    ASSERT_EQ(scene_->GetViewports()->GetCount(), 2);
    const auto* merged = Cast<Viewport>(scene_->GetViewports()->Get(1));
    EXPECT_EQ(merged->GetScene(), scene_.Get());
    EXPECT_EQ(merged->GetViewNode(), scene_->GetLastChild());
    ASSERT_EQ(scene_->GetLayers()->GetCount(), 1);
    EXPECT_EQ(Cast<Layer>(scene_->GetLayers()->Get(0))->GetMembers()->Get(0), top);
}

TEST_F(MergeFile, DamageLeavesTheSceneAsItWas) {
    const auto stream = ByteStream::FromBytes("no scene file");
    EXPECT_EQ(FastMerge(scene_.Get(), context_.Get(), stream.Get()), nullptr);
    EXPECT_EQ(ChildNames(*scene_), (Names{"present"}));
    EXPECT_NE(context_->GetFailure(), LoadFailure::kNone);
    EXPECT_EQ(FastMerge(nullptr, context_.Get(), stream.Get()), nullptr);
    EXPECT_EQ(FastMerge(scene_.Get(), nullptr, nullptr), nullptr);
}

TEST_F(MergeFile, ModulesCheckTheContentAsMerged) {
    test::FakeModule module;
    AddNode(*file_, L"a");
    Merge();
    EXPECT_EQ(module.Count(0x1009), 1);
    EXPECT_NE(module.Calls().back().second, nullptr);
}

TEST_F(MergeFile, LeavesTheStructuresOfTheFileBehind) {
    AddNode(*file_, L"a");
    const auto bom = Make<Entity>(file_.Get(), kTypeBom);
    file_->CreateViewport(L"v")->SetParamObject(Param::kViewportOwnBom, bom.Get());
    Merge();
    const auto* view = Cast<Viewport>(scene_->GetViewports()->Get(0));
    EXPECT_EQ(view->GetParamObject(Param::kViewportOwnBom), nullptr);
    EXPECT_EQ(BomHelper(scene_.Get()).GetBoms(), nullptr);
}

TEST_F(MergeFile, IsTakenBackAsOneItem) {
    AddNode(*file_, L"a");
    file_->CreateViewport(L"v");
    scene_->EnableUndo(true);
    UndoRecorder* undo = scene_->GetUndoRecorder(1);
    undo->BeginItem(L"merge");
    Merge();
    undo->EndItem(nullptr);
    EXPECT_TRUE(undo->Undo());
    EXPECT_EQ(ChildNames(*scene_), (Names{"present"}));
    EXPECT_EQ(scene_->GetAllViewports()->GetCount(), 0);
    EXPECT_TRUE(undo->Redo());
    EXPECT_EQ(ChildNames(*scene_), (Names{"present", "a"}));
    EXPECT_EQ(scene_->GetAllViewports()->GetCount(), 1);
}

}  // namespace
}  // namespace qn::k3
