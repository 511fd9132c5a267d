#include "frame/host/collections.h"
#include "tests/engine/values/flat_stream.h"
#include "tests/engine/values/value_builders.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

using test::ArrayOf;
using test::FlatStream;

Counted<VarArray> Numbers(int count) {
    const auto array = VarArray::Create();
    for (int i = 0; i < count; ++i)
        array->Add(Var(i));
    return array;
}

TEST(VarArray, StartsWithAsManyEmptiesAsAskedFor) {
    const auto array = VarArray::Create(3);
    EXPECT_EQ(array->GetCount(), 3);
    EXPECT_TRUE(array->Get(2).IsEmpty());
    EXPECT_EQ(VarArray::Create(-4)->GetCount(), 0);
}

TEST(VarArray, ReadsEmptyOutside) {
    const auto array = Numbers(2);
    EXPECT_TRUE(array->Get(-1).IsEmpty());
    EXPECT_TRUE(array->Get(2).IsEmpty());
}

TEST(VarArray, GrowsWhenSetBeyondItsEndAndIgnoresNegativeIndexes) {
    const auto array = Numbers(1);
    array->Set(3, Var("x"));
    array->Set(-1, Var("y"));
    array->At(-1) = Var("z");
    EXPECT_EQ(Var(array), ArrayOf({Var(0), Var(), Var(), Var("x")}));
    EXPECT_TRUE(array->At(-1).IsEmpty());
}

TEST(VarArray, SetsAnElementOfItsOwn) {
    const auto array = Numbers(2);
    array->Set(100, array->Get(1));
    EXPECT_EQ(array->Get(100), Var(1));
    for (int i = 0; i < 100; ++i)
        array->Add(array->Get(1));
    EXPECT_EQ(array->Get(200), Var(1));
}

TEST(VarArray, AddGivesTheIndex) {
    const auto array = Numbers(2);
    EXPECT_EQ(array->Add(Var("x")), 2);
}

TEST(VarArray, FindsTheFirstEqualValue) {
    const auto array = VarArray::Create();
    for (const Var& value : {Var(1), Var("a"), Var(1.0), ArrayOf({Var(1)})})
        array->Add(value);
    EXPECT_EQ(array->Find(Var(1.0)), 0);
    EXPECT_EQ(array->Find(ArrayOf({Var(1)})), 3);
    EXPECT_EQ(array->Find(Var("b")), -1);
}

TEST(VarArray, RemovesARangeClippedToItsEnd) {
    const auto array = Numbers(5);
    array->RemoveAt(1, 2);
    EXPECT_EQ(Var(array), ArrayOf({Var(0), Var(3), Var(4)}));
    array->RemoveAt(2, 10);
    array->RemoveAt(-1, 1);
    array->RemoveAt(5, 1);
    array->RemoveAt(0, 0);
    EXPECT_EQ(Var(array), ArrayOf({Var(0), Var(3)}));
    array->Clear();
    EXPECT_EQ(array->GetCount(), 0);
}

TEST(VarArray, ClonesNestedContainersAndKeepsFlags) {
    const auto array = VarArray::Create();
    Var inner = test::MapOf({{Var("x"), Var(1)}});
    inner.SetValueFlags(9);
    array->Add(inner);
    const auto copy = CountedCast<VarArray>(array->Clone(0x80));
    ASSERT_TRUE(copy);
    EXPECT_NE(copy->Get(0).ToMap(), inner.ToMap());
    EXPECT_EQ(copy->Get(0), inner);
    EXPECT_EQ(copy->Get(0).GetValueFlags(), 9u);
    EXPECT_EQ(CountedCast<VarArray>(array->Clone(0))->Get(0).ToMap(), inner.ToMap());
}

TEST(VarArray, CopiesFromAnArrayOnly) {
    const auto array = Numbers(3), copy = Numbers(1);
    EXPECT_EQ(copy->CopyFrom(VarMap::Create().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(copy->GetCount(), 1);
    EXPECT_EQ(copy->CopyFrom(array.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(Var(copy), Var(array));
    EXPECT_EQ(copy->CopyFrom(copy.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetCount(), 3);
}

TEST(VarArray, KeepsItsValuesInAStream) {
    const auto array = Numbers(3), loaded = VarArray::Create();
    array->SetMetaValue(Var("m"), Var("v"));
    const auto stream = Make<FlatStream>();
    EXPECT_EQ(array->Save(stream.Get(), nullptr), ResultEnum::kSuccess);
    stream->Rewind();
    EXPECT_EQ(loaded->Load(stream.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(Var(loaded), Var(array));
    EXPECT_EQ(loaded->GetMetadata(false), array->GetMetadata(false));
}

TEST(VarArray, FailsToLoadValuesThatAreNotThere) {
    for (const int count : {-1, 4, 0x7fffffff}) {
        const auto stream = Make<FlatStream>();
        stream->BeginChunk(0x11);
        stream->WriteInt(count);
        stream->WriteData("\0\0\0", 1, 3);
        stream->EndChunk();
        stream->Rewind();
        EXPECT_EQ(VarArray::Create()->Load(stream.Get(), nullptr), ResultEnum::kNothing) << count;
        EXPECT_TRUE(stream->HasFailed());
    }
}

}  // namespace
}  // namespace qn
