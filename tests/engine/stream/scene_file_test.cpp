#include "engine/stream/scene_file.h"

#include "frame/host/generator.h"
#include "tests/engine/stream/knot.h"
#include "tests/engine/stream/scene_file_bytes.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using k3::Node;
using k3::Scene;

constexpr unsigned kPostLoad = 0x1009;

Node* AddNode(Node& parent, const wchar_t* name) {
    Node* node = parent.CreateChildNode(0, 0, 0);
    node->SetName(name);
    return node;
}

std::string SavedScene(Scene& scene, bool expand = false) {
    const auto context = MakeContext();
    auto bytes = SaveSceneToBytes(scene, *context, {expand});
    EXPECT_NE(bytes, "") << context->GetFailureText().ToUtf8();
    return bytes;
}

Counted<Scene> LoadedScene(std::string_view bytes) {
    const auto context = MakeContext();
    const auto scene = Make<Scene>();
    EXPECT_TRUE(LoadSceneFromBytes(bytes, L"test", *scene, *context)) << context->GetFailureText().ToUtf8();
    return scene;
}

TEST(SceneFile, KeepsTheTree) {
    const auto scene = Make<Scene>();
    Node* car = AddNode(*scene, L"car");
    AddNode(*car, L"front"), AddNode(*car, L"rear");
    AddNode(*scene, L"tree");

    const auto copy = LoadedScene(SavedScene(*scene));

    ASSERT_EQ(copy->GetChildCount(), 2);
    const Node* loaded = copy->GetFirstChild();
    EXPECT_EQ(loaded->GetName(), String(L"car"));
    EXPECT_EQ(loaded->GetChildAt(1)->GetName(), String(L"rear"));
    EXPECT_EQ(loaded->GetChildAt(1)->GetParent(), loaded);
    EXPECT_EQ(loaded->GetChildAt(1)->GetScene(), copy.Get());
    EXPECT_EQ(copy->GetChildAt(1)->GetName(), String(L"tree"));
}

TEST(SceneFile, SharesContentBetweenNodes) {
    const auto scene = Make<Scene>();
    const auto mesh = Make<k3::Mesh>();
    const auto red = Make<k3::Material>();
    red->SetName(L"red");
    ASSERT_TRUE(mesh->SetGeometry({0, 0, 0, 1, 0, 0, 0, 1, 0}, {}, {0, 1, 2}, {{0, 3, 0}}));
    mesh->AddSlot(red.Get());
    AddNode(*scene, L"a")->SetObject(mesh.Get());
    AddNode(*scene, L"b")->SetObject(mesh.Get());

    const auto copy = LoadedScene(SavedScene(*scene));

    const auto* loaded = Cast<k3::Mesh>(copy->GetChildAt(0)->GetObject());
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded, copy->GetChildAt(1)->GetObject());
    EXPECT_EQ(loaded->GetPositions(), mesh->GetPositions());
    EXPECT_EQ(loaded->GetSlot(0)->GetMaterial()->GetName(), String(L"red"));
}

TEST(SceneFile, KeepsLayersAndViews) {
    const auto scene = Make<Scene>();
    Node* node = AddNode(*scene, L"node");
    k3::Layer* layer = scene->CreateLayer(L"layer");
    layer->AddNode(node);
    k3::Viewport* view = scene->CreateViewport(L"view");
    view->SetViewNode(node), view->SetLayer(layer), view->SetKind(k3::ViewKind::kModel);

    const auto copy = LoadedScene(SavedScene(*scene));

    const auto* loadedLayer = Cast<k3::Layer>(copy->GetLayers()->Get(0));
    ASSERT_TRUE(loadedLayer);
    EXPECT_EQ(loadedLayer->GetMembers()->Get(0), copy->GetFirstChild());
    EXPECT_EQ(loadedLayer->GetScene(), copy.Get());
    const auto* loadedView = Cast<k3::Viewport>(copy->GetViewports()->Get(0));
    EXPECT_EQ(loadedView->GetViewNode(), copy->GetFirstChild());
    EXPECT_EQ(loadedView->GetLayer(), loadedLayer);
    EXPECT_EQ(loadedView->GetKind(), k3::ViewKind::kModel);
}

