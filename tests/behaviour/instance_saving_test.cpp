#include "tests/behaviour/reloading_support.h"
#include "tests/support/failing_stream.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr int kProperties = 0x1000, kReference = 0x1001, kSelectors = 0x1002;

TEST(InstanceSaving, WritesPropertiesThenDefinitionThenSelectors) {
    const auto instance = NewReference()->CreateInstance();
    instance->SetProperty(Prop::kName, Var(L"n"));
    instance->SetParamVar(5, Var(1));
    instance->AddLocalSelector(PathOf({instance.Get()}));
    const auto tape = TapeOf(*instance);
    EXPECT_EQ(tape->OwnIds(), (std::vector<int>{kProperties, kReference, kSelectors}));
    for (const int id : {kProperties, kReference, kSelectors})
        EXPECT_TRUE(tape->Find(id)->isObject);
    EXPECT_LT(tape->Chunks().front().id, 0x1000) << "what the base holds comes first";
    EXPECT_TRUE(Cast<VarMap>(tape->ObjectAt(kProperties)));
    EXPECT_EQ(Cast<Reference>(tape->ObjectAt(kReference)), instance->GetReference());
    EXPECT_TRUE(Cast<VarMap>(tape->ObjectAt(kSelectors)));
}

TEST(InstanceSaving, WritesNeitherDefinitionNorSelectorsThatAreMissing) {
    EXPECT_EQ(TapeOf(*NewInstance())->OwnIds(), std::vector<int>{kProperties});
}

TEST(InstanceSaving, WritesNoSelectorsAfterTheLastWasRemoved) {
    const auto instance = NewInstance();
    instance->AddLocalSelector(PathOf({instance.Get()}));
    instance->RemoveSelector(0);
    EXPECT_EQ(TapeOf(*instance)->Find(kSelectors), nullptr);
}

TEST(InstanceSaving, EndsWithTheResultOfABaseThatFails) {
    const auto instance = NewReference()->CreateInstance();
    instance->SetParamVar(5, Var(1));
    const auto stream = Make<FailingStream>();
    stream->FailBeginChunk(1);
    stream->FailWrite(1);
    stream->FailObject(1);
    EXPECT_LT(ToInt(instance->Save(stream.Get(), MakeContext().Get())), 1);
    for (const std::string& line : stream->Log())
        EXPECT_EQ(line.find("object 100"), std::string::npos) << line;
}

TEST(InstanceSaving, LeavesTheLocalIdOutAndKeepsIt) {
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kLocalId, Var(L"n1"));
    const Var saved = SavedMap(*instance, kProperties);
    EXPECT_EQ(saved.Lookup(Key(Prop::kLocalId)), nullptr);
    EXPECT_EQ(instance->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
}

TEST(InstanceSaving, LosesTheLocalIdThroughAFile) {
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kLocalId, Var(L"n1"));
    const auto loaded = Reloaded(*instance);
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->GetProperty(Prop::kLocalId, 0).IsEmpty());
}

TEST(InstanceSaving, WritesTheLocalIdIfItIsMarkedWithAnyValue) {
    for (const Var& mark : {Var(true), Var(false), Var(0), Var(L"")}) {
        const auto instance = NewInstance();
        instance->SetProperty(Prop::kLocalId, Var(L"n1"));
        instance->SetProperty(Prop::kKeepLocalId, mark);
        const auto loaded = Reloaded(*instance);
        ASSERT_TRUE(loaded);
        EXPECT_EQ(loaded->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
        EXPECT_EQ(instance->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
    }
}

TEST(InstanceSaving, CreatesTheKeyOfAMissingLocalIdAndWritesItEmpty) {
    const auto instance = NewInstance();
    const Var saved = SavedMap(*instance, kProperties);
    ASSERT_TRUE(saved.IsMap());
    EXPECT_EQ(saved.size(), 1);
    ASSERT_NE(saved.Lookup(Key(Prop::kLocalId)), nullptr);
    EXPECT_TRUE(saved.Lookup(Key(Prop::kLocalId))->IsEmpty());
}

TEST(InstanceSaving, ThusMakesAnInstanceThatInheritsNoLocalId) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kLocalId, Var(L"e1"));
    const auto instance = reference->CreateInstance();
    EXPECT_EQ(instance->GetProperty(Prop::kLocalId, 1), Var(L"e1"));
    TapeOf(*instance);
    EXPECT_TRUE(instance->GetProperty(Prop::kLocalId, 1).IsEmpty());
}

