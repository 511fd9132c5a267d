// Assemblies written and read back in one process.

#include "exporters/gltf/gltf_export.h"

#include "frame/entry.h"
#include "frame/host/api.h"
#include "frame/host/importer.h"
#include "frame/host/object3d.h"
#include "importers/gltf/file_source.h"
#include "importers/gltf/gltf_assembly_extras.h"
#include "importers/gltf/gltf_document.h"
#include "tests/support/assembly.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

namespace qn::gltf_export {
namespace {

using graph::Instance;
using graph::Reference;
using test::AssemblyBuilder;
namespace Prop = graph::Prop;

Matrix4<double> Sheared() {
    Matrix4<double> matrix;
    matrix.m[1][0] = 0.1;
    matrix.m[3][2] = 1.0 / 3;
    return matrix;
}

Matrix4<double> Moved(double x) {
    return Matrix4<double>::Translation(x, 0.1, 1e-7);
}

Counted<k3::Mesh> Triangle(float far = 1) {
    auto mesh = Make<k3::Mesh>();
    const int slot = mesh->AddSlot(nullptr);
    const std::vector<float> positions{0, 0, 0, far, 0, 0, 0, 0.1f, 0}, normals{0, 0, 1, 0, 0, 1, 0, 0, 1};
    mesh->SetGeometry(positions, normals, {0, 1, 2}, {{0, 3, static_cast<std::uint32_t>(slot)}});
    return mesh;
}

class GltfExport : public testing::Test {
protected:
    GltfExport() : module_(&K3DLLFunc) {}

    Result Write(const Assembly& assembly, const Options& options = {}) {
        return WriteGltf(assembly, path_, options, *context_);
    }
    Result Write(const test::Assembly& made, const Options& options = {}) {
        return Write(Assembly{{{made.RootInstance(), made.Root()}}}, options);
    }
    gltf::Model Model() const { return gltf::ReadDocument(*gltf::OpenFile(path_)).model; }

    /// What the importer makes of the file.
    void Read() {
        model_ = Model();
        table_ = CreateAs<graph::LookupTable>(graph::ClassKey::kLookupTable);
        std::string warning;
        EXPECT_TRUE(gltf::BuildAssembly(model_, *table_, back_, warning)) << warning;
    }
    void WriteAndRead(const test::Assembly& made) {
        const Result result = Write(made);
        ASSERT_EQ(result.outcome, Outcome::kDone) << result.error;
        Read();
    }

