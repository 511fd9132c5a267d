#include "engine/stream/object_file.h"
#include "frame/host/object3d.h"
#include "tests/behaviour/foreign_instance.h"
#include "tests/behaviour/stored_selector.h"
#include "tests/support/failing_stream.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr int kAttributes = 0x1000;
constexpr int kPath = 0x1001;
using Ids = std::vector<int>;
using Path = std::vector<Instance*>;

TEST(PersistentSelectorChunks, AreNoneWhereThereIsNothing) {
    EXPECT_TRUE(TapeOf(*NewStoredSelector())->Chunks().empty());
}

TEST(PersistentSelectorChunks, HoldAttributesAloneWithoutALivePath) {
    const auto selector = NewStoredSelector();
    selector->SetProperty(Prop::kName, Var(L"name"));
    FieldsOf(selector).idPath = IdPath({L"a"});
    EXPECT_EQ(TapeOf(*selector)->OwnIds(), Ids{kAttributes});
    EXPECT_EQ(SavedMap(*selector, kAttributes), MapOf({{Var(1), Var(L"name")}}));
}

TEST(PersistentSelectorChunks, HoldTheLivePathInOrder) {
    const auto first = NewInstance(), second = NewInstance();
    const auto selector = LiveSelector({first.Get(), second.Get(), first.Get()});
    const auto tape = TapeOf(*selector);
    EXPECT_EQ(tape->OwnIds(), Ids{kPath});
    EXPECT_TRUE(tape->Find(kPath)->isObject);
    EXPECT_EQ(LivePath(*selector), (Path{first.Get(), second.Get(), first.Get()}));
}

TEST(PersistentSelectorChunks, ComeInTheOrderOfTheirIdsBehindTheBase) {
    const auto instance = NewInstance();
    const auto selector = LiveSelector({instance.Get()});
    selector->SetProperty(Prop::kName, Var(L"name"));
    selector->SetParamVar(5, Var(1));
    const auto tape = TapeOf(*selector);
    EXPECT_EQ(tape->OwnIds(), (Ids{kAttributes, kPath}));
    ASSERT_EQ(tape->Chunks().size(), 3u);
    EXPECT_LT(tape->Chunks()[0].id, 0x10);
}

TEST(PersistentSelectorChunks, NeverHoldTheIds) {
    const auto selector = NewStoredSelector();
    FieldsOf(selector).idPath = IdPath({L"a", L"b"});
    EXPECT_TRUE(TapeOf(*selector)->Chunks().empty());
}

TEST(PersistentSelectorChunks, HoldAttributesOnlyIfTheyAreAMap) {
    const auto selector = NewStoredSelector();
    FieldsOf(selector).attributes = Var(7);
    EXPECT_TRUE(TapeOf(*selector)->OwnIds().empty());
    FieldsOf(selector).attributes.InitMap();
    EXPECT_EQ(TapeOf(*selector)->OwnIds(), Ids{kAttributes}) << "an empty map is one";
}

TEST(PersistentSelectorChunks, LeaveOutDeadPathElements) {
    const auto first = NewInstance(), last = NewInstance();
    auto mortal = NewInstance();
    const auto selector = LiveSelector({first.Get(), mortal.Get(), last.Get()});
    mortal.Reset();
    EXPECT_EQ(LivePath(*selector), (Path{first.Get(), last.Get()}));
    EXPECT_EQ(FieldsOf(selector).path.size(), 3u) << "saving changes nothing";
}

TEST(PersistentSelectorChunks, HoldANullObjectIfTheWholePathIsDead) {
    auto mortal = NewInstance();
    const auto selector = LiveSelector({mortal.Get()});
    mortal.Reset();
    const auto tape = TapeOf(*selector);
    EXPECT_EQ(tape->OwnIds(), Ids{kPath});
    ASSERT_EQ(tape->Find(kPath)->objects.size(), 1u);
    EXPECT_FALSE(tape->Find(kPath)->objects[0]);
}

TEST(PersistentSelectorChunks, ReplaceTheAttributes) {
    const auto selector = NewStoredSelector();
    selector->SetProperty(Prop::kText, Var(L"former"));
    const auto map = VarMap::Create();
    map->At(1) = Var(L"name");
    EXPECT_EQ(Feed(*selector, kAttributes, map.Get()), ResultEnum::kSuccess);
    EXPECT_EQ(FieldsOf(selector).attributes, MapOf({{Var(1), Var(L"name")}}));
    EXPECT_EQ(FieldsOf(selector).attributes.ToMap(), map.Get());
    EXPECT_EQ(map->GetRefCount(), 2);
}

TEST(PersistentSelectorChunks, EmptyTheAttributesWhereNoMapCameAndStillSucceed) {
    for (const Counted<Interface>& object : {Counted<Interface>(), Counted<Interface>(VarArray::Create())}) {
        const auto selector = NewStoredSelector();
        selector->SetProperty(Prop::kText, Var(L"former"));
        EXPECT_EQ(Feed(*selector, kAttributes, object.Get()), ResultEnum::kSuccess);
        EXPECT_TRUE(selector->GetProperty(Prop::kText, 0).IsEmpty());
    }
}

