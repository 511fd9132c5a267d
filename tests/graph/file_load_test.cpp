#include "tests/graph/file_fixture.h"

#include <gmock/gmock.h>

namespace qn::test {

namespace {

using FileLoading = FileFixture;
using testing::Contains;

Matrix4<double> Shifted() {
    Matrix4<double> matrix;
    matrix.m[3][0] = 5.0;
    return matrix;
}

/// A module that loads a file while another load is under way.
struct Reentry {
    static inline LookupTableImpl* table = nullptr;
    static inline String file;
    static inline Counted<Reference> result;

    static std::uintptr_t Entry(unsigned code, void*, void*) {
        if (code == ModuleCode::kRegister) return 1;
        if (code != ModuleCode::kPostLoad || !table) return 0;
        LookupTableImpl* once = std::exchange(table, nullptr);
        result = once->LoadFileIntoScene(file, L"inner", Var(), Guid());
        return 1;
    }
};

}  // namespace

TEST_F(FileLoading, NeedsFileSceneAndContext) {
    EXPECT_FALSE(Load(String(), L"part"));
    const String path = SaveFile();
    table->SetSceneAndContext(nullptr, context.Get());
    EXPECT_FALSE(Load(path, L"part"));
    table->SetSceneAndContext(scene.Get(), nullptr);
    EXPECT_FALSE(Load(path, L"part"));
}

TEST_F(FileLoading, AMissingFileGivesAMessageAndAnEmptyReference) {
    const String path = folder.File("missing.qn");
    const auto loaded = Load(path, L"part");
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetProperty(Prop::kLocalId, 0), Var(L"part"));
    EXPECT_EQ(loaded->GetChildCount(), 0);
    EXPECT_EQ(scene->GetChildCount(), 0);
    const std::string message = "File (" + path.ToUtf8() + ") could not be loaded into the scene.";
    EXPECT_THAT(context->Texts(), Contains(message));
    EXPECT_EQ(context->Levels().back(), 3);
}

TEST_F(FileLoading, WithReinstancingPreventedNodesAndOptionsStay) {
    FillWithHierarchy();
    AddViewport(L"front");
    context->SetOption("prevent_reinstancing", 1);
    const Var options = MapOf(L"tolerance", Var(1));
    const auto loaded = LoadFile(L"part", options);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetChildCount(), 0);
    EXPECT_EQ(scene->GetChildCount(), 1);
    EXPECT_EQ(context->GetParamVar(0x9c), options);
    EXPECT_TRUE(Loaded(L"front")->GetParamVar(0x8112).IsEmpty());
}

TEST_F(FileLoading, ANodeThatStopsInstancingStays) {
    FillWithHierarchy();
    top->SetFlags(NodeFlag::kStopsInstancing);
    const auto loaded = LoadFile(L"part", MapOf(L"tolerance", Var(1)));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetChildCount(), 0);
    EXPECT_EQ(scene->GetChildCount(), 1);
    EXPECT_TRUE(context->GetParamVar(0x9c).IsEmpty());
}

TEST_F(FileLoading, FormerOptionsComeBack) {
    const Var former = MapOf(L"tolerance", Var(1));
    context->SetParamVar(0x9c, former);
    LoadFile(L"part", MapOf(L"tolerance", Var(2)));
    EXPECT_EQ(context->GetParamVar(0x9c), former);
}

TEST_F(FileLoading, FormerOptionsThatAreNoMapAreLost) {
    context->SetParamVar(0x9c, Var(1));
    LoadFile(L"part", MapOf(L"tolerance", Var(2)));
    EXPECT_TRUE(context->GetParamVar(0x9c).IsEmpty());
}

TEST_F(FileLoading, OptionsThatAreNoMapChangeNothing) {
    context->SetParamVar(0x9c, Var(1));
    LoadFile(L"part", Var(2));
    EXPECT_EQ(context->GetParamVar(0x9c), Var(1));
}