    test::EntryModule module_;
    test::TempFolder folder_;
    std::string path_ = (folder_.Path() / "file.glb").string();
    Counted<test::RecordingContext> context_ = Make<test::RecordingContext>();
    gltf::Model model_;
    Counted<graph::LookupTable> table_;
    gltf::AssemblyHierarchy back_;
};

Var Property(const graph::HierarchyElement& element, graph::PropEnum id) {
    return element.GetProperty(id, 0);
}

TEST_F(GltfExport, SharedDefinitionsStaySharedAndOrdered) {
    WriteAndRead(AssemblyBuilder("car").Child("chassis").Child("wheel", 4).Under("wheel", "tyre").Build());
    ASSERT_EQ(back_.root->GetChildCount(), 5);
    const Counted<Instance> first = back_.root->GetChild(1), last = back_.root->GetChild(4);
    EXPECT_EQ(first->GetReference(), last->GetReference());
    EXPECT_EQ(Property(*first->GetReference(), Prop::kName), Var(L"wheel"));
    EXPECT_EQ(first->GetReference()->GetChildCount(), 1);
    EXPECT_EQ(model_.nodes.size(), 1u + 1 + 1 + 4 * 2);
}

TEST_F(GltfExport, PropertiesOfDefinitionsAndUsesComeBackEqual) {
    const auto car = AssemblyBuilder("car").Child("wheel", 2).Build();
    Var metadata;
    metadata.At(L"$CADMetadata").At(L"UNIQUEID") = Var(std::int64_t{7});
    Reference& wheel = *car.Ref("wheel");
    Instance& use = *car.At("wheel", 1);
    wheel.SetProperty(Prop::kMetadata, metadata);
    wheel.SetProperty(Prop::kOpacity, Var(0.1f));
    wheel.SetProperty(Prop::kThirdMatrix, Var(Sheared()));
    use.SetProperty(Prop::kName, Var(L"left \x2764"));
    use.SetProperty(Prop::kLocalMatrix, Var(Moved(0.3)));
    use.SetProperty(Prop::kHidden, Var(true));
    WriteAndRead(car);

    const Counted<Instance> back = back_.root->GetChild(1);
    for (const graph::PropEnum id : {Prop::kMetadata, Prop::kOpacity, Prop::kThirdMatrix, Prop::kName})
        EXPECT_EQ(Property(*back->GetReference(), id), Property(wheel, id)) << graph::Key(id);
    for (const graph::PropEnum id : {Prop::kLocalMatrix, Prop::kHidden, Prop::kName})
        EXPECT_EQ(Property(*back, id), Property(use, id)) << graph::Key(id);
}

TEST_F(GltfExport, ServerIdsAreKnownToTheTableAgain) {
    WriteAndRead(AssemblyBuilder("car").Child("wheel", 2).WithServerIds().Build());
    EXPECT_NE(table_->FindReferenceByBsId(L"s:wheel"), nullptr);
    EXPECT_EQ(table_->FindInstanceByBsId(L"s:wheel.2"), back_.root->GetChild(1));
}

TEST_F(GltfExport, LocalIdsComeBackOnlyWhereTheyAreToBeKept) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    const Var id = Property(*car.Ref("wheel"), Prop::kLocalId);
    ASSERT_TRUE(id.IsText());
    car.Ref("wheel")->SetProperty(Prop::kKeepLocalId, Var(true));
    WriteAndRead(car);
    EXPECT_NE(table_->FindReferenceById(id.ToText()), nullptr);
    EXPECT_FALSE(gltf::ReadDocument(*gltf::OpenFile(path_))
                     .model.documentExtras.Lookup("assembly")
                     ->Lookup("uses")
                     ->Lookup(1)
                     ->Lookup("id"));
}

TEST_F(GltfExport, OverridesOfOneOccurrenceComeBack) {
    const auto car = AssemblyBuilder("car").Child("axle", 2).Under("axle", "wheel").Build();
    graph::Selector path = car.Path({"car", "axle#1", "wheel"});
    Var attributes;
    attributes.InitMap();
    attributes.At(graph::Key(Prop::kName)) = Var(L"flat tyre");
    attributes.At(graph::Key(Prop::kLocalMatrix)) = Var(Moved(5));
    path.SetAttributes(attributes);
    car.At("wheel")->AddSelector(path);
    WriteAndRead(car);

    const Counted<Instance> wheel = back_.root->GetChild(1)->GetReference()->GetChild(0);
    ASSERT_EQ(wheel->GetSelectorCount(), 1);
    const graph::Selector back = wheel->GetSelector(0);
    EXPECT_EQ(back.GetPathElementCount(), path.GetPathElementCount());
    EXPECT_EQ(back.GetProperty(Prop::kName, 0), Var(L"flat tyre"));
    EXPECT_EQ(back.GetProperty(Prop::kLocalMatrix, 0), Var(Moved(5)));
    EXPECT_FALSE(Property(*wheel, Prop::kLocalMatrix).IsSet());
}

TEST_F(GltfExport, TheNodeOfAnOverriddenOccurrenceShowsTheOverride) {
    const auto car = AssemblyBuilder("car").Child("wheel", 2).Build();
    graph::Selector path = car.Path({"car", "wheel#1"});
    Var attributes;
    attributes.InitMap();
    attributes.At(graph::Key(Prop::kName)) = Var(L"spare");
    path.SetAttributes(attributes);
    car.At("wheel", 1)->AddSelector(path);
    ASSERT_EQ(Write(car).outcome, Outcome::kDone);
    const gltf::Model model = Model();
    EXPECT_EQ(model.TextOf(model.nodes[2].name), "wheel");
    EXPECT_EQ(model.TextOf(model.nodes[3].name), "spare");
}

TEST_F(GltfExport, APathFromAnotherUseOfARootLeadsFromItsFirstRoot) {
    const auto car = AssemblyBuilder("car").Child("wheel", 2).Build();
    graph::Selector path = car.Path({"car", "wheel#1"});
    Var attributes;
    attributes.At(graph::Key(Prop::kName)) = Var(L"spare");
    path.SetAttributes(attributes);
    car.At("wheel", 1)->AddSelector(path);
    ASSERT_EQ(Write(Assembly{{{nullptr, car.Root()}, {nullptr, car.Root()}}}).outcome, Outcome::kDone);
    const gltf::Model model = Model();
    EXPECT_EQ(model.TextOf(model.nodes[3].name), "spare");
    EXPECT_EQ(model.TextOf(model.nodes[6].name), "wheel");
}

TEST_F(GltfExport, AShearedUseIsTwoNodesAndComesBackAsOne) {
    const auto car = AssemblyBuilder("car").Child("wheel").Under("wheel", "tyre").Build();
    car.At("wheel")->SetProperty(Prop::kLocalMatrix, Var(Sheared()));
    WriteAndRead(car);
    EXPECT_EQ(model_.nodes.size(), 1u + 3 + 1);
    EXPECT_EQ(Property(*back_.root->GetChild(0), Prop::kLocalMatrix), Var(Sheared()));
    EXPECT_EQ(back_.root->GetChild(0)->GetReference()->GetChildCount(), 1);
}

TEST_F(GltfExport, ATransformOfTheDefinitionIsInTheNodeAndNotInTheUse) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    car.Ref("wheel")->SetProperty(Prop::kLocalMatrix, Var(Moved(3)));
    WriteAndRead(car);
    EXPECT_EQ(model_.nodes[2].placeKind, gltf::PlaceKind::kMatrix);
    const Counted<Instance> use = back_.root->GetChild(0);
    EXPECT_FALSE(Property(*use, Prop::kLocalMatrix).IsSet());
    EXPECT_EQ(Property(*use->GetReference(), Prop::kLocalMatrix), Var(Moved(3)));
}