TEST(InstanceSaving, CreatesTheKeyOfTheMarkOnlyBesideALocalId) {
    const auto instance = NewInstance();
    EXPECT_FALSE(SavesProperty(*instance, Prop::kKeepLocalId));
    instance->SetProperty(Prop::kLocalId, Var(L"n1"));
    EXPECT_TRUE(SavesProperty(*instance, Prop::kKeepLocalId));
    EXPECT_TRUE(instance->GetProperty(Prop::kKeepLocalId, 0).IsEmpty());
}

TEST(InstanceSaving, KeepsForwardedValuesOutOfTheProperties) {
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kBsId, Var(L"server"));
    EXPECT_FALSE(SavesProperty(*instance, Prop::kBsId));
    const auto loaded = Reloaded(*instance);
    EXPECT_EQ(loaded->GetParamVar(0x9e), Var(L"server"));
    EXPECT_EQ(loaded->GetProperty(Prop::kBsId, 0), Var(L"server"));
}

TEST(InstanceSaving, ComesBackWithPropertiesMetadataAndDefinition) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kName, Var(L"wheel"));
    const auto instance = reference->CreateInstance();
    instance->SetProperty(Prop::kName, Var(L"left"));
    instance->SetProperty(Prop::kText, Var());
    instance->SetProperty(Prop::kMetadata, MapOf({{Var(L"k"), Var(3)}}));
    const auto loaded = Reloaded(*instance);
    ASSERT_TRUE(loaded && loaded->GetReference());
    EXPECT_EQ(loaded->GetProperty(Prop::kName, 0), Var(L"left"));
    EXPECT_EQ(loaded->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"k"), Var(3)}}));
    EXPECT_EQ(loaded->GetReference()->GetProperty(Prop::kName, 0), Var(L"wheel"));
    EXPECT_TRUE(SavesProperty(*loaded, Prop::kText)) << "an empty value is a value that is kept";
}

TEST(InstanceSaving, BringsSelectorsBackOnTheLoadedInstances) {
    const auto root = NewReference(), part = NewReference();
    const auto use = part->CreateInstance();
    root->AddChild(use.Get());
    Selector path = PathOf({use.Get()});
    path.SetProperty(Prop::kName, Var(L"here"));
    use->AddLocalSelector(path);

    const auto loaded = Reloaded(*root);
    ASSERT_TRUE(loaded && loaded->GetChildCount() == 1);
    const auto loadedUse = loaded->GetChild(0);
    ASSERT_EQ(loadedUse->GetSelectorCount(), 1);
    const auto stored = SelectorUnder(*loadedUse, Var(0));
    EXPECT_EQ(LivePath(*stored), std::vector<Instance*>{loadedUse.Get()});
    EXPECT_EQ(stored->GetProperty(Prop::kName, 0), Var(L"here"));
}

TEST(InstanceSaving, SharesOneDefinitionAmongItsLoadedUses) {
    const auto root = NewReference(), part = NewReference();
    root->AddChild(part->CreateInstance().Get());
    root->AddChild(part->CreateInstance().Get());
    const auto loaded = Reloaded(*root);
    ASSERT_TRUE(loaded && loaded->GetChildCount() == 2);
    EXPECT_NE(loaded->GetChild(0), loaded->GetChild(1));
    ASSERT_TRUE(loaded->GetChild(0)->GetReference());
    EXPECT_EQ(loaded->GetChild(0)->GetReference(), loaded->GetChild(1)->GetReference());
}

TEST(InstanceSaving, LeavesTheParentOut) {
    const auto root = NewReference();
    root->AddChild(NewReference()->CreateInstance().Get());
    const auto loaded = Reloaded(*root);
    const auto child = loaded->GetChild(0);
    EXPECT_TRUE(loaded->HasChild(child.Get()));
    EXPECT_EQ(child->GetParentReference(), nullptr);
    loaded->AddChild(child.Get());
    EXPECT_EQ(child->GetParentReference(), nullptr) << "it is a child already";
    const auto other = NewReference();
    other->AddChild(child.Get());
    EXPECT_EQ(child->GetParentReference(), other);
}

