#include "frame/host/params.h"
#include "frame/host/collections.h"
#include "tests/engine/values/value_builders.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

namespace qn {
namespace {

class Thing : public ReferenceSource {};

TEST(Params, StandInRisingOrderOfTheirIds) {
    const auto params = Params::Create();
    for (const int id : {5, -16, 0x94, 0, 7})
        params->SetParamVar(id, Var(id));
    const int expected[] = {-16, 0, 5, 7, 0x94};
    ASSERT_EQ(params->GetCount(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(params->IdAt(i), expected[i]);
        EXPECT_EQ(params->ValueAt(i), Var(expected[i]));
    }
}

TEST(Params, BehaveLikeAMap) {
    std::mt19937 random(41);
    const auto params = Params::Create();
    std::map<int, int> model;
    for (int step = 0; step < 5000; ++step) {
        const int id = static_cast<int>(random() % 60) - 20;
        if (random() % 3) {
            params->SetParamVar(id, Var(step));
            model[id] = step;
        } else {
            params->DeleteParam(id);
            model.erase(id);
        }
        ASSERT_EQ(params->GetCount(), static_cast<int>(model.size()));
    }
    int i = 0;
    for (const auto& [id, value] : model) {
        EXPECT_EQ(params->IdAt(i), id);
        EXPECT_EQ(params->ValueAt(i++), Var(value));
    }
}

TEST(Params, ReadEmptyWhereThereIsNone) {
    const auto params = Params::Create();
    EXPECT_TRUE(params->GetParamVar(3).IsEmpty());
    EXPECT_EQ(params->Find(3), nullptr);
    EXPECT_EQ(params->GetParamType(3), 0);
    params->SetParamVar(3, Var("x"));
    EXPECT_EQ(params->GetParamType(3), VarTag::kText);
}

TEST(Params, EraseAnEntryThatIsSetEmpty) {
    const auto params = Params::Create();
    params->SetParamVar(3, Var(1));
    params->SetParamVar(3, Var());
    params->SetParamVar(4, Var());
    EXPECT_EQ(params->GetCount(), 0);
}

TEST(Params, ShareTheEntriesOfBothWaysOfAccess) {
    const auto params = Params::Create();
    params->SetParam(1, 42, kValueInteger);
    EXPECT_EQ(params->GetParamVar(1), Var(42));
    params->SetParamVar(2, Var("17 mm"));
    EXPECT_EQ(params->GetParam(2, 5, kValueInteger), 17u);
}

TEST(Params, GiveTheDefaultForAMissingInteger) {
    const auto params = Params::Create();
    EXPECT_EQ(params->GetParam(1, 99, kValueInteger), 99u);
    params->SetParamVar(1, Var(0));
    EXPECT_EQ(params->GetParam(1, 99, kValueInteger), 0u);
    params->SetParamVar(1, Var(VarMap::Create()));
    EXPECT_EQ(params->GetParam(1, 99, kValueInteger), 99u);
}

TEST(Params, KeepSignedAndUnsignedWords) {
    const auto params = Params::Create();
    params->SetParam(1, static_cast<ParamWord>(-1), kValueInteger);
    EXPECT_EQ(params->GetParamVar(1), Var(-1));
    EXPECT_EQ(params->GetParam(1, 0, kValueInteger), static_cast<ParamWord>(-1));
    params->SetParam(2, 0x80000000u, kValueInteger);
    EXPECT_EQ(static_cast<unsigned>(params->GetParam(2, 0, kValueInteger)), 0x80000000u);
    EXPECT_EQ(params->GetParamType(2), VarTag::kInt);
    params->SetParam(3, std::uint64_t{1} << 40, kValueInteger);
    EXPECT_EQ(params->GetParam(3, 0, kValueInteger), std::uint64_t{1} << 40);
}

TEST(Params, StoreObjectsCountedAndLendThem) {
    const auto params = Params::Create();
    const auto thing = Make<Thing>();
    params->SetParamObject(1, thing.Get());
    EXPECT_EQ(thing->GetRefCount(), 2);
    EXPECT_EQ(params->GetParamObject(1), thing.Get());
    EXPECT_EQ(thing->GetRefCount(), 2);
    // The second word means nothing for an object.
    EXPECT_EQ(params->GetParam(1, 77, kValueObject), reinterpret_cast<ParamWord>(thing.Get()));
    EXPECT_EQ(params->GetParam(2, 77, kValueObject), 0u);
    params->SetParamObject(1, nullptr);
    EXPECT_EQ(params->GetCount(), 0);
    EXPECT_EQ(thing->GetRefCount(), 1);
}

TEST(Params, PutA64BitValueWhereTheSecondWordPoints) {
    const auto params = Params::Create();
    std::int64_t received = -1;
    const auto receiver = reinterpret_cast<ParamWord>(&received);
    EXPECT_EQ(params->GetParam(1, receiver, kValueInt64), 0u);
    EXPECT_EQ(received, -1);
    params->SetParam(1, static_cast<ParamWord>(std::int64_t{1} << 45), kValueInt64);
    EXPECT_EQ(params->GetParamType(1), VarTag::kInt64);
    EXPECT_NE(params->GetParam(1, receiver, kValueInt64), 0u);
    EXPECT_EQ(received, std::int64_t{1} << 45);
    EXPECT_NE(params->GetParam(1, 0, kValueInt64), 0u);
}

TEST(Params, IgnoreUnknownValueTypes) {
    const auto params = Params::Create();
    params->SetParamVar(1, Var(5));
    params->SetParam(2, 5, static_cast<k3_VALUETYPE>(99));
    EXPECT_EQ(params->GetCount(), 1);
    EXPECT_EQ(params->GetParam(1, 7, static_cast<k3_VALUETYPE>(99)), 0u);
}

TEST(Params, CopyNestedContainersAndShareObjects) {
    const auto params = Params::Create();
    const auto thing = Make<Thing>();
    params->SetParamVar(1, test::ArrayOf({Var(1)}));
    params->SetParamObject(2, thing.Get());
    const auto copy = params->Copy();
    EXPECT_EQ(copy->GetParamVar(1), params->GetParamVar(1));
    EXPECT_NE(copy->GetParamVar(1).ToArray(), params->GetParamVar(1).ToArray());
    EXPECT_EQ(copy->GetParamObject(2), thing.Get());
}

TEST(Params, MayTakeAValueOfTheirOwn) {
    const auto params = Params::Create();
    params->SetParamVar(50, Var("text"));
    for (int id = 49; id >= 0; --id)
        params->SetParamVar(id, *params->Find(50));
    for (int id = 0; id <= 50; ++id)
        EXPECT_EQ(params->GetParamVar(id), Var("text"));
}

}  // namespace
}  // namespace qn
