#include "importers/step/step_importer.h"

#include "construction/hierarchy_generator.h"
#include "engine/runtime/engine.h"
#include "engine/runtime/module_folder.h"
#include "frame/host/object3d.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/reference.h"
#include "importers/step/step_metadata.h"
#include "tests/importers/step_text.h"
#include "tests/support/data_dir.h"
#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace {

using namespace qn;
using namespace qn::step;
using graph::Instance;
using graph::Reference;
namespace Prop = graph::Prop;

/// Loads files as the tool does, through the modules of the build.
class StepImport : public testing::Test {
protected:
    void SetUp() override {
        SetModuleFolder(String::FromUtf8(ASSEMBLY_LIB_DIR));
        String reason;
        ASSERT_TRUE(StartEngineWithAssembly(&reason)) << reason.ToUtf8();
    }

    void SetOption(const wchar_t* key, const Var& value) {
        options_.At(key) = value;
        context_->SetParamVar(qn::Param::kLoadOptions, options_);
    }

    k3::Node* Load(const String& file) { return scene_->LoadFile(file.c_str(), context_.Get(), 0, Guid()); }
    /// The definition at the top of the file; null without one.
    Reference* LoadRoot(const String& file) {
        k3::Node* top = Load(file);
        auto* generator = top ? Cast<graph::HierarchyGenerator>(k3::Generator::Get(top)) : nullptr;
        return generator ? generator->GetRootReference() : nullptr;
    }
    Reference* LoadText(const StepText& text) { return LoadRoot(folder_.Write("test.stp", text.Text())); }
    String Data(const std::string& file) { return String::FromUtf8((qn::test::DataDir() / file).string()); }

    test::TempFolder folder_;
    Counted<k3::Scene> scene_ = Make<k3::Scene>();
    Counted<test::RecordingContext> context_ = test::MakeContext();
    Var options_;
};

std::string NameOf(const graph::HierarchyElement& element) {
    return element.GetProperty(Prop::kName, 0).ToText().ToUtf8();
}

/// A value of the importer's metadata group by its key.
Var Meta(const graph::HierarchyElement& element, const wchar_t* key) {
    const Var metadata = element.GetProperty(Prop::kMetadata, 0);
    const Var* group = metadata.IsMap() ? metadata.Lookup(kMetadataGroup) : nullptr;
    const Var* value = group ? group->Lookup(key) : nullptr;
    return value ? *value : Var();
}

StepText Car() {
    StepText file;
    const auto car = file.Definition("car");
    const auto wheel = file.Definition("wheel");
    file.Use("1", car, wheel, file.Axes(10, 0, 0));
    file.Use("2", car, wheel, file.Axes(-10, 0, 0));
    return file;
}

TEST_F(StepImport, SharesOneDefinitionBetweenItsUses) {
    const Reference* root = LoadText(Car());
    ASSERT_TRUE(root);
    EXPECT_EQ(NameOf(*root), "car");
    ASSERT_EQ(root->GetChildCount(), 2);
    EXPECT_EQ(root->GetChild(0)->GetReference(), root->GetChild(1)->GetReference());
    EXPECT_EQ(NameOf(*root->GetChild(1)), "2 name");
    Matrix4<double> matrix;
    ASSERT_TRUE(root->GetChild(1)->GetProperty(Prop::kLocalMatrix, 0).copy_to(matrix));
    EXPECT_EQ(matrix.m[3][0], -10);
}

TEST_F(StepImport, KeepsIdsAsExternalIds) {
    const Reference* root = LoadText(Car());
    ASSERT_TRUE(root);
    const Var ids = root->GetProperty(Prop::kExternalIds, 0);
    const Var* entry = ids.Lookup(kExternalSystem);
    ASSERT_TRUE(entry && entry->IsArray());
    EXPECT_EQ(entry->ValueAt(0).ToText().ToUtf8(), "car id");
    EXPECT_EQ(entry->ValueAt(1).ToText().ToUtf8(), "A");
    const Var useIds = root->GetChild(0)->GetProperty(Prop::kExternalIds, 0);
    EXPECT_EQ(useIds.Lookup(kExternalSystem)->ValueAt(0).ToText().ToUtf8(), "1");
}

TEST_F(StepImport, NotesSchemaAndUnitAtTheRoot) {
    const Reference* root = LoadText(Car());
    ASSERT_TRUE(root);
    double unit = 0;
    EXPECT_TRUE(Meta(*root, MetadataKey::kLengthUnit).copy_to(unit));
    EXPECT_DOUBLE_EQ(unit, 0.001);
    EXPECT_EQ(Meta(*root, MetadataKey::kSchema).ValueAt(0).ToText().ToUtf8(), "AUTOMOTIVE_DESIGN");
}

