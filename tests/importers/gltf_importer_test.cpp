#include "importers/gltf/gltf_importer.h"

#include "construction/hierarchy_generator.h"
#include "engine/runtime/engine.h"
#include "engine/runtime/module_folder.h"
#include "engine/scene/generated_content.h"
#include "frame/host/object3d.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/reference.h"
#include "importers/gltf/gltf_limits.h"
#include "importers/gltf/gltf_metadata.h"
#include "tests/importers/gltf_text.h"
#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace qn;
using namespace qn::gltf;
using graph::Instance;
using graph::Reference;
using test::GltfText;
using test::TriangleMeshes;
namespace Prop = graph::Prop;

/// Loads files as the tool does, through the modules of the build.
class GltfImport : public testing::Test {
protected:
    void SetUp() override {
        SetModuleFolder(String::FromUtf8(ASSEMBLY_LIB_DIR));
        String reason;
        ASSERT_TRUE(StartEngineWithAssembly(&reason)) << reason.ToUtf8();
    }

    void ReadStructureOnly() {
        Var options;
        options.At(LoadOption::kStructureOnly) = Var(true);
        context_->SetParamVar(qn::Param::kLoadOptions, options);
    }
    /// The container around the roots of the file; null if it was not loaded.
    Reference* Load(const std::string& text, const char* name = "test.gltf") {
        const String file = folder_.Write(name, text);
        top_ = scene_->LoadFile(file.c_str(), context_.Get(), 0, Guid());
        auto* generator = top_ ? Cast<graph::HierarchyGenerator>(k3::Generator::Get(top_)) : nullptr;
        return generator ? generator->GetRootReference() : nullptr;
    }
    Reference* LoadMembers(const std::string& members) { return Load(GltfText(members)); }
    /// What the failed load said, without the file's name.
    std::string Error() const {
        const std::string text = context_->GetFailureText().ToUtf8();
        const std::size_t name = text.find("test.gltf: ");
        return name == std::string::npos ? text : text.substr(name + 11);
    }

    test::TempFolder folder_;
    Counted<k3::Scene> scene_ = Make<k3::Scene>();
    Counted<test::RecordingContext> context_ = test::MakeContext();
    k3::Node* top_ = nullptr;
};

std::string NameOf(const graph::HierarchyElement& element) {
    return element.GetProperty(Prop::kName, 0).ToText().ToUtf8();
}

Counted<Instance> Child(const Reference& parent, int index) {
    return parent.GetChild(index);
}

Matrix4<double> PlaceOf(const Instance& use) {
    Matrix4<double> place;
    const Var value = use.GetProperty(Prop::kLocalMatrix, 0);
    if (value.IsMatrix()) value.copy_to(place);
    return place;
}

/// A value of the importer's metadata group by its key.
Var Meta(const Var& metadata, const wchar_t* key) {
    const Var* group = metadata.IsMap() ? metadata.Lookup(kMetadataGroup) : nullptr;
    const Var* value = group ? group->Lookup(key) : nullptr;
    return value ? *value : Var();
}
Var Meta(const graph::HierarchyElement& element, const wchar_t* key) {
    return Meta(element.GetProperty(Prop::kMetadata, 0), key);
}

const k3::Mesh* MeshOf(const Reference* definition) {
    return definition ? Cast<k3::Mesh>(definition->GetTarget()) : nullptr;
}

TEST_F(GltfImport, SharesOneDefinitionBetweenTheNodesOfAMesh) {
    const Reference* root = LoadMembers(TriangleMeshes(2) + R"(,"nodes":[{"mesh":1},{"mesh":0},{"mesh":1}])");
    ASSERT_TRUE(root) << Error();
    ASSERT_EQ(root->GetChildCount(), 3);
    EXPECT_EQ(Child(*root, 0)->GetReference(), Child(*root, 2)->GetReference());
    EXPECT_NE(Child(*root, 0)->GetReference(), Child(*root, 1)->GetReference());
    EXPECT_EQ(NameOf(*Child(*root, 0)->GetReference()), "mesh 1");
    EXPECT_TRUE(MeshOf(Child(*root, 0)->GetReference()));
}

