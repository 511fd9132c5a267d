#include "engine/stream/scene_file.h"
#include "tests/engine/scene/scene_tests.h"
#include "tests/support/recording_context.h"

namespace qn::k3 {
namespace {

using test::AddNode;
using test::TreeText;

Counted<Scene> Reloaded(Scene& scene) {
    const auto context = test::MakeContext();
    const std::string bytes = SaveSceneToBytes(scene, *context);
    EXPECT_FALSE(bytes.empty());
    auto read = Make<Scene>();
    EXPECT_TRUE(LoadSceneFromBytes(bytes, L"test", *read, *context));
    EXPECT_EQ(SaveSceneToBytes(*read, *context), bytes) << "saved again the bytes differ";
    return read;
}

TEST(ScenePersistence, KeepsTheTree) {
    const auto scene = Make<Scene>();
    scene->SetName(L"s");
    Node* a = AddNode(*scene, L"a");
    AddNode(*AddNode(*a, L"b"), L"c");
    AddNode(*a, L"d");
    const auto read = Reloaded(*scene);
    EXPECT_EQ(TreeText(*read), "s(a(b(c) d))");
    EXPECT_EQ(read->GetFirstChild()->GetFirstChild()->GetScene(), read.Get());
}

TEST(ScenePersistence, KeepsTheFieldsOfANode) {
    const auto scene = Make<Scene>();
    Node* node = AddNode(*scene, L"n");
    const auto matrix = Matrix4<double>::Translation(0.1, 2, 3);
    node->SetDisplayName(L"d");
    node->SetText(L"t");
    node->SetMatrix(&matrix, 0);
    node->SetMatrix(&matrix, 1);
    node->SetThirdMatrix(matrix);
    node->SetFlags(0x80000005u);
    node->SetAttributeWord(1, 6);
    node->SetIntegerAttribute(-7, 0);
    node->SetShortValue(-8);
    node->SetOpacity(0.5f);
    node->SetParamVar(Param::kBsId, Var(L"id"));
    node->SetMetaValue(Var(L"k"), Var(L"v"));
    const auto scene2 = Reloaded(*scene);
    const Node* read = scene2->GetFirstChild();
    Matrix4<double> out;
    EXPECT_EQ(read->GetDisplayName(), String(L"d"));
    EXPECT_EQ(read->GetText(), String(L"t"));
    read->GetMatrix(&out, 0);
    EXPECT_EQ(out, matrix);
    read->GetMatrix(&out, 1);
    EXPECT_EQ(out, matrix);
    read->GetThirdMatrix(&out);
    EXPECT_EQ(out, matrix);
    EXPECT_EQ(read->GetFlags(), 0x80000005u);
    EXPECT_EQ(read->GetAttributeWord(1), 6u);
    EXPECT_EQ(read->GetIntegerAttribute(), -7);
    EXPECT_EQ(read->GetShortValue(), -8);
    EXPECT_EQ(read->GetOpacity(), 0.5f);
    EXPECT_EQ(read->GetParamVar(Param::kBsId), Var(L"id"));
    EXPECT_EQ(*read->GetMetadata(false)->Lookup(Var(L"k")), Var(L"v"));
}

TEST(ScenePersistence, KeepsTheClassOfANode) {
    const auto scene = Make<Scene>();
    Make<DetailMarkup>()->AttachTo(scene.Get());
    EXPECT_NE(Cast<DetailMarkup>(Reloaded(*scene)->GetFirstChild()), nullptr);
}

TEST(ScenePersistence, SharedContentStaysShared) {
    const auto scene = Make<Scene>();
    const auto mesh = Make<Mesh>();
    AddNode(*scene, L"a")->SetObject(mesh.Get());
    AddNode(*scene, L"b")->SetObject(mesh.Get());
    const auto read = Reloaded(*scene);
    ASSERT_NE(read->GetFirstChild()->GetObject(), nullptr);
    EXPECT_EQ(read->GetFirstChild()->GetObject(), read->GetLastChild()->GetObject());
}

TEST(ScenePersistence, KeepsAHandlePair) {
    const auto scene = Make<Scene>();
    const auto object = Make<Mesh>();
    const auto partner = Make<Mesh>();
    object->AttachHandleObject(partner.Get());
    partner->SetParamVar(0x100, Var(1));
    AddNode(*scene, L"a")->SetObject(object.Get());
    const auto read = Reloaded(*scene);
    Object3D* found = read->GetFirstChild()->GetObject();
    ASSERT_NE(found, nullptr);
    ASSERT_NE(found->GetHandleObject(), nullptr);
    EXPECT_EQ(found->GetHandleObject()->GetParamVar(0x100), Var(1));
    EXPECT_EQ(found->GetHandleObject()->GetHandleObject(), nullptr);
}

TEST(ScenePersistence, KeepsASubstitution) {
    const auto scene = Make<Scene>();
    const auto mesh = Make<Mesh>();
    const auto substitution = Make<MaterialSubstitution>();
    substitution->SetSubstituted(mesh.Get());
    AddNode(*scene, L"a")->SetObject(substitution.Get());
    const auto read = Reloaded(*scene);
    auto* found = Cast<MaterialSubstitution>(read->GetFirstChild()->GetObject());
    ASSERT_NE(found, nullptr);
    EXPECT_NE(Cast<Mesh>(found->GetSubstituted()), nullptr);
}

TEST(ScenePersistence, KeepsLayersWithTheirMembers) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    Layer* layer = scene->CreateLayer(L"l");
    layer->SetDisplayName(L"shown");
    layer->AddNode(a);
    const auto outside = Make<Node>();
    layer->AddNode(outside.Get());
    const auto read = Reloaded(*scene);
    auto* found = Cast<Layer>(read->GetLayers()->Get(0));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->GetName(), String(L"l"));
    EXPECT_EQ(found->GetDisplayName(), String(L"shown"));
    EXPECT_EQ(found->GetScene(), read.Get());
    ASSERT_EQ(found->GetMembers()->GetCount(), 1) << "a node that is not stored is no member";
    EXPECT_EQ(found->GetMembers()->Get(0), read->GetFirstChild());
}

