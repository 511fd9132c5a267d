#include "engine/stream/object_file.h"
#include "tests/graph/table_fixture.h"
#include "tests/support/failing_stream.h"

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Counted<InstanceImpl> InstanceWithId(const wchar_t* id) {
    auto instance = Make<InstanceImpl>();
    if (id) instance->SetProperty(Prop::kLocalId, Var(id));
    return instance;
}

std::vector<Instance*> LivePathOf(const PersistentSelectorImpl& selector) {
    std::vector<Instance*> path;
    for (const auto& element : selector.path)
        path.push_back(element.Get());
    return path;
}

/// Writes the selector beside the instances that must come along, and reads it back.
Counted<PersistentSelectorImpl> SavedAndLoaded(const Counted<PersistentSelectorImpl>& selector,
                                               const std::vector<Counted<InstanceImpl>>& instances = {}) {
    const auto root = VarArray::Create();
    root->Add(Var(selector));
    for (const auto& instance : instances)
        root->Add(Var(instance));
    const auto context = MakeContext();
    const auto bytes = SaveToBytes(*root, *context);
    const auto loaded = CountedCast<VarArray>(LoadFromBytes(bytes, *context));
    return loaded ? Counted<PersistentSelectorImpl>(Cast<PersistentSelectorImpl>(loaded->Get(0))) : nullptr;
}

TEST(PersistentSelector, AnswersEmptyWhenFreshAndStaysEmpty) {
    const auto selector = Make<PersistentSelectorImpl>();
    EXPECT_TRUE(selector->GetProperty(Prop::kName, 1).IsEmpty());
    EXPECT_TRUE(selector->attributes.IsEmpty());
}

TEST(PersistentSelector, MakesItsAttributesAMapWhenFirstSet) {
    const auto selector = Make<PersistentSelectorImpl>();
    selector->SetProperty(Prop::kName, Var(L"left door"));
    ASSERT_TRUE(selector->attributes.IsMap());
    EXPECT_EQ(selector->GetProperty(Prop::kName, 0).ToText(), L"left door");
    EXPECT_EQ(selector->attributes.size(), 1);
}

TEST(PersistentSelector, KeepsEmptyValuesUnderTheirKey) {
    const auto selector = Make<PersistentSelectorImpl>();
    selector->SetProperty(Prop::kName, Var());
    EXPECT_EQ(selector->attributes.size(), 1);
}

TEST(PersistentSelector, BelongsToNoTableAndHasNoDebugText) {
    const auto selector = Make<PersistentSelectorImpl>();
    EXPECT_EQ(selector->GetLookupTable(), nullptr);
    EXPECT_TRUE(selector->ToDebugString().IsEmpty());
}

