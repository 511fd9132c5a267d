#include "engine/runtime/byte_stream.h"
#include "tests/graph/file_fixture.h"

#include <gmock/gmock.h>

namespace qn::test {

namespace {

using FileBinding = FileFixture;
using testing::Contains;
using testing::HasSubstr;

Counted<ByteStream> StreamOf(const String& path) {
    return ByteStream::OpenFile(path);
}

}  // namespace

TEST_F(FileBinding, AnExternalReferenceNeedsAFileName) {
    EXPECT_FALSE(table->LoadExternalReference(nullptr, Var(), L"e1"));
    const auto reference = MakeReference(table.Get());
    EXPECT_FALSE(table->LoadExternalReference(reference.Get(), Var(), L"e1"));
    const Var object(Make<k3::Object3D>());
    reference->SetTarget(object);
    EXPECT_FALSE(table->LoadExternalReference(reference.Get(), Var(), L"e1"));
    EXPECT_EQ(reference->GetTarget(), object);
}

TEST_F(FileBinding, AnEmptyFileNameIsConsumed) {
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(Var(L""));
    EXPECT_FALSE(table->LoadExternalReference(reference.Get(), Var(), L"e1"));
    EXPECT_TRUE(reference->GetTarget().IsEmpty());
}

TEST_F(FileBinding, AFileNameIsConsumedThoughNothingCouldBeLoaded) {
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(Var(SaveFile()));
    table->SetSceneAndContext(nullptr, nullptr);
    EXPECT_FALSE(table->LoadExternalReference(reference.Get(), Var(), L"e1"));
    EXPECT_TRUE(reference->GetTarget().IsEmpty());
}

TEST_F(FileBinding, TheNameOfAMissingFileStaysWhereAnotherDefinitionTakesItsPlace) {
    const auto reference = MakeReference(table.Get());
    const Var name(folder.File("missing.qn"));
    reference->SetTarget(name);
    const auto loaded = table->LoadExternalReference(reference.Get(), Var(), L"another");
    ASSERT_TRUE(loaded);
    EXPECT_NE(loaded.Get(), reference.Get());
    EXPECT_TRUE(loaded->GetTarget().IsEmpty());
    EXPECT_EQ(reference->GetTarget(), name);
}

TEST_F(FileBinding, TheFileNameOfALoadedReferenceIsConsumed) {
    FillWithHierarchy();
    part->SetTarget(Var(L"inner.qn"));
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(Var(SaveFile()));
    const auto loaded = table->LoadExternalReference(reference.Get(), Var(), L"part");
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->GetTarget().IsEmpty());
    EXPECT_EQ(loaded->GetChildCount(), 1);
}

TEST_F(FileBinding, AnExternalReferenceCarriesItsLoadOptions) {
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(Var(SaveFile()));
    reference->SetProperty(Prop::kLoadOptions, MapOf(L"tolerance", Var(1)));
    context->SetOption("prevent_reinstancing", 1);  // the options stay
    table->LoadExternalReference(reference.Get(), Var(), L"part");
    EXPECT_EQ(context->GetParamVar(0x9c), MapOf(L"tolerance", Var(1)));
}

TEST_F(FileBinding, ResolvingAFileTargetLoadsItOnce) {
    FillWithHierarchy();
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(Var(SaveFile()));
    const auto loaded = reference->ResolveTarget(Var());
    ASSERT_TRUE(loaded);
    const int calls = SimpleFactory::calls;
    EXPECT_EQ(reference->ResolveTarget(Var()), loaded.Get());
    EXPECT_EQ(SimpleFactory::calls, calls);
}

TEST_F(FileBinding, AKnownServerIdWithContentIsNotLoaded) {
    const auto known = table->GetOrCreateBsReference(L"part", L"s:1");
    known->AddChild(MakeInstance().Get());
    EXPECT_EQ(table->GetOrLoadFile(L"/nowhere.qn", L"part", L"s:1", Var(), Guid()), known.Get());
    EXPECT_TRUE(context->Texts().empty());
}

TEST_F(FileBinding, AnEmptyReferenceOfTheServerIdIsFilledByTheLoad) {
    FillWithHierarchy();
    part->SetProperty(Prop::kBsId, Var(L"s:1"));
    const auto known = table->GetOrCreateBsReference(L"part", L"s:1");
    const auto loaded = table->GetOrLoadFile(SaveFile(), L"part", L"s:1", Var(), Guid());
    EXPECT_EQ(loaded, known.Get());
    EXPECT_EQ(loaded->GetChildCount(), 1);
}

TEST_F(FileBinding, ALeafOfTheServerIdThatNobodyAskedForCountsAsContent) {
    FillWithHierarchy();
    part->SetProperty(Prop::kBsId, Var(L"s:1"));
    const auto known = table->GetOrCreateBsReference(L"other", L"s:1");
    const auto loaded = Load(SaveFile(), L"part");
    EXPECT_EQ(loaded, known.Get());
    EXPECT_EQ(loaded->GetChildCount(), 0);
}

TEST_F(FileBinding, WithoutServerIdTheFileIsLoaded) {
    FillWithHierarchy();
    const auto loaded = table->GetOrLoadFile(SaveFile(), L"part", String(), Var(), Guid());
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetProperty(Prop::kLocalId, 0), Var(L"part_e1"));
    EXPECT_EQ(table->FindReferenceById(L"part"), loaded.Get());
    EXPECT_EQ(loaded->GetChildCount(), 1);
}

