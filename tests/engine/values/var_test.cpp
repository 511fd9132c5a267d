#include "frame/host/var.h"
#include "frame/host/collections.h"

#include <gtest/gtest.h>
#include <limits>

namespace qn {
namespace {

class Thing : public ReferenceSource {};

TEST(Var, TakesItsTagFromTheTypeItIsMadeOf) {
    EXPECT_EQ(Var().GetTag(), 0);
    EXPECT_EQ(Var(1).GetTag(), 1);
    EXPECT_EQ(Var(std::int64_t{1}).GetTag(), 2);
    EXPECT_EQ(Var(1.0f).GetTag(), 3);
    EXPECT_EQ(Var(1.0).GetTag(), 4);
    EXPECT_EQ(Var("a").GetTag(), 5);
    EXPECT_EQ(Var(L"a").GetTag(), 5);
    EXPECT_EQ(Var(String(L"a")).GetTag(), 5);
    EXPECT_EQ(Var(Guid()).GetTag(), 5);
    EXPECT_EQ(Var(true).GetTag(), 7);
    EXPECT_EQ(Var::Block("ab", 2).GetTag(), 0x0a);
    EXPECT_EQ(Var(Matrix4<double>()).GetTag(), 0x0b);
}

TEST(Var, TakesTheTagOfAnObjectFromItsClass) {
    EXPECT_EQ(Var(VarArray::Create()).GetTag(), 0x0f);
    EXPECT_EQ(Var(VarMap::Create()).GetTag(), 0x10);
    EXPECT_EQ(Var(Make<Thing>()).GetTag(), 0x11);
    EXPECT_EQ(Var(InterfaceArray::CreateStrong()).GetTag(), 0x11);
    EXPECT_TRUE(Var(static_cast<Interface*>(nullptr)).IsEmpty());
    EXPECT_TRUE(Var(static_cast<Interface*>(nullptr), 0).IsEmpty());
}

TEST(Var, CutsATextAtTheGivenLength) {
    EXPECT_EQ(Var("abcdef", 3).ToText(), String(L"abc"));
    EXPECT_EQ(Var(L"abcdef", 2).ToText(), String(L"ab"));
    EXPECT_EQ(Var("\xc3\xa9").ToText(), String(L"\x00e9"));
    EXPECT_TRUE(Var("").IsText());
    EXPECT_TRUE(Var(static_cast<const char*>(nullptr)).IsText());
}

TEST(Var, AddsACountOfItsOwnToAnObject) {
    const auto thing = Make<Thing>();
    {
        const Var value(thing.Get(), 1);
        EXPECT_EQ(thing->GetRefCount(), 2);
        const Var copy(value);
        EXPECT_EQ(thing->GetRefCount(), 3);
    }
    EXPECT_EQ(thing->GetRefCount(), 1);
    const Var left_out(thing.Get());
    EXPECT_EQ(thing->GetRefCount(), 2);
}

TEST(Var, OnlyWatchesAnObjectThatItDoesNotCount) {
    auto thing = Make<Thing>();
    const Var value(thing.Get(), 0);
    const Var copy(value);
    EXPECT_EQ(thing->GetRefCount(), 1);
    EXPECT_EQ(copy.ToInterface(), thing.Get());
    EXPECT_TRUE(value.ToBool());
    thing.Reset();
    EXPECT_EQ(value.ToInterface(), nullptr);
    EXPECT_EQ(copy.ToInterface(), nullptr);
    EXPECT_FALSE(value.ToBool());
    EXPECT_EQ(value.GetTag(), 0x11);
    EXPECT_TRUE(value.IsSet());
}

TEST(Var, ReadsADeadMapAsNoMapAndStartsANewOneWhenWrittenTo) {
    auto map = VarMap::Create();
    Var value(map.Get(), 0);
    EXPECT_EQ(value.ToMap(), map.Get());
    map.Reset();
    EXPECT_TRUE(value.IsMap());
    EXPECT_EQ(value.ToMap(), nullptr);
    EXPECT_EQ(value.size(), 0);
    EXPECT_EQ(value.Lookup(1), nullptr);
    EXPECT_TRUE(value.KeyAt(0).IsEmpty());
    value.At(1) = Var(2);
    EXPECT_EQ(value.size(), 1);
}

TEST(Var, SharesArraysMapsAndTextsWithItsCopies) {
    Var map;
    map.At("a") = Var(1);
    Var copy(map);
    copy.At("b") = Var(2);
    EXPECT_EQ(map.size(), 2);
    const Var text("shared");
    EXPECT_EQ(text.ToText().c_str(), Var(text).ToText().c_str());
}

TEST(Var, SurvivesAssignmentFromAPartOfItself) {
    Var value;
    value.At("inner").At("x") = Var(5);
    value = value.At("inner");
    EXPECT_EQ(value.At("x").ToInt(), 5);
    Var moved;
    moved.At("inner") = Var("text");
    moved = std::move(moved.At("inner"));
    EXPECT_EQ(moved.ToText(), String(L"text"));
    Var& same = moved;
    moved = same;
    EXPECT_EQ(moved.ToText(), String(L"text"));
}

TEST(Var, IsEmptyAfterItWasMoved) {
    Var from("text");
    from.SetValueFlags(9);
    const Var to(std::move(from));
    EXPECT_TRUE(from.IsEmpty());
    EXPECT_EQ(from.GetValueFlags(), 0u);
    EXPECT_EQ(to.GetValueFlags(), 9u);
}

TEST(Var, CopiesItsFlagsWithTheValue) {
    Var value(1);
    value.SetValueFlags(0x9);
    const Var copy(value);
    EXPECT_EQ(copy.GetValueFlags(), 0x9u);
    value = Var(2);
    EXPECT_EQ(value.GetValueFlags(), 0u);
}

TEST(Var, TellsTheSizeOfContainersAndTexts) {
    Var array;
    array.InitArray(3);
    Var map;
    map.InitMap();
    EXPECT_EQ(array.size(), 3);
    EXPECT_EQ(map.size(), 0);
    EXPECT_EQ(Var(L"abcd").size(), 4);
    EXPECT_EQ(Var().size(), 0);
    EXPECT_EQ(Var(7).size(), 0);
    EXPECT_EQ(Var(Make<Thing>()).size(), 0);
}

TEST(Var, KeepsItsFlagsWhenItBecomesAContainer) {
    Var value;
    value.SetValueFlags(8);
    value.At("a");
    EXPECT_TRUE(value.IsMap());
    EXPECT_EQ(value.GetValueFlags(), 8u);
    value.InitArray(-1);
    EXPECT_TRUE(value.IsArray());
    EXPECT_EQ(value.size(), 0);
    EXPECT_EQ(value.GetValueFlags(), 8u);
}

}  // namespace
}  // namespace qn