TEST_F(FileLoading, ChildrenMoveBelowTheReferenceOfTheId) {
    FillWithHierarchy();
    const auto loaded = LoadFile();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(table->FindReferenceById(L"part"), loaded.Get());
    ASSERT_EQ(loaded->GetChildCount(), 1);
    EXPECT_EQ(loaded->GetChild(0)->GetParentReference(), loaded.Get());
    EXPECT_EQ(loaded->GetChild(0)->GetReference()->GetChildCount(), 1);
    EXPECT_EQ(scene->GetChildCount(), 0);
    EXPECT_EQ(table->loadedReferences.count(Counted<Reference>(loaded.Get())), 1u);
}

TEST_F(FileLoading, PropertiesAndTargetComeFromTheLoadedReference) {
    FillWithHierarchy();
    part->SetProperty(Prop::kName, Var(L"engine"));
    part->SetProperty(Prop::kBsId, Var(L"s:1"));
    part->SetTarget(Var(Make<k3::Object3D>()));
    const auto loaded = LoadFile();
    EXPECT_EQ(loaded->GetProperty(Prop::kName, 0), Var(L"engine"));
    EXPECT_EQ(table->FindReferenceByBsId(L"s:1"), loaded.Get());
    EXPECT_NE(Cast<k3::Object3D>(loaded->GetTarget()), nullptr);
}

TEST_F(FileLoading, AMovedTopNodeGivesTheReferenceItsMatrix) {
    FillWithHierarchy();
    const Matrix4<double> matrix = Shifted();
    top->SetMatrix(&matrix, 0);
    EXPECT_EQ(LoadFile()->GetProperty(Prop::kLocalMatrix, 0), Var(matrix));
}