TEST_F(GltfExport, AFileThatIsNotLoadedIsNamedAgain) {
    const auto car = AssemblyBuilder("car").Child("engine").Build();
    car.Ref("engine")->SetTarget(Var(L"engine.stp"));
    WriteAndRead(car);
    EXPECT_EQ(back_.root->GetChild(0)->GetReference()->GetTarget(), Var(L"engine.stp"));
}

TEST_F(GltfExport, AContainerStandsAroundTheRootsAgainAndIsNoNode) {
    const auto first = AssemblyBuilder("a").Child("b").Build(), second = AssemblyBuilder("c").Build();
    const auto container = second.Table()->GetOrCreateReference(String());
    Var mark;
    mark.At(kFileGroup).At(kFileContainer) = Var(true);
    mark.At(L"kept") = Var(1);
    container->SetProperty(Prop::kMetadata, mark);
    ASSERT_EQ(
        Write({{{first.RootInstance(), first.Root()}, {nullptr, second.Root()}}, container.Get()}).outcome,
        Outcome::kDone);
    Read();
    EXPECT_EQ(model_.nodes.size(), 1u + 3);
    EXPECT_EQ(back_.top, nullptr);
    EXPECT_EQ(back_.root->GetChildCount(), 2);
    EXPECT_EQ(Property(*back_.root, Prop::kMetadata), mark);
}

TEST_F(GltfExport, RootsWithoutAContainerGetOne) {
    const auto first = AssemblyBuilder("a").Build(), second = AssemblyBuilder("b").Build();
    ASSERT_EQ(Write({{{nullptr, first.Root()}, {nullptr, second.Root()}}}).outcome, Outcome::kDone);
    Read();
    EXPECT_EQ(back_.root->GetChildCount(), 2);
    EXPECT_TRUE(Property(*back_.root, Prop::kMetadata).Lookup(kFileGroup));
}

TEST_F(GltfExport, ASceneWithoutRootsIsWritten) {
    ASSERT_EQ(Write(Assembly{}).outcome, Outcome::kDone);
    Read();
    EXPECT_EQ(back_.root->GetChildCount(), 0);
}

TEST_F(GltfExport, AMeshThatTwoDefinitionsShowIsWrittenOnce) {
    const auto car = AssemblyBuilder("car").Child("left").Child("right").Build();
    const auto mesh = Triangle();
    car.Ref("left")->SetTarget(Var(mesh));
    car.Ref("right")->SetTarget(Var(mesh));
    WriteAndRead(car);
    EXPECT_EQ(model_.meshes.size(), 1u);
    ASSERT_EQ(back_.shown.size(), 2u);
    EXPECT_EQ(back_.shown[0].mesh, back_.shown[1].mesh);
}