TEST_F(FileBinding, ReloadingFillsTheEmptyReferenceAndKeepsItsLiveUses) {
    FillWithHierarchy();
    part->SetProperty(Prop::kBsId, Var(L"s:1"));
    const auto reference = table->GetOrCreateBsReference(L"part", L"s:1");
    const auto use = reference->CreateInstance();
    reference->CreateInstance();  // dead at once
    reference->SetTarget(Var(SaveFile()));
    reference->ReloadExternalTarget();
    EXPECT_EQ(reference->GetChildCount(), 1);
    ASSERT_EQ(reference->GetInstanceCount(), 1);
    EXPECT_EQ(reference->GetInstance(0), use.Get());
}

TEST_F(FileBinding, ReloadingMovesTheUsesToTheReferenceThatTheLoadGave) {
    FillWithHierarchy();
    part->SetProperty(Prop::kBsId, Var(L"s:1"));
    const auto present = table->GetOrCreateBsReference(L"other", L"s:1");
    present->AddChild(MakeInstance().Get());
    const auto reference = table->GetOrCreateReference(L"part");
    const auto use = reference->CreateInstance();
    reference->SetTarget(Var(SaveFile()));
    reference->ReloadExternalTarget();
    EXPECT_EQ(use->GetReference(), present.Get());
    EXPECT_EQ(present->GetInstanceCount(), 1);
}

TEST_F(FileBinding, AReloadThatBringsNothingLetsNoLaterLoadFillTheReference) {
    FillWithHierarchy();
    part->SetProperty(Prop::kBsId, Var(L"s:1"));
    const auto reference = table->GetOrCreateBsReference(L"other", L"s:1");
    for (const String& name : {String(), folder.File("missing.qn")}) {
        reference->SetTarget(Var(name));
        reference->ReloadExternalTarget();
    }
    const auto loaded = Load(SaveFile(), L"part");
    EXPECT_EQ(loaded, reference.Get());
    EXPECT_EQ(loaded->GetChildCount(), 0);
}

TEST_F(FileBinding, OnlyAFileNameIsReloaded) {
    const auto reference = table->GetOrCreateReference(L"part");
    const auto use = reference->CreateInstance();
    reference->ReloadExternalTarget();
    EXPECT_EQ(reference->GetInstance(0), use.Get());
    EXPECT_TRUE(context->Texts().empty());
}

TEST_F(FileBinding, MergingAKnownServerIdWithContentReadsNothing) {
    const auto known = table->GetOrCreateBsReference(L"part", L"s:1");
    known->AddChild(MakeInstance().Get());
    const auto stream = StreamOf(SaveFile());
    const std::size_t before = stream->Remaining();
    EXPECT_EQ(table->MergeStream(stream.Get(), L"part", L"s:1"), known.Get());
    EXPECT_EQ(stream->Remaining(), before);
}

TEST_F(FileBinding, MergingWithoutStreamGivesThePlaceholderOrNull) {
    const auto placeholder = table->MergeStream(nullptr, L"part", L"s:1");
    ASSERT_TRUE(placeholder);
    EXPECT_EQ(table->FindReferenceByBsId(L"s:1"), placeholder.Get());
    EXPECT_FALSE(table->MergeStream(nullptr, L"part", String()));
}

TEST_F(FileBinding, MergingTurnsTheNodesIntoAReferenceAndRemovesThem) {
    AddNode(*top, L"door");
    const auto merged = table->MergeStream(StreamOf(SaveFile()).Get(), L"part", String());
    ASSERT_TRUE(merged);
    EXPECT_EQ(merged->GetChildCount(), 1);
    EXPECT_EQ(merged->GetProperty(Prop::kLocalId, 0), Var(L"part"));
    EXPECT_EQ(scene->GetChildCount(), 0);
}

TEST_F(FileBinding, MergingGivesTheServerIdToTheInstanceOfTheNode) {
    FillWithHierarchy();
    const auto merged = table->MergeStream(StreamOf(SaveFile()).Get(), L"part", L"s:1");
    ASSERT_TRUE(merged);
    EXPECT_EQ(merged->GetChildCount(), 1);
}

TEST_F(FileBinding, MergingMovesTheUsesOfThePlaceholder) {
    FillWithHierarchy();
    const auto placeholder = table->GetOrCreateBsReference(L"part", L"s:1");
    const auto use = placeholder->CreateInstance();
    const auto merged = table->MergeStream(StreamOf(SaveFile()).Get(), L"part", L"s:1");
    ASSERT_NE(merged, placeholder.Get());
    ASSERT_EQ(merged->GetInstanceCount(), 1);
    EXPECT_EQ(merged->GetInstance(0), use.Get());
    EXPECT_EQ(use->GetReference(), merged.Get());
}

TEST_F(FileBinding, AFileIsMergedByItsName) {
    AddNode(*top, L"door");
    const auto merged = table->MergeFile(SaveFile(), L"part", String());
    ASSERT_TRUE(merged);
    EXPECT_EQ(merged->GetChildCount(), 1);
    EXPECT_FALSE(table->MergeFile(folder.File("missing.qn"), L"part", String()));
}

}  // namespace qn::test