TEST(InstanceSaving, DoesNotTestItsOwnWrites) {
    const auto instance = NewReference()->CreateInstance();
    instance->SetProperty(Prop::kLocalId, Var(L"n1"));
    for (const int failing : {1, 2}) {
        const auto stream = Make<FailingStream>();
        stream->FailObject(failing);
        EXPECT_EQ(instance->Save(stream.Get(), MakeContext().Get()), ResultEnum::kSuccess);
        EXPECT_EQ(stream->Log().size(), 2U) << "properties and definition";
        EXPECT_EQ(instance->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
    }
}

TEST(InstanceReading, TakesItsThreeChunks) {
    const auto instance = NewInstance();
    const auto reference = NewReference();
    EXPECT_EQ(Feed(*instance, kProperties, MapOf({{Var(1), Var(L"n")}}).ToMap()), ResultEnum::kSuccess);
    EXPECT_EQ(Feed(*instance, kReference, reference.Get()), ResultEnum::kSuccess);
    EXPECT_EQ(Feed(*instance, kSelectors, MapOf({{Var(0), Var(5)}, {Var(1), Var(6)}}).ToMap()),
              ResultEnum::kSuccess);
    EXPECT_EQ(instance->GetProperty(Prop::kName, 0), Var(L"n"));
    EXPECT_EQ(instance->GetReference(), reference);
    EXPECT_EQ(instance->GetSelectorCount(), 2);
}

TEST(InstanceReading, ReplacesWhatItHad) {
    auto old = NewReference();
    const Weak<Reference> watch(old.Get());
    const auto instance = old->CreateInstance();
    old.Reset();
    instance->SetProperty(Prop::kName, Var(L"gone"));
    const auto reference = NewReference();
    Feed(*instance, kReference, reference.Get());
    Feed(*instance, kProperties, MapOf({{Var(2), Var(5)}}).ToMap());
    EXPECT_EQ(instance->GetReference(), reference);
    EXPECT_EQ(reference->GetRefCount(), 2);
    EXPECT_EQ(watch.Get(), nullptr);
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(InstanceReading, EntersNoListOfTheDefinitionThatItRead) {
    const auto reference = NewReference();
    Feed(*NewInstance(), kReference, reference.Get());
    EXPECT_EQ(reference->GetInstanceCount(), 0);
}

TEST(InstanceReading, IsEmptiedByAnObjectOfAnotherClass) {
    const auto instance = NewReference()->CreateInstance();
    instance->SetProperty(Prop::kName, Var(L"n"));
    instance->AddLocalSelector(PathOf({instance.Get()}));
    const auto wrong = NewInstance();
    for (const int chunk : {kProperties, kReference, kSelectors})
        EXPECT_EQ(Feed(*instance, chunk, wrong.Get()), ResultEnum::kSuccess);
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_EQ(instance->GetReference(), nullptr);
    EXPECT_EQ(instance->GetSelectorCount(), 0);
}

TEST(InstanceReading, IsEmptiedByAChunkWithoutObject) {
    const auto instance = NewReference()->CreateInstance();
    instance->SetProperty(Prop::kName, Var(L"n"));
    for (const int chunk : {kProperties, kReference, kSelectors})
        EXPECT_EQ(Feed(*instance, chunk, nullptr), ResultEnum::kSuccess);
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_EQ(instance->GetReference(), nullptr);
}

TEST(InstanceReading, LeavesOtherChunksToTheBase) {
    const auto instance = NewReference()->CreateInstance();
    const auto plain = CreateAs<ReferenceSource>(ClassKey::kLookupTable);  // has no chunks of its own
    Reference* const reference = instance->GetReference();
    for (const int chunk : {0x1003, 0x0fff, 0x2000}) {
        const auto object = NewReference();
        EXPECT_EQ(Feed(*instance, chunk, object.Get()), Feed(*plain, chunk, object.Get())) << chunk;
    }
    EXPECT_EQ(instance->GetReference(), reference);
}

}  // namespace
}  // namespace qn::test