TEST_F(GltfImport, StandsItsRootsInAContainerOfTheFilesName) {
    const Reference* root = LoadMembers(R"("nodes":[{}])");
    ASSERT_TRUE(root);
    EXPECT_EQ(NameOf(*root), "test");
    const Var metadata = root->GetProperty(Prop::kMetadata, 0);
    EXPECT_TRUE(metadata.Lookup(kFileGroup)->Lookup(kFileContainer)->ToBool());
    EXPECT_EQ(metadata.Lookup(kFileGroup)->Lookup(kFileUpAxis)->ToText(), String(L"Y"));
}

TEST_F(GltfImport, MakesNothingOfAFileWithoutNodes) {
    const Reference* root = LoadMembers("");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->GetChildCount(), 0);
}

TEST_F(GltfImport, MakesADefinitionOfItsOwnForEachGroup) {
    const Reference* root = LoadMembers(
        TriangleMeshes(1) +
        R"(,"nodes":[{"name":"pair","children":[1]},{"mesh":0},{"name":"pair","children":[3]},{"mesh":0}])");
    ASSERT_TRUE(root);
    const auto first = Child(*root, 0), second = Child(*root, 1);
    EXPECT_NE(first->GetReference(), second->GetReference()) << "equal groups are not one";
    EXPECT_EQ(NameOf(*first->GetReference()), "pair");
    EXPECT_EQ(NameOf(*first), "pair");
    EXPECT_EQ(Child(*first->GetReference(), 0)->GetReference(),
              Child(*second->GetReference(), 0)->GetReference());
}

