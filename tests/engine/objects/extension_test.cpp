#include "frame/host/collections.h"
#include "frame/host/params.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

class Thing : public Extension {
public:
    std::vector<int> stored;
    void SetParamVar(int id, const Var& value) override {
        stored.push_back(id);
        Extension::SetParamVar(id, value);
    }
};

TEST(Extension, TellsTheInterfaceVersion) {
    EXPECT_EQ(Make<Thing>()->GetInterfaceVersion(), 0x910);
}

TEST(Extension, HasInertDefaults) {
    const auto thing = Make<Thing>();
    EXPECT_EQ(thing->QueryInfo(nullptr, 0xff), ResultEnum::kNothing);
    EXPECT_EQ(thing->Invoke(1, nullptr, nullptr), 0);
    EXPECT_EQ(thing->InvokeCommand(Var(1), Var(2), nullptr), ResultEnum::kNothing);
}

TEST(Extension, MakesParametersOnlyWhenOneIsStored) {
    const auto thing = Make<Thing>();
    EXPECT_TRUE(thing->GetParamVar(1).IsEmpty());
    EXPECT_EQ(thing->GetParam(1, 7, kValueInteger), 7u);
    EXPECT_EQ(thing->GetParamType(1), 0);
    thing->DeleteParam(1);
    thing->SetParamVar(1, Var());
    EXPECT_EQ(thing->GetParams(false), nullptr);
    thing->SetParamVar(1, Var("x"));
    ASSERT_NE(thing->GetParams(false), nullptr);
    EXPECT_EQ(thing->GetParams(false)->GetCount(), 1);
    EXPECT_EQ(thing->GetParamType(1), VarTag::kText);
    thing->DeleteParam(1);
    EXPECT_TRUE(thing->GetParamVar(1).IsEmpty());
}

TEST(Extension, StoresEveryWayThroughOneOperation) {
    const auto thing = Make<Thing>();
    const auto map = VarMap::Create();
    thing->SetParam(1, 5, kValueInteger);
    thing->SetParamObject(2, map.Get());
    EXPECT_EQ(thing->stored, (std::vector<int>{1, 2}));
    EXPECT_EQ(thing->GetParamObject(2), map.Get());
    EXPECT_EQ(thing->GetParam(1, 0, kValueInteger), 5u);
}

TEST(Extension, SharesItsParameters) {
    const auto first = Make<Thing>(), second = Make<Thing>();
    first->SetParamVar(1, Var(1));
    second->SetParams(first->GetParams(false));
    second->SetParamVar(2, Var(2));
    EXPECT_EQ(first->GetParamVar(2), Var(2));
    second->SetParams(second->GetParams(false));
    second->SetParams(nullptr);
    EXPECT_EQ(second->GetParams(false), nullptr);
    EXPECT_EQ(first->GetParams(false)->GetRefCount(), 1);
}

TEST(Extension, MakesMetadataOnDemand) {
    const auto thing = Make<Thing>();
    EXPECT_EQ(thing->GetMetadata(false), nullptr);
    VarMap* const made = thing->GetMetadata(true);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(thing->GetMetadata(false), made);
    EXPECT_EQ(made->GetRefCount(), 1);
}

TEST(Extension, SharesTheMapThatIsItsMetadata) {
    const auto first = Make<Thing>(), second = Make<Thing>();
    const auto map = VarMap::Create();
    first->SetMetadata(map.Get());
    second->SetMetadata(map.Get());
    first->SetMetaValue(Var("k"), Var(1));
    EXPECT_EQ(second->GetMetadata(false)->Lookup(Var("k"))->ToInt(), 1);
    first->SetMetadata(nullptr);
    EXPECT_EQ(first->GetMetadata(false), nullptr);
    EXPECT_EQ(map->GetRefCount(), 2);
    second->SetMetadata(map.Get());
    EXPECT_EQ(map->GetRefCount(), 2);
}

TEST(Extension, TakesASlashInAMetaKeyForALetter) {
    const auto thing = Make<Thing>();
    thing->SetMetaValue(Var("$QN/Name"), Var(1));
    EXPECT_EQ(thing->GetMetadata(false)->GetCount(), 1);
    EXPECT_EQ(thing->GetMetadata(false)->KeyAt(0), Var("$QN/Name"));
}

TEST(Extension, StoresAMetaValueThatStandsInTheSameMap) {
    const auto thing = Make<Thing>();
    thing->SetMetaValue(Var(0), Var("text"));
    for (int i = 1; i < 40; ++i)
        thing->SetMetaValue(Var(i), *thing->GetMetadata(false)->Lookup(0));
    EXPECT_EQ(*thing->GetMetadata(false)->Lookup(39), Var("text"));
}

TEST(Extension, DoesNothingWithoutMemory) {
    const auto thing = Make<Thing>();
    mem::FailAllocations(0, 3);
    thing->SetParamVar(1, Var(1));
    thing->SetMetaValue(Var("k"), Var(1));
    EXPECT_EQ(thing->GetMetadata(true), nullptr);
    mem::FailAllocations(0, 0);
    EXPECT_TRUE(thing->GetParamVar(1).IsEmpty());
}

}  // namespace
}  // namespace qn