TEST_F(GltfExport, StructureOnlyWritesNoMeshesAndNoBuffer) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    car.Ref("wheel")->SetTarget(Var(Triangle()));
    Options options;
    options.structureOnly = true;
    ASSERT_EQ(Write(car, options).outcome, Outcome::kDone);
    const gltf::Model model = Model();
    EXPECT_TRUE(model.meshes.empty());
    EXPECT_TRUE(model.buffers.empty());
    EXPECT_EQ(model.nodes.size(), 3u);
}

TEST_F(GltfExport, AVertexThatIsNotFiniteIsRefusedByNameAndNothingIsWritten) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    car.Ref("wheel")->SetTarget(Var(Triangle(std::numeric_limits<float>::infinity())));
    const Result result = Write(car);
    EXPECT_EQ(result.outcome, Outcome::kUnsayable);
    EXPECT_NE(result.error.find("wheel"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(GltfExport, APlaceThatIsNotFiniteIsRefusedByName) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    car.At("wheel")->SetProperty(Prop::kLocalMatrix, Var(Moved(std::nan(""))));
    const Result result = Write(car);
    EXPECT_EQ(result.outcome, Outcome::kUnsayable);
    EXPECT_NE(result.error.find("wheel"), std::string::npos);
}

TEST_F(GltfExport, NormalsThatPointNowhereAreLeftOutWithAWarning) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    const auto mesh = Make<k3::Mesh>();
    mesh->SetGeometry({0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 0, 0, 0, 0, 1, 0, 0, 1}, {0, 1, 2}, {});
    car.Ref("wheel")->SetTarget(Var(mesh));
    const Result result = Write(car);
    EXPECT_EQ(result.outcome, Outcome::kDone);
    EXPECT_EQ(result.warnings.size(), 1u);
    EXPECT_EQ(Model().primitives.at(0).normals, gltf::kNone);
}

TEST_F(GltfExport, ADefinitionThatContainsItselfIsRefused) {
    const auto ring = AssemblyBuilder("a").Child("b").Under("b", "a").Build();
    EXPECT_EQ(Write(ring).outcome, Outcome::kUnsayable);
}

TEST_F(GltfExport, MoreNodesThanAllowedAreRefused) {
    Options options;
    options.mostNodes = 4;
    EXPECT_EQ(Write(AssemblyBuilder("car").Child("wheel", 4).Build(), options).outcome, Outcome::kLimit);
    EXPECT_EQ(Write(AssemblyBuilder("car").Child("wheel", 3).Build(), options).outcome, Outcome::kDone);
}

TEST_F(GltfExport, MoreBytesThanABinaryFileHoldsAreRefusedAndTheOldFileStays) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    folder_.Write("file.glb", "old");
    Options options;
    options.mostBytes = 200;
    EXPECT_EQ(Write(car, options).outcome, Outcome::kLimit);
    EXPECT_EQ(test::ReadBytes(path_), "old");
}

TEST_F(GltfExport, MeshesThatDoNotFitIntoABinaryFileAreRefusedAtOnce) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    car.Ref("wheel")->SetTarget(Var(Triangle()));
    Options options;
    options.mostBytes = 60;
    const Result result = Write(car, options);
    EXPECT_EQ(result.outcome, Outcome::kLimit);
    EXPECT_NE(result.error.find(".gltf"), std::string::npos) << result.error;
}

TEST_F(GltfExport, ACancelledExportLeavesNothing) {
    context_->CancelAtReport(1);
    const auto wide = AssemblyBuilder("root").Child("part", 20'000).Build();
    EXPECT_EQ(Write(wide).outcome, Outcome::kCancelled);
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Path()));
}

TEST_F(GltfExport, ValuesNestedTooDeeplyAreRefused) {
    const auto car = AssemblyBuilder("car").Build();
    Var nested(1);
    for (int level = 0; level < 100; ++level) {
        Var outer;
        outer.At(L"inner") = nested;
        nested = outer;
    }
    car.Root()->SetProperty(Prop::kMetadata, nested);
    EXPECT_EQ(Write(car).outcome, Outcome::kLimit);
}

}  // namespace
}  // namespace qn::gltf_export
