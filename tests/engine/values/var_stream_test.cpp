#include "tests/engine/values/flat_stream.h"
#include "tests/engine/values/value_builders.h"

#include <gtest/gtest.h>
#include <limits>

namespace qn {
namespace {

using test::ArrayOf;
using test::FlatStream;
using test::MapOf;
using test::RoundTrip;

class Thing : public ReferenceSource {};

const Var& EverySimpleValue(int i) {
    static const Var values[] = {Var(),
                                 Var(std::numeric_limits<int>::min()),
                                 Var(std::int64_t{1} << 50),
                                 Var(1.5f),
                                 Var(0.1),
                                 Var(L"\x8eca"),
                                 Var(""),
                                 Var(true),
                                 Var(false),
                                 Var::Block("a\0b", 3),
                                 Var::Block(nullptr, 0),
                                 Var(Matrix4<double>::Translation(1, 2, 3))};
    static const Var none("past the end");
    return i < static_cast<int>(std::size(values)) ? values[i] : none;
}
constexpr int kSimpleValues = 12;

TEST(VarStream, KeepsValueAndTag) {
    for (int i = 0; i < kSimpleValues; ++i) {
        const Var value = EverySimpleValue(i), loaded = RoundTrip(value);
        EXPECT_EQ(loaded, value) << i;
        EXPECT_EQ(loaded.GetTag(), value.GetTag()) << i;
    }
}

TEST(VarStream, KeepsValueFlags) {
    for (int i = 0; i < kSimpleValues; ++i) {
        Var value = EverySimpleValue(i);
        value.SetValueFlags(0x80000009);
        EXPECT_EQ(RoundTrip(value).GetValueFlags(), 0x80000009u) << i;
    }
}

TEST(VarStream, ReplacesTheOldValueAndItsFlags) {
    const auto stream = Make<FlatStream>();
    Var(7).Save(stream.Get(), nullptr);
    stream->Rewind();
    Var value("old");
    value.SetValueFlags(9);
    EXPECT_TRUE(value.Load(stream.Get(), nullptr));
    EXPECT_EQ(value, Var(7));
    EXPECT_EQ(value.GetValueFlags(), 0u);
}

TEST(VarStream, WritesObjectsByNumberSoThatSharingSurvives) {
    const auto stream = Make<FlatStream>();
    const auto thing = Make<Thing>();
    const Var shared = ArrayOf({Var(1)});
    for (const Var& value : {shared, shared, Var(thing), MapOf({})})
        ASSERT_TRUE(value.Save(stream.Get(), nullptr));
    stream->Rewind();
    Var first, second, object, map;
    for (Var* value : {&first, &second, &object, &map})
        ASSERT_TRUE(value->Load(stream.Get(), nullptr));
    EXPECT_TRUE(first.IsArray());
    EXPECT_EQ(first.ToArray(), second.ToArray());
    EXPECT_EQ(object.ToInterface(), thing.Get());
    EXPECT_EQ(object.GetTag(), VarTag::kObject);
    EXPECT_TRUE(map.IsMap());
}

TEST(VarStream, KeepsAWeakValueOnlyIfItsObjectIsSavedAnyway) {
    const auto stream = Make<FlatStream>();
    const auto kept = Make<Thing>(), lost = Make<Thing>();
    Var(kept.Get(), 0).Save(stream.Get(), nullptr);
    Var(lost.Get(), 0).Save(stream.Get(), nullptr);
    Var(kept.Get(), 1).Save(stream.Get(), nullptr);
    stream->Rewind();
    Var first, second, third;
    for (Var* value : {&first, &second, &third})
        ASSERT_TRUE(value->Load(stream.Get(), nullptr));
    EXPECT_EQ(first.ToInterface(), kept.Get());
    EXPECT_TRUE(first.IsWeak());
    EXPECT_TRUE(second.IsEmpty());
    EXPECT_FALSE(third.IsWeak());
}

TEST(VarStream, WritesADeadValueAsEmpty) {
    auto thing = Make<Thing>();
    Var value(thing.Get(), 0);
    value.SetValueFlags(1);
    thing.Reset();
    const Var loaded = RoundTrip(value);
    EXPECT_TRUE(loaded.IsEmpty());
    EXPECT_EQ(loaded.GetValueFlags(), 1u);
}

TEST(VarStream, TakesTheTagFromTheObjectThatCameBack) {
    const auto stream = Make<FlatStream>();
    Var(Make<Thing>()).Save(stream.Get(), nullptr);
    stream->bytes[0] = VarTag::kMap;
    stream->Rewind();
    Var value;
    EXPECT_TRUE(value.Load(stream.Get(), nullptr));
    EXPECT_EQ(value.GetTag(), VarTag::kObject);
    EXPECT_EQ(value.ToMap(), nullptr);
}

TEST(VarStream, FailsOnAnUnknownTag) {
    for (const int tag : {6, 8, 9, 0x0c, 0x0e, 0x12, 0x3f}) {
        const auto stream = Make<FlatStream>();
        stream->bytes = std::string(1, static_cast<char>(tag)) + std::string(200, '\0');
        stream->Rewind();
        Var value("old");
        EXPECT_FALSE(value.Load(stream.Get(), nullptr)) << tag;
        EXPECT_TRUE(value.IsEmpty());
        EXPECT_TRUE(stream->HasFailed());
    }
}

TEST(VarStream, FailsAtEveryLengthOfACutValue) {
    for (int i = 0; i < kSimpleValues; ++i) {
        const auto whole = Make<FlatStream>();
        Var value = EverySimpleValue(i);
        value.SetValueFlags(3);
        value.Save(whole.Get(), nullptr);
        for (std::size_t size = 0; size < whole->bytes.size(); ++size) {
            const auto cut = Make<FlatStream>();
            cut->bytes = whole->bytes.substr(0, size);
            cut->Rewind();
            Var loaded;
            EXPECT_FALSE(loaded.Load(cut.Get(), nullptr)) << i << " " << size;
            EXPECT_TRUE(loaded.IsEmpty());
        }
    }
}

TEST(VarStream, TellsWhenAWriteFails) {
    for (int i = 0; i < kSimpleValues; ++i) {
        Var value = EverySimpleValue(i);
        value.SetValueFlags(3);
        for (int failing = 1;; ++failing) {
            const auto stream = Make<FlatStream>();
            stream->failingWrite = failing;
            if (value.Save(stream.Get(), nullptr)) {
                EXPECT_GT(failing, 2) << i;
                break;
            }
            ASSERT_LT(failing, 100);
        }
    }
}

}  // namespace
}  // namespace qn