TEST_F(GltfImport, LeavesUnnamedWhatTheFileLeavesUnnamed) {
    const Reference* root = LoadMembers(R"("nodes":[{"children":[1]},{}])");
    ASSERT_TRUE(root);
    EXPECT_TRUE(Child(*root, 0)->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_TRUE(Child(*root, 0)->GetReference()->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST_F(GltfImport, GivesANodeWithMeshAndChildrenBoth) {
    const Reference* root =
        LoadMembers(TriangleMeshes(1) +
                    R"(,"nodes":[{"mesh":0,"name":"house","children":[1]},{"mesh":0,"name":"door"}])");
    ASSERT_TRUE(root);
    const Reference* house = Child(*root, 0)->GetReference();
    const Reference* door = Child(*house, 0)->GetReference();
    EXPECT_EQ(NameOf(*house), "house");
    EXPECT_EQ(NameOf(*door), "mesh 0");
    EXPECT_NE(house, door);
    EXPECT_TRUE(MeshOf(house));
    EXPECT_EQ(MeshOf(house), MeshOf(door)) << "one object for each mesh";
}

TEST_F(GltfImport, PlacesNodesInMillimetres) {
    const Reference* root = LoadMembers(
        R"("nodes":[{"translation":[1,2,-0.5]},{"matrix":[0,1,0,0,-1,0,0,0,0,0,1,0,7,8,9,1]},{"scale":[1,1,1]}])");
    ASSERT_TRUE(root);
    EXPECT_EQ(PlaceOf(*Child(*root, 0)), Matrix4<double>::Translation(1000, 2000, -500));
    const Matrix4<double> turned = PlaceOf(*Child(*root, 1));
    EXPECT_EQ(turned.m[0][1], 1);
    EXPECT_EQ(turned.m[1][0], -1);
    EXPECT_EQ(turned.m[3][0], 7000);
    EXPECT_TRUE(Child(*root, 2)->GetProperty(Prop::kLocalMatrix, 0).IsEmpty()) << "the identity is not kept";
}

TEST_F(GltfImport, ScalesThenTurnsThenMoves) {
    const double half = std::sqrt(0.5);
    const Reference* root =
        LoadMembers(R"("nodes":[{"scale":[2,1,1],"rotation":[0,0,)" + std::to_string(half) + "," +
                    std::to_string(half) + R"(],"translation":[0,0,3]}])");
    ASSERT_TRUE(root);
    const Matrix4<double> place = PlaceOf(*Child(*root, 0));
    EXPECT_NEAR(place.m[0][0], 0, 1e-6);
    EXPECT_NEAR(place.m[0][1], 2, 1e-6) << "x goes to y, twice as long";
    EXPECT_NEAR(place.m[1][0], -1, 1e-6);
    EXPECT_EQ(place.m[3][2], 3000);
}

TEST_F(GltfImport, RefusesPlacesThatAreNone) {
    EXPECT_FALSE(LoadMembers(R"("nodes":[{"rotation":[0,0,0,0]}])"));
    EXPECT_EQ(Error(), "/nodes/0/rotation: expected a quaternion of length 1");
}

TEST_F(GltfImport, RefusesAPlaceBeyondAllNumbers) {
    EXPECT_FALSE(LoadMembers(R"("nodes":[{"translation":[1e308,0,0]}])"));
    EXPECT_EQ(Error(), "/nodes/0: the place holds numbers that are too large");
}

TEST_F(GltfImport, RefusesAMatrixThatIsNotAffine) {
    EXPECT_FALSE(LoadMembers(R"("nodes":[{"matrix":[1,0,0,1,0,1,0,0,0,0,1,0,0,0,0,1]}])"));
    EXPECT_EQ(Error(), "/nodes/0/matrix: expected 0, 0, 0, 1 as numbers 3, 7, 11 and 15");
}

TEST_F(GltfImport, KeepsExtrasAsMetadata) {
    const Reference* root = LoadMembers(
        R"("extras":{"project":"x"},"nodes":[{"extras":{"mass":1.5,"tags":["a",2,true,null]}},{"extras":"plain"}])");
    ASSERT_TRUE(root);
    const Var extras = Meta(*Child(*root, 0), MetadataKey::kExtras);
    EXPECT_EQ(*extras.Lookup(L"mass"), Var(1.5));
    const Var* tags = extras.Lookup(L"tags");
    ASSERT_EQ(tags->size(), 4);
    EXPECT_EQ(*tags->Lookup(1), Var(2));
    EXPECT_TRUE(tags->Lookup(3)->IsEmpty());
    EXPECT_EQ(Meta(*Child(*root, 1), MetadataKey::kExtras).ToText(), String(L"plain"));
    EXPECT_EQ(Meta(*root, MetadataKey::kExtras).Lookup(L"project")->ToText(), String(L"x"));
}

TEST_F(GltfImport, KeepsWhatTheAssetSays) {
    const Reference* root = Load(R"({"asset":{"version":"2.0","generator":"a pen","copyright":"all"}})");
    ASSERT_TRUE(root);
    const Var asset = Meta(*root, MetadataKey::kAsset);
    EXPECT_EQ(asset.Lookup(L"generator")->ToText(), String(L"a pen"));
    EXPECT_EQ(asset.Lookup(L"copyright")->ToText(), String(L"all"));
}

TEST_F(GltfImport, TakesTheRootsOfAllScenesAndSaysWhoseTheyAre) {
    const Reference* root = LoadMembers(
        R"("scene":1,"scenes":[{"name":"one","nodes":[2]},{"nodes":[0,2]}],"nodes":[{"name":"a"},{"name":"b"},{"name":"c"}])");
    ASSERT_TRUE(root);
    ASSERT_EQ(root->GetChildCount(), 3);
    EXPECT_EQ(NameOf(*Child(*root, 0)), "c");
    EXPECT_EQ(NameOf(*Child(*root, 1)), "a");
    EXPECT_EQ(NameOf(*Child(*root, 2)), "b") << "of no scene";
    EXPECT_EQ(Meta(*root, MetadataKey::kScene), Var(1));
    const Var scenes = Meta(*root, MetadataKey::kScenes);
    ASSERT_EQ(scenes.size(), 2);
    EXPECT_EQ(scenes.Lookup(0)->Lookup(MetadataKey::kName)->ToText(), String(L"one"));
    EXPECT_EQ(*scenes.Lookup(1)->Lookup(MetadataKey::kRoots)->Lookup(0), Var(1));
    EXPECT_EQ(*scenes.Lookup(1)->Lookup(MetadataKey::kRoots)->Lookup(1), Var(0));
}

TEST_F(GltfImport, KeepsNamesBeyondAscii) {
    const Reference* root = LoadMembers(R"("nodes":[{"name":"Schl\u00fcssel ❤"}])");
    ASSERT_TRUE(root);
    EXPECT_EQ(NameOf(*Child(*root, 0)), "Schlüssel ❤");
}

TEST_F(GltfImport, ReadsMembersInAnyOrderAndWrittenInAnyWay) {
    const Reference* root =
        LoadMembers(R"("n\u006fdes":[{"children":[1],"unknown":{"a":[{}]}},{"n\u0061me":"leaf"}])");
    ASSERT_TRUE(root) << Error();
    EXPECT_EQ(NameOf(*Child(*Child(*root, 0)->GetReference(), 0)), "leaf");
}

TEST_F(GltfImport, MakesAViewportOfEachCameraThatANodeCarries) {
    const Reference* root = LoadMembers(
        R"("cameras":[{"name":"front","type":"perspective","perspective":{"yfov":0.8,"znear":0.1}}],)"
        R"("nodes":[{"camera":0,"name":"eye"}])");
    ASSERT_TRUE(root);
    const InterfaceArray* viewports = scene_->GetViewports();
    ASSERT_TRUE(viewports);
    ASSERT_EQ(viewports->GetCount(), 1);
    auto* viewport = Cast<k3::Viewport>(viewports->Get(0));
    EXPECT_EQ(viewport->GetName(), String(L"front"));
    EXPECT_EQ(viewport->GetViewNode(), nullptr) << "nodes are not made yet";
    const Var camera = Meta(Var(viewport->GetMetadata(false)), MetadataKey::kCamera);
    EXPECT_EQ(*camera.Lookup(L"Y Field Of View"), Var(0.8));

    k3::GenerateMissing(*scene_, context_.Get());
    ASSERT_TRUE(viewport->GetViewNode());
    EXPECT_EQ(viewport->GetViewNode()->GetName(), String(L"eye"));
}

TEST_F(GltfImport, SharesTheNameOfACameraBetweenItsViewports) {
    ASSERT_TRUE(LoadMembers(R"("cameras":[{"name":"front"}],"nodes":[{"camera":0},{"camera":0}])"));
    const InterfaceArray* viewports = scene_->GetViewports();
    ASSERT_EQ(viewports->GetCount(), 2);
    EXPECT_EQ(Cast<k3::Viewport>(viewports->Get(0))->GetName().c_str(),
              Cast<k3::Viewport>(viewports->Get(1))->GetName().c_str());
}

TEST_F(GltfImport, CountsTheNameOfACameraForEachViewport) {
    const std::string name(1'000'000, 'n');
    std::string nodes;
    for (int i = 0; i < 200; ++i)
        nodes += R"(,{"camera":0})";
    EXPECT_FALSE(LoadMembers(R"("cameras":[{"name":")" + name + R"("}],"nodes":[)" + nodes.substr(1) + "]"));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kLimit);
    EXPECT_NE(Error().find("/camera: expected content"), std::string::npos) << Error();
}

/// One node with so many copies, of whose places no byte is there.
std::string CopiesWithoutBytes(int count, const char* view = "") {
    return R"("accessors":[{"componentType":5126,"type":"VEC3","count":)" + std::to_string(count) + view +
           R"(}],"meshes":[{"primitives":[]}],"nodes":[{"mesh":0,"extensions":)"
           R"({"EXT_mesh_gpu_instancing":{"attributes":{"TRANSLATION":0}}}}])";
}

TEST_F(GltfImport, CountsTheMemoryOfCopiesBeforeTheyAreMade) {
    EXPECT_FALSE(LoadMembers(CopiesWithoutBytes(200'000)));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kLimit);
    EXPECT_EQ(Error().substr(0, 42), "/nodes/0: expected content that takes at m");
}

TEST_F(GltfImport, CountsCopiesWhoseBytesAreMissingAsUnbacked) {
    ReadStructureOnly();
    const std::string buffer =
        R"("buffers":[{"uri":"gone.bin","byteLength":36}],"bufferViews":[{"buffer":0,"byteLength":36}],)";
    EXPECT_TRUE(LoadMembers(buffer + CopiesWithoutBytes(3, R"(,"bufferView":0)"))) << Error();
    EXPECT_FALSE(LoadMembers(buffer + CopiesWithoutBytes(250'001, R"(,"bufferView":0)")));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kLimit);
}

TEST_F(GltfImport, RefusesTablesOfNobodyThatAreNestedTooDeeply) {
    const auto nested = [](int levels) {
        return R"("extras":{"assembly":)" + std::string(levels, '[') + std::string(levels, ']') +
               R"(},"nodes":[{}])";
    };
    EXPECT_TRUE(LoadMembers(nested(gltf_limits::kDeepestExtras - 1))) << Error();
    EXPECT_FALSE(LoadMembers(nested(gltf_limits::kDeepestExtras)));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kLimit);
    EXPECT_EQ(Error(), "/extras: values are nested deeper than 64 levels");
}

TEST_F(GltfImport, ReadsNoBufferForTheStructureAlone) {
    ReadStructureOnly();
    const Reference* root = LoadMembers(
        R"("buffers":[{"uri":"gone.bin","byteLength":36}],"bufferViews":[{"buffer":0,"byteLength":36}],)"
        R"("accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],)"
        R"("meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],"nodes":[{"mesh":0}])");
    ASSERT_TRUE(root) << Error();
    EXPECT_TRUE(Child(*root, 0)->GetReference()->GetTarget().IsEmpty());
}

TEST_F(GltfImport, LeavesTheSceneAsItWasWhenItFails) {
    EXPECT_FALSE(LoadMembers(R"("cameras":[{}],"nodes":[{"camera":0},{"rotation":[0,0,0,0]}])"));
    EXPECT_EQ(scene_->GetChildCount(), 0);
    EXPECT_EQ(scene_->GetAllViewports()->GetCount(), 0);
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kMalformed);
}

TEST_F(GltfImport, StopsWhenCancelled) {
    context_->CancelAtReport(2);
    EXPECT_FALSE(LoadMembers(R"("nodes":[{}])"));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kCancelled);
    EXPECT_EQ(scene_->GetChildCount(), 0);
}

TEST_F(GltfImport, KnowsBinaryFilesByTheirContent) {
    const Reference* root = Load(test::GlbFile(GltfText(R"("nodes":[{"name":"a"}])"), ""), "disguised.dat");
    ASSERT_TRUE(root);
    EXPECT_EQ(NameOf(*Child(*root, 0)), "a");
}

TEST_F(GltfImport, TakesOneHundredThousandLevels) {
    ReadStructureOnly();
    std::string nodes = "{}";
    constexpr int kLevels = 100'000;
    for (int i = 1; i < kLevels; ++i)
        nodes += R"(,{"children":[)" + std::to_string(i - 1) + "]}";
    const Reference* definition = LoadMembers("\"nodes\":[" + nodes + "]");
    ASSERT_TRUE(definition);
    int levels = 0;
    for (; definition->GetChildCount() > 0; ++levels)
        definition = Child(*definition, 0)->GetReference();
    EXPECT_EQ(levels, kLevels);
}

}  // namespace