TEST(PersistentSelectorChunks, ReplaceThePath) {
    const auto former = NewInstance(), next = NewInstance();
    const auto selector = LiveSelector({former.Get(), former.Get()});
    const Var array = ArrayOf({Var(next.Get())});
    EXPECT_EQ(Feed(*selector, kPath, array.ToArray()), ResultEnum::kSuccess);
    EXPECT_EQ(PathIn(*selector), Path{next.Get()});
    EXPECT_EQ(next->GetRefCount(), 2) << "held by the array, not by the path";
}

TEST(PersistentSelectorChunks, LeaveThePathWhereNothingCameAndStillSucceed) {
    const auto instance = NewInstance();
    const auto selector = LiveSelector({instance.Get()});
    EXPECT_EQ(Feed(*selector, kPath, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(Feed(*selector, kPath, VarArray::Create().Get()), ResultEnum::kSuccess);
    EXPECT_EQ(Feed(*selector, kPath, VarMap::Create().Get()), ResultEnum::kSuccess);
    EXPECT_EQ(PathIn(*selector), Path{instance.Get()});
}

TEST(PersistentSelectorChunks, LeaveOutWhatIsNoLiveInstance) {
    const auto former = NewInstance(), next = NewInstance();
    auto mortal = NewInstance();
    const Counted<Instance> foreign = Make<ForeignInstance>();
    const Var array = ArrayOf({Var(), Var(L"a"), Var(NewReference().Get()), Var(next.Get()),
                               Var(mortal.Get(), 0), Var(foreign.Get())});
    mortal.Reset();
    const auto selector = LiveSelector({former.Get()});
    Feed(*selector, kPath, array.ToArray());
    EXPECT_EQ(PathIn(*selector), (Path{next.Get(), foreign.Get()}));

    const Var strangers = ArrayOf({Var(L"a")});
    EXPECT_EQ(Feed(*selector, kPath, strangers.ToArray()), ResultEnum::kSuccess);
    EXPECT_TRUE(PathIn(*selector).empty()) << "the former path goes even if nothing takes its place";
}

TEST(PersistentSelectorChunks, OfOtherIdsAreTheBases) {
    const auto selector = NewStoredSelector();
    selector->SetProperty(Prop::kName, Var(L"name"));
    EXPECT_EQ(Feed(*selector, 0x1002, VarMap::Create().Get()), ResultEnum::kSuccess);
    EXPECT_EQ(FieldsOf(selector).attributes, MapOf({{Var(1), Var(L"name")}}));
}

TEST(PersistentSelectorChunks, AreNotWrittenIfTheBaseFails) {
    const auto instance = NewInstance();
    const auto selector = LiveSelector({instance.Get()});
    selector->SetProperty(Prop::kName, Var(L"name"));
    selector->SetParamVar(5, Var(L"value"));
    const auto stream = Make<FailingStream>();
    stream->FailWrite(1);
    EXPECT_NE(selector->Save(stream.Get(), MakeContext().Get()), ResultEnum::kSuccess);
    for (const std::string& line : stream->Log())
        EXPECT_EQ(line.find("object 100"), std::string::npos) << line;
}

TEST(PersistentSelectorChunks, BringAttributesAndParametersBack) {
    const auto context = MakeContext();
    const auto selector = NewStoredSelector();
    selector->SetProperty(Prop::kText, Var(L"text"));
    selector->SetProperty(Prop::kOrigin, Var());
    selector->SetParamVar(5, Var(7));
    FieldsOf(selector).idPath = IdPath({L"a"});
    const auto loaded =
        CountedCast<PersistentSelector>(LoadFromBytes(SaveToBytes(*selector, *context), *context));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(FieldsOf(loaded).attributes, FieldsOf(selector).attributes);
    EXPECT_EQ(loaded->GetParamVar(5), Var(7));
    EXPECT_TRUE(FieldsOf(loaded).idPath.IsEmpty());
}

TEST(PersistentSelectorChunks, BringThePathBackWhileTheInstancesLive) {
    const auto context = MakeContext();
    const auto definition = NewReference(), used = NewReference();
    const auto part = used->CreateInstance(), carrier = used->CreateInstance();
    definition->AddChild(part.Get());
    definition->AddChild(carrier.Get());
    carrier->AddLocalSelector(PathOf({part.Get(), carrier.Get()}));
    const auto loaded = CountedCast<Reference>(LoadFromBytes(SaveToBytes(*definition, *context), *context));
    ASSERT_TRUE(loaded);
    const auto child = loaded->GetChild(0), holder = loaded->GetChild(1);
    ASSERT_TRUE(SelectorUnder(*holder, Var(0)));
    EXPECT_EQ(PathIn(*SelectorUnder(*holder, Var(0))), (Path{child.Get(), holder.Get()}));
}

}  // namespace
}  // namespace qn::test