TEST(ScenePersistence, KeepsMembersOfLayersThatAreNoNodes) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    a->SetObject(Make<Mesh>().Get());
    Layer* layer = scene->CreateLayer(L"l");
    layer->AddNode(a);
    layer->GetMembers()->Add(a->GetObject());
    layer->AddNode(AddNode(*scene, L"b"));
    const auto read = Reloaded(*scene);
    const auto* members = Cast<Layer>(read->GetLayers()->Get(0))->GetMembers();
    ASSERT_EQ(members->GetCount(), 3);
    EXPECT_EQ(members->Get(1), read->GetFirstChild()->GetObject());
    EXPECT_EQ(members->Get(2), read->GetLastChild());
}

TEST(ScenePersistence, KeepsViewportsAndWhatBelongsToThem) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    Viewport* view = scene->CreateViewport(L"v");
    const auto layer = Make<Layer>(scene.Get());
    const auto companion = Make<Entity>(scene.Get(), kTypeDependable);
    companion->SetName(L"c");
    companion->GetDependants()->Add(a);
    scene->GetEntities()->Add(companion.Get());
    view->SetKind(ViewKind::kStep);
    view->SetViewNode(a);
    view->SetLayer(layer.Get());
    view->SetCompanion(companion.Get());
    view->SetParamVar(Param::kViewportTarget, Var(a, 0));
    const auto read = Reloaded(*scene);
    ASSERT_NE(read->GetViewports(), nullptr);
    auto* found = Cast<Viewport>(read->GetViewports()->Get(0));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->GetName(), String(L"v"));
    EXPECT_EQ(found->GetKind(), ViewKind::kStep);
    EXPECT_EQ(found->GetViewNode(), read->GetFirstChild());
    ASSERT_NE(found->GetLayer(), nullptr);
    EXPECT_EQ(found->GetLayer()->GetScene(), read.Get());
    ASSERT_NE(found->GetCompanion(), nullptr);
    EXPECT_EQ(found->GetCompanion()->GetName(), String(L"c"));
    EXPECT_EQ(found->GetCompanion()->GetType(), kTypeDependable);
    EXPECT_EQ(found->GetCompanion()->GetDependants()->Get(0), read->GetFirstChild());
    EXPECT_EQ(found->GetParamVar(Param::kViewportTarget).ToInterface(), read->GetFirstChild());
    EXPECT_TRUE(found->GetParamVar(Param::kViewportTarget).IsWeak());
}

TEST(ScenePersistence, KeepsTheTime) {
    const auto scene = Make<Scene>();
    scene->SetCurrentTime(1.5f);
    EXPECT_EQ(Reloaded(*scene)->GetCurrentTime(), 1.5f);
}

TEST(ScenePersistence, BindsStructuresToTheScene) {
    const auto scene = Make<Scene>();
    const auto bom = Make<Entity>(nullptr, kTypeBom);
    const auto boms = VarArray::Create();
    boms->Add(Var(bom));
    scene->SetParamVar(Param::kBoms, Var(boms));
    scene->SetParamVar(Param::kCurrentBom, Var(bom));
    const auto read = Reloaded(*scene);
    auto* found = Cast<Entity>(BomHelper(read.Get()).GetCurrentBom());
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->GetScene(), read.Get());
    EXPECT_EQ(BomHelper(read.Get()).GetBoms()->Get(0).ToInterface(), static_cast<Interface*>(found));
}

TEST(ScenePersistence, DepthCostsNoStack) {
    const auto scene = Make<Scene>();
    Node* node = scene.Get();
    for (int i = 0; i < 100'000; ++i)
        node = node->CreateChildNode(0, 0, 0);
    const auto read = Reloaded(*scene);
    int depth = 0;
    for (Node* at = read->GetFirstChild(); at; at = at->GetFirstChild())
        ++depth;
    EXPECT_EQ(depth, 100'000);
}

}  // namespace
}  // namespace qn::k3