TEST_F(FileLoading, AnUnmovedTopNodeGivesNone) {
    FillWithHierarchy();
    EXPECT_TRUE(LoadFile()->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
}

TEST_F(FileLoading, TheFlagOfTheTopNodeBecomesAProperty) {
    FillWithHierarchy();
    top->SetFlags(NodeFlag::kFlag8000);
    EXPECT_EQ(LoadFile()->GetProperty(Prop::kFlag8000, 0), Var(true));
}

TEST_F(FileLoading, MetadataOfReferenceAndFileAreMerged) {
    FillWithHierarchy();
    part->GetMetadata(true)->At(Var(L"a")) = Var(1);
    top->GetMetadata(true)->At(Var(L"b")) = Var(2);
    const auto known = table->GetOrCreateReference(L"part");
    known->GetMetadata(true)->At(Var(L"c")) = Var(3);
    const auto loaded = LoadFile();
    Var expected = MapOf(L"c", Var(3));
    expected.At(L"a") = Var(1);
    expected.At(L"b") = Var(2);
    EXPECT_EQ(loaded->GetProperty(Prop::kMetadata, 0), expected);
}

TEST_F(FileLoading, MetadataOfTheFileAloneAreNotTaken) {
    FillWithHierarchy();
    top->GetMetadata(true)->At(Var(L"b")) = Var(2);
    EXPECT_TRUE(LoadFile()->GetProperty(Prop::kMetadata, 0).IsEmpty());
}

TEST_F(FileLoading, NewIdsStandUnderTheIdOfTheReference) {
    FillWithHierarchy();
    const auto loaded = LoadFile();
    EXPECT_EQ(loaded->GetChild(0)->GetProperty(Prop::kLocalId, 0), Var(L"part_n1"));
    EXPECT_TRUE(table->GetCurrentIdPrefix().IsEmpty());
}

TEST_F(FileLoading, PathsLoseTheFilesRoot) {
    FillWithHierarchy();
    door->AddLocalSelector(PathOf({root.Get(), door.Get()}));
    const auto child = CountedCast<InstanceImpl>(LoadFile()->GetChild(0));
    ASSERT_GE(child->GetSelectorCount(), 1);
    const auto* selector = Cast<PersistentSelectorImpl>(*child->Selectors().Lookup(0));
    EXPECT_EQ(Targets(*selector), std::vector<Instance*>{child.Get()});
}

TEST_F(FileLoading, APathOfTheRootAloneStays) {
    FillWithHierarchy();
    door->AddLocalSelector(PathOf({root.Get()}));
    const auto child = CountedCast<InstanceImpl>(LoadFile()->GetChild(0));
    const auto* selector = Cast<PersistentSelectorImpl>(*child->Selectors().Lookup(0));
    EXPECT_EQ(selector->path.size(), 1u);
}

TEST_F(FileLoading, TheSameServerIdGivesTheFirstReferenceAgain) {
    FillWithHierarchy();
    part->SetProperty(Prop::kBsId, Var(L"s:1"));
    const auto first = LoadFile(L"part");
    const auto second = LoadFile(L"again");
    EXPECT_EQ(second, first.Get());
    EXPECT_EQ(first->GetChildCount(), 1);
    EXPECT_EQ(scene->GetChildCount(), 0);
    EXPECT_FALSE(table->FindReferenceById(L"again"));
}

TEST_F(FileLoading, WithoutGeneratorTheNodesTellTheDifferences) {
    FillWithHierarchy();
    doorNode->SetFlags(NodeFlag::kHidden);
    const auto child = CountedCast<InstanceImpl>(LoadFile()->GetChild(0));
    const auto* selector = Cast<PersistentSelectorImpl>(*child->Selectors().Lookup(0));
    ASSERT_NE(selector, nullptr);
    EXPECT_EQ(selector->GetProperty(Prop::kHidden, 0), Var(true));
}

TEST_F(FileLoading, WithoutTableOfItsOwnTheFileIsTurnedIntoAHierarchy) {
    FillWithHierarchy();
    LoadFile();
    EXPECT_EQ(SimpleFactory::calls, 3);
}

TEST_F(FileLoading, WithGeneratorOnlyDifferencesAreReadAndTheGeneratorGoes) {
    FillWithHierarchy();
    const auto generator = Make<SimpleGenerator>();
    k3::Generator::Attach(top, generator.Get());
    doorNode->SetFlags(NodeFlag::kHidden);
    const auto loaded = LoadFile();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(SimpleFactory::calls, 0);
}

TEST_F(FileLoading, TheFilterHidesWhatItLeavesOut) {
    FillWithHierarchy();
    doorNode->SetName(L"");
    Var filter;
    filter.At(0) = MapOf(L"none", Var(1));
    filter.At(1) = MapOf(L"none", Var(1));
    context->SetParamVar(Param::kIdFilter, filter);
    const auto child = CountedCast<InstanceImpl>(LoadFile()->GetChild(0));
    const auto* selector = Cast<PersistentSelectorImpl>(*child->Selectors().Lookup(0));
    ASSERT_NE(selector, nullptr);
    EXPECT_EQ(selector->GetProperty(Prop::kHidden, 0), Var(true));
}

TEST_F(FileLoading, ARootWithoutReferenceGivesNullAndLeavesTheSceneAsItWas) {
    root = MakeInstance();
    top->SetParamObject(Param::kInstance, root.Get());
    EXPECT_FALSE(LoadFile());
    EXPECT_EQ(scene->GetChildCount(), 0);
}

TEST_F(FileLoading, AFileOfNodesAloneBecomesAReference) {
    AddNode(*top, L"door");
    const auto loaded = LoadFile();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetProperty(Prop::kLocalId, 0), Var(L"part"));
    EXPECT_EQ(loaded->GetChildCount(), 1);
    EXPECT_EQ(loaded->GetInstanceCount(), 0);
    EXPECT_EQ(scene->GetChildCount(), 0);
    EXPECT_EQ(table->loadedReferences.count(Counted<Reference>(loaded.Get())), 1u);
}

TEST_F(FileLoading, AFileThatIsLoadedWithinItselfCountsAsMissing) {
    FillWithHierarchy();
    Reentry::file = SaveFile();
    Reentry::table = table.Get();
    const EntryModule module(&Reentry::Entry);
    const auto loaded = Load(Reentry::file, L"part");
    ASSERT_TRUE(Reentry::result);
    EXPECT_EQ(Reentry::result->GetChildCount(), 0);
    EXPECT_EQ(loaded->GetChildCount(), 1);
    EXPECT_EQ(context->Texts().size(), 1u);
    Reentry::result.Reset();
}

}  // namespace qn::test