TEST(SceneFile, KeepsAWeakLinkBetweenNodes) {
    const auto scene = Make<Scene>();
    Node* first = AddNode(*scene, L"first");
    Node* second = AddNode(*scene, L"second");
    first->SetParamVar(Param::kLinkedNode, Var(second, 0));

    const auto copy = LoadedScene(SavedScene(*scene));

    const Var link = copy->GetChildAt(0)->GetParamVar(Param::kLinkedNode);
    EXPECT_TRUE(link.IsWeak());
    EXPECT_EQ(link.ToInterface(), copy->GetChildAt(1));
}

TEST(SceneFile, GivesTheSameBytesAgain) {
    const auto scene = Make<Scene>();
    Node* car = AddNode(*scene, L"car");
    Node* wheel = AddNode(*car, L"wheel");
    wheel->SetMetaValue(Var("$CADMetadata"), Var("x"));
    wheel->SetParamVar(Param::kLinkedNode, Var(car, 0));
    Matrix4<double> matrix;
    matrix.m[3][0] = 5;
    wheel->SetMatrix(&matrix, 0);
    scene->CreateLayer(L"layer")->AddNode(wheel);
    scene->CreateViewport(L"view")->SetViewNode(car);

    const auto bytes = SavedScene(*scene);

    EXPECT_EQ(SavedScene(*scene), bytes);
    EXPECT_EQ(SavedScene(*LoadedScene(bytes)), bytes);
}

TEST(SceneFile, GivesTheSameBytesAgainAfterLinksToANodeThatLeft) {
    const auto scene = Make<Scene>();
    Node* node = AddNode(*scene, L"node");
    const Counted<Node> gone(AddNode(*scene, L"gone"));
    node->SetParamVar(Param::kLinkedNode, Var(gone.Get(), 0));
    scene->CreateLayer(L"layer")->AddNode(gone.Get());
    scene->CreateViewport(L"view")->SetViewNode(gone.Get());
    gone->Remove(0);

    const auto bytes = SavedScene(*scene);

    EXPECT_EQ(SavedScene(*LoadedScene(bytes)), bytes);
}

TEST(SceneFile, SavesAndLoadsTenThousandLevels) {
    constexpr int kLevels = 10'000;
    const auto scene = Make<Scene>();
    Node* node = scene.Get();
    for (int i = 0; i < kLevels; ++i)
        node = AddNode(*node, L"level");

    const auto copy = LoadedScene(SavedScene(*scene));

    int levels = 0;
    for (const Node* next = copy->GetFirstChild(); next; next = next->GetFirstChild())
        ++levels;
    EXPECT_EQ(levels, kLevels);
}

TEST(SceneFile, SavesAndLoadsAHundredThousandChildren) {
    constexpr int kChildren = 100'000;
    const auto scene = Make<Scene>();
    Node* parent = AddNode(*scene, L"parent");
    for (int i = 0; i < kChildren; ++i)
        parent->CreateChildNode(0, 0, 0);

    const auto copy = LoadedScene(SavedScene(*scene));

    EXPECT_EQ(copy->GetFirstChild()->GetChildCount(), kChildren);
}

/// Makes one child; what it generates from is a knot.
class Doubler final : public k3::Generator {
public:
    static constexpr const char* kKey = "test.doubler";
    Counted<Interface> root;

    ResultEnum Generate(Extension*, Context*) override { return ResultEnum::kSuccess; }
    Interface* GetGeneratedRoot() const override { return root.Get(); }
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override {
        if (id != kRootChunk) return Generator::HandleChunk(id, stream, context);
        root = stream->ReadObject(context);
        return ResultEnum::kSuccess;
    }
    const char* GetInterfaceName() const override { return kKey; }
};