TEST_F(StepImport, PutsSeveralRootsIntoAContainer) {
    StepText file;
    file.Definition("one");
    file.Definition("two");
    const Reference* root = LoadText(file);
    ASSERT_TRUE(root);
    ASSERT_EQ(root->GetChildCount(), 2);
    EXPECT_EQ(NameOf(*root->GetChild(1)->GetReference()), "two");
    const Var metadata = root->GetProperty(Prop::kMetadata, 0);
    ASSERT_TRUE(metadata.Lookup(kFileGroup));
    EXPECT_TRUE(metadata.Lookup(kFileGroup)->Lookup(kFileContainer)->ToBool());
}

TEST_F(StepImport, KeepsPropertiesApartThatShareAName) {
    StepText file;
    const auto part = file.Definition("part");
    for (const char* value : {"1.5", "2.5"}) {
        const auto property =
            file.Add("PROPERTY_DEFINITION('material property','',#" + std::to_string(part.definition) + ")");
        const auto item =
            file.Add("MEASURE_REPRESENTATION_ITEM('density',REAL(" + std::string(value) + "),$)");
        const auto values = file.Add("REPRESENTATION('density',(#" + std::to_string(item) + "),$)");
        file.Add("PROPERTY_DEFINITION_REPRESENTATION(#" + std::to_string(property) + ",#" +
                 std::to_string(values) + ")");
    }
    const Reference* root = LoadText(file);
    ASSERT_TRUE(root);
    const Var properties = Meta(*root, MetadataKey::kProperties);
    const Var* group = properties.Lookup(L"material property");
    ASSERT_TRUE(group);
    ASSERT_TRUE(group->Lookup(L"density") && group->Lookup(L"density (2)"));
    double second = 0;
    group->Lookup(L"density (2)")->copy_to(second);
    EXPECT_EQ(second, 2.5);
}

TEST_F(StepImport, NamesFileAndCauseOfADamagedFile) {
    const String file = folder_.Write("kaputt ä.stp", "ISO-10303-21;\nHEADER;\nENDSEC;\nDATA;\n#1=X(");
    EXPECT_FALSE(Load(file));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kMalformed);
    EXPECT_EQ(context_->GetFailureText(), file + L": line 5: the file ends inside #1");
    EXPECT_EQ(scene_->GetFirstChild(), nullptr);
}

TEST_F(StepImport, LeavesTheSceneAsItWasWhenItIsCancelled) {
    context_->CancelAtReport(1);
    EXPECT_FALSE(Load(folder_.Write("test.stp", Car().Text())));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kCancelled);
    EXPECT_EQ(scene_->GetFirstChild(), nullptr);
}

TEST_F(StepImport, ReadsNoGeometryWhereOnlyStructureIsWanted) {
    if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
    SetOption(LoadOption::kStructureOnly, Var(true));
    const Reference* root = LoadRoot(Data("small/red_cube_blue_cylinder.step"));
    ASSERT_TRUE(root);
    EXPECT_TRUE(root->GetChild(0)->GetReference()->GetTarget().IsEmpty());
}

TEST_F(StepImport, MakesTheMeshTheTargetOfItsDefinition) {
    if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
    const Reference* root = LoadRoot(Data("apex-robot/apexrobot-assembly.step"));
    ASSERT_TRUE(root);
    int assembliesWithMesh = 0;
    std::vector<const Reference*> open{root};
    while (!open.empty()) {
        const Reference* reference = open.back();
        open.pop_back();
        const auto* mesh = Cast<k3::Mesh>(reference->GetTarget());
        if (mesh) {
            EXPECT_GT(mesh->GetIndices().size(), 0u);
            EXPECT_GT(mesh->GetSlotCount(), 0);
        }
        assembliesWithMesh += mesh && reference->GetChildCount() > 0;
        for (int i = 0; i < reference->GetChildCount(); ++i)
            open.push_back(reference->GetChild(i)->GetReference());
    }
    EXPECT_EQ(assembliesWithMesh, 2);
}

TEST_F(StepImport, TakesTheToleranceFromTheLoadOptions) {
    if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
    const auto triangles = [&](double tolerance) {
        SetOption(LoadOption::kTolerance, Var(tolerance));
        SetOption(LoadOption::kAngle, Var(60));
        const Reference* root = LoadRoot(Data("small/red_cube_blue_cylinder.step"));
        std::size_t count = 0;
        for (int i = 0; i < root->GetChildCount(); ++i)
            count += Cast<k3::Mesh>(root->GetChild(i)->GetReference()->GetTarget())->GetIndices().size();
        return count;
    };
    EXPECT_GT(triangles(0.01), triangles(100));
}

}  // namespace
