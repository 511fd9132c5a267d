#include "frame/host/collections.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

class Thing : public ReferenceSource {};

TEST(InterfaceArray, CountsItsEntriesIfStrong) {
    const auto array = InterfaceArray::CreateStrong();
    auto thing = Make<Thing>();
    EXPECT_TRUE(array->IsStrong());
    EXPECT_EQ(array->Add(thing.Get()), 0);
    EXPECT_EQ(thing->GetRefCount(), 2);
    const Thing* const raw = thing.Get();
    thing.Reset();
    EXPECT_EQ(array->Get(0), raw);
}

TEST(InterfaceArray, ReadsADeadEntryAsNullIfWeak) {
    for (const Counted<InterfaceArray>& array :
         {InterfaceArray::CreateWeak(), Counted<InterfaceArray>(PointerArray::Create())}) {
        auto thing = Make<Thing>();
        array->Add(thing.Get());
        EXPECT_FALSE(array->IsStrong());
        EXPECT_EQ(thing->GetRefCount(), 1);
        EXPECT_EQ(array->Get(0), thing.Get());
        thing.Reset();
        EXPECT_EQ(array->Get(0), nullptr);
        EXPECT_EQ(array->GetCount(), 1);
    }
}

TEST(InterfaceArray, HoldsArraysAndMapsAsObjectsToo) {
    const auto array = InterfaceArray::CreateStrong();
    const auto map = VarMap::Create();
    array->Add(map.Get());
    EXPECT_EQ(array->Get(0), map.Get());
}

TEST(InterfaceArray, GivesNullOutside) {
    const auto array = InterfaceArray::CreateStrong();
    EXPECT_EQ(array->Get(0), nullptr);
    EXPECT_EQ(array->Get(-1), nullptr);
}

TEST(InterfaceArray, GrowsWithNulls) {
    const auto array = Make<Collection>();
    const auto thing = Make<Thing>();
    array->Set(2, thing.Get());
    array->Set(-1, thing.Get());
    EXPECT_EQ(array->GetCount(), 3);
    EXPECT_EQ(array->Get(0), nullptr);
    EXPECT_EQ(array->Get(2), thing.Get());
    array->Set(2, nullptr);
    EXPECT_EQ(thing->GetRefCount(), 1);
}

TEST(InterfaceArray, FindsAndRemoves) {
    const auto array = InterfaceArray::CreateStrong();
    const auto first = Make<Thing>(), second = Make<Thing>();
    for (const auto& thing : {first, second, first})
        array->Add(thing.Get());
    EXPECT_EQ(array->Find(second.Get()), 1);
    EXPECT_EQ(array->Find(first.Get()), 0);
    EXPECT_EQ(array->Find(VarMap::Create().Get()), -1);
    array->RemoveAt(0);
    EXPECT_EQ(array->Find(first.Get()), 1);
    array->RemoveAt(1, 9);
    array->RemoveAt(5);
    EXPECT_EQ(array->GetCount(), 1);
    array->Clear();
    EXPECT_EQ(array->GetCount(), 0);
    EXPECT_EQ(second->GetRefCount(), 1);
}

}  // namespace
}  // namespace qn