class CompactSceneFile : public testing::Test {
protected:
    CompactSceneFile() {
        static const bool added = (AddEngineClass({Doubler::kKey, &MakeOf<Doubler>}), true);
        static_cast<void>(added);
        top_ = AddNode(*scene_, L"top");
        const auto generator = Make<Doubler>();
        generator->root = MakeKnot("definition");
        k3::Generator::Attach(top_, generator.Get());
    }
    const Counted<Scene> scene_ = Make<Scene>();
    Node* top_ = nullptr;
};

TEST_F(CompactSceneFile, KeepsTheGeneratorAndWhatItGeneratesFrom) {
    const auto copy = LoadedScene(SavedScene(*scene_));

    const auto* generator = k3::Generator::Get(copy->GetFirstChild());
    ASSERT_TRUE(generator);
    EXPECT_EQ(Cast<Knot>(generator->GetGeneratedRoot())->name, "definition");
    EXPECT_EQ(SavedScene(*copy), SavedScene(*scene_));
}

TEST_F(CompactSceneFile, StoresNodesThatNoGeneratorMade) {
    AddNode(*top_, L"by hand");

    EXPECT_EQ(LoadedScene(SavedScene(*scene_))->GetFirstChild()->GetChildCount(), 1);
}

TEST(SceneFile, LetsTheModulesCheckWhatWasRead) {
    const TempFolder folder;
    const auto context = MakeContext();
    const auto path = folder.File("scene.qn");
    ASSERT_TRUE(SaveSceneFile(*Make<Scene>(), path, *context));
    const FakeModule module;
    const auto scene = Make<Scene>();

    ASSERT_TRUE(LoadSceneFile(path, *scene, *context));

    ASSERT_EQ(module.Count(kPostLoad), 1);
    EXPECT_EQ(module.Calls().back().first, static_cast<void*>(scene.Get()));
    EXPECT_EQ(module.Calls().back().second, nullptr);
}

TEST(SceneFile, DoesNotAskTheModulesAboutAFileThatCannotBeRead) {
    const TempFolder folder;
    const auto context = MakeContext();
    const FakeModule module;

    EXPECT_FALSE(LoadSceneFile(folder.Write("bad.qn", "bad"), *Make<Scene>(), *context));

    EXPECT_EQ(module.Count(kPostLoad), 0);
}

TEST(SceneFile, LeavesTheSceneEmptyWhenItsOwnBodyIsDamaged) {
    constexpr char kOneParameter[] = "\x01\0\0\0\x07\0\0\0\x01\x05\0\0\0";  // a count, id 7, the integer 5
    const auto body = ChunkBytes(1, {kOneParameter, sizeof kOneParameter - 1}) +
                      ChunkBytes(0x1b, std::string("\x01\0\0\0", 4)) + "cut";
    FileParts parts;
    parts.objects = parts.classes = parts.root = 2;
    parts.Add(scene_file::BlockKind::kClasses, ClassRowBytes("k3_node") + ClassRowBytes("k3_scene"));
    parts.Add(scene_file::BlockKind::kIndex,
              IndexRowBytes(0, 0) + IndexRowBytes(1, static_cast<std::uint32_t>(body.size())));
    parts.Add(scene_file::BlockKind::kBodies, body);
    const auto context = MakeContext();
    const auto scene = Make<Scene>();

    EXPECT_FALSE(LoadSceneFromBytes(parts.Bytes(), L"test", *scene, *context));

    EXPECT_NE(context->GetFailureText().ToUtf8().find("its header is cut off"), std::string::npos);
    EXPECT_EQ(scene->GetFirstChild(), nullptr);
    EXPECT_FALSE(scene->GetParamVar(7).IsSet());
}

TEST(SceneFile, RefusesAFileWhoseRootIsNoScene) {
    const auto context = MakeContext();
    const auto scene = Make<Scene>();

    EXPECT_FALSE(LoadSceneFromBytes(Saved(*MakeKnot("root")), L"test", *scene, *context));

    EXPECT_EQ(context->GetFailureText(),
              String(L"test: byte 0: the root is of class test.knot, wanted is k3_scene"));
}

}  // namespace
}  // namespace qn::test