TEST(PersistentSelector, KnowsItsKeysInAnyCase) {
    const auto selector = Make<PersistentSelectorImpl>();
    EXPECT_STREQ(selector->GetInterfaceName(), "qn.graph.persistentselector");
    for (const char* key : {"qn.graph.persistentselector", "QN.Graph.PersistentSelector", "k3_refsource",
                            "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(selector->IsTypeOf(key)) << key;
    EXPECT_FALSE(selector->IsTypeOf("qn.graph.instance"));
    EXPECT_FALSE(selector->IsTypeOf(nullptr));
}

TEST(PersistentSelector, CopiesParametersAndNeitherPathNorAttributes) {
    const auto instance = InstanceWithId(L"n1");
    const auto source = StoredPath({instance.Get()});
    source->SetProperty(Prop::kName, Var(L"door"));
    source->SetParamVar(Param::kBsId, Var(L"s1"));
    const auto copy = Make<PersistentSelectorImpl>();
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetParamVar(Param::kBsId).ToText(), L"s1");
    EXPECT_TRUE(copy->attributes.IsEmpty());
    EXPECT_TRUE(copy->path.empty());
}

TEST(PersistentSelector, RefusesToCopyFromAnotherClass) {
    const auto instance = InstanceWithId(L"n1");
    instance->SetParamVar(Param::kBsId, Var(L"s1"));
    const auto selector = Make<PersistentSelectorImpl>();
    EXPECT_EQ(selector->CopyFrom(instance.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_TRUE(selector->GetParamVar(Param::kBsId).IsEmpty());
}

// The store step.

TEST(PersistentSelectorStore, WritesTheIdsOfThePath) {
    const auto top = InstanceWithId(L"n1"), part = InstanceWithId(L"n2");
    const auto selector = StoredPath({top.Get(), part.Get()});
    selector->StorePath();
    ASSERT_EQ(selector->idPath.size(), 2);
    EXPECT_EQ(selector->idPath.ValueAt(0).ToText(), L"n1");
    EXPECT_EQ(selector->idPath.ValueAt(1).ToText(), L"n2");
    EXPECT_EQ(selector->path.size(), 2u);
}

TEST(PersistentSelectorStore, LosesAllIdsThroughOneInstanceWithoutId) {
    const auto top = InstanceWithId(L"n1"), part = InstanceWithId(nullptr);
    const auto selector = StoredPath({top.Get(), part.Get()});
    selector->StorePath();
    EXPECT_TRUE(selector->idPath.IsEmpty());
}

TEST(PersistentSelectorStore, PassesOverDeadEntries) {
    const auto part = InstanceWithId(L"n2");
    auto top = InstanceWithId(L"n1");
    const auto selector = StoredPath({top.Get(), part.Get()});
    top.Reset();
    selector->StorePath();
    ASSERT_EQ(selector->idPath.size(), 1);
    EXPECT_EQ(selector->idPath.ValueAt(0).ToText(), L"n2");
}

TEST(PersistentSelectorStore, ReplacesTheIdsOfASelectorThatHasOnlyIds) {
    const auto selector = Make<PersistentSelectorImpl>();
    selector->idPath.InitArray(1);
    selector->idPath.At(0) = Var(L"n1");
    selector->StorePath();
    EXPECT_TRUE(selector->idPath.IsArray());
    EXPECT_EQ(selector->idPath.size(), 0);
}

// Chunks.

TEST(PersistentSelectorChunks, WritesOnlyAttributesWithoutLivePath) {
    FailingStream stream;
    const auto selector = Make<PersistentSelectorImpl>();
    selector->SetProperty(Prop::kName, Var(L"door"));
    selector->idPath.InitArray(1);
    EXPECT_EQ(selector->Save(&stream, nullptr), ResultEnum::kSuccess);
    ASSERT_FALSE(stream.Log().empty());
    EXPECT_EQ(stream.Log().back(), "object 1000 k3_varmap");
}

TEST(PersistentSelectorChunks, WritesNoAttributesThatAreNoMap) {
    FailingStream stream;
    const auto instance = InstanceWithId(L"n1");
    const auto selector = StoredPath({instance.Get()});
    selector->Save(&stream, nullptr);
    for (const auto& line : stream.Log())
        EXPECT_EQ(line.find("object 1000"), std::string::npos);
    EXPECT_EQ(stream.Log().back(), "object 1001 k3_vararray");
}

TEST(PersistentSelectorChunks, WritesANullObjectForAPathOfDeadEntries) {
    FailingStream stream;
    auto instance = InstanceWithId(L"n1");
    const auto selector = StoredPath({instance.Get()});
    instance.Reset();
    selector->Save(&stream, nullptr);
    ASSERT_FALSE(stream.Log().empty());
    EXPECT_EQ(stream.Log().back(), "object 1001 null");
}

TEST(PersistentSelectorChunks, ComeBackWithAttributesAndLivePath) {
    const auto top = InstanceWithId(L"n1"), part = InstanceWithId(L"n2");
    const auto selector = StoredPath({top.Get(), part.Get()});
    selector->SetProperty(Prop::kName, Var(L"door"));
    selector->StorePath();
    const auto loaded = SavedAndLoaded(selector, {top, part});
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetProperty(Prop::kName, 0).ToText(), L"door");
    EXPECT_EQ(loaded->path.size(), 2u);
    EXPECT_TRUE(loaded->idPath.IsEmpty());
}

TEST(PersistentSelectorChunks, LeaveOutDeadEntriesSoThatThePathIsShorter) {
    auto top = InstanceWithId(L"n1");
    const auto part = InstanceWithId(L"n2");
    const auto selector = StoredPath({top.Get(), part.Get()});
    top.Reset();
    const auto loaded = SavedAndLoaded(selector, {part});
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->path.size(), 1u);
}

TEST(PersistentSelectorChunks, LeaveTheBasesFailureStandingAndWriteNothingMore) {
    FailingStream stream;
    stream.FailWrite(1);
    const auto selector = Make<PersistentSelectorImpl>();
    selector->SetParamVar(Param::kBsId, Var(L"s1"));
    selector->SetProperty(Prop::kName, Var(L"door"));
    EXPECT_EQ(selector->Save(&stream, nullptr), ResultEnum::kWriteFailed);
    for (const auto& line : stream.Log())
        EXPECT_EQ(line.find("object 1000"), std::string::npos);
}

// Without a table.

TEST(SelectorFromPersistent, GivesAttributesAndLivePath) {
    const auto top = InstanceWithId(L"n1"), part = InstanceWithId(L"n2");
    const auto stored = StoredPath({top.Get(), part.Get()});
    stored->SetProperty(Prop::kName, Var(L"door"));
    const Selector selector = SelectorFromPersistent(stored.Get());
    EXPECT_TRUE(selector.IsValid());
    EXPECT_EQ(selector.GetPathElementCount(), 2);
    EXPECT_EQ(selector.GetInstance(), part.Get());
    EXPECT_EQ(selector.GetProperty(Prop::kName, 0).ToText(), L"door");
}

TEST(SelectorFromPersistent, GivesDeadEntriesAsNull) {
    auto top = InstanceWithId(L"n1");
    const auto part = InstanceWithId(L"n2");
    const auto stored = StoredPath({top.Get(), part.Get()});
    top.Reset();
    const Selector selector = SelectorFromPersistent(stored.Get());
    EXPECT_EQ(selector.GetPathElementCount(), 2);
    EXPECT_EQ(selector.GetPathElement(0), nullptr);
    EXPECT_FALSE(selector.IsValid());
}

TEST(SelectorFromPersistent, NeverReadsIds) {
    const auto stored = Make<PersistentSelectorImpl>();
    stored->idPath.InitArray(1);
    stored->idPath.At(0) = Var(L"n1");
    EXPECT_EQ(SelectorFromPersistent(stored.Get()).GetPathElementCount(), 0);
}

TEST(SelectorFromPersistent, GivesAnInvalidSelectorForNull) {
    EXPECT_FALSE(SelectorFromPersistent(nullptr).IsValid());
}

TEST(PersistentFromSelector, IsNullForAnEmptyPath) {
    Selector selector;
    selector.SetProperty(Prop::kName, Var(L"door"));
    EXPECT_FALSE(PersistentFromSelector(selector));
}

TEST(PersistentFromSelector, KeepsThePathAndTheSelectorsOwnValues) {
    const auto top = InstanceWithId(L"n1"), part = InstanceWithId(L"n2");
    part->SetProperty(Prop::kText, Var(L"of the instance"));
    Selector selector;
    selector.AppendPathElement(top.Get());
    selector.AppendPathElement(part.Get());
    selector.SetProperty(Prop::kName, Var(L"door"));
    const auto stored = CountedCast<PersistentSelectorImpl>(PersistentFromSelector(selector));
    ASSERT_TRUE(stored);
    EXPECT_THAT(LivePathOf(*stored), ElementsAre(top.Get(), part.Get()));
    EXPECT_EQ(stored->attributes.size(), 1);
    EXPECT_EQ(stored->GetProperty(Prop::kName, 0).ToText(), L"door");
    EXPECT_TRUE(stored->idPath.IsEmpty());
}

TEST(PersistentFromSelector, CopiesMapsPrivately) {
    const auto part = InstanceWithId(L"n1");
    Selector selector;
    selector.AppendPathElement(part.Get());
    Var metadata;
    metadata.At(L"colour") = Var(L"red");
    selector.SetProperty(Prop::kMetadata, metadata);
    const auto stored = PersistentFromSelector(selector);
    metadata.At(L"colour") = Var(L"blue");
    EXPECT_EQ(stored->GetProperty(Prop::kMetadata, 0).Lookup(L"colour")->ToText(), L"red");
}

// Links.

TEST(SelectorLinks, AreReadFromPropertiesNineAndTwentyFive) {
    const auto element = InstanceWithId(L"n1");
    const auto link = StoredPath({element.Get()});
    element->SetProperty(Prop::kLink, Var(link));
    element->SetProperty(Prop::kLinkList,
                         LinkList({{link.Get(), Var(1)}, {element.Get(), Var(2)}, {nullptr, Var(3)}}));
    EXPECT_EQ(LinkOf(*element), link);
    EXPECT_THAT(ListedLinksOf(*element), ElementsAre(link));
    element->SetProperty(Prop::kLink, Var());  // no ring is left behind
    element->SetProperty(Prop::kLinkList, Var());
    EXPECT_FALSE(LinkOf(*element));
    EXPECT_THAT(ListedLinksOf(*element), IsEmpty());
}

}  // namespace
}  // namespace qn::test
