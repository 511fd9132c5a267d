#include "frame/host/collections.h"
#include "frame/host/params.h"
#include "tests/engine/values/flat_stream.h"
#include "tests/engine/values/value_builders.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <functional>
#include <random>
#include <utility>
#include <vector>

namespace qn {
namespace {

using test::FlatStream;

/// The same operations on a list of pairs.
struct Model {
    std::vector<std::pair<Var, Var>> rows;

    auto Find(const Var& key) {
        return std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.first == key; });
    }
    void Set(const Var& key, const Var& value) {
        if (const auto row = Find(key); row != rows.end())
            row->second = value;
        else
            rows.emplace_back(key, value);
    }
    bool Remove(const Var& key) {
        const auto row = Find(key);
        if (row == rows.end()) return false;
        rows.erase(row);
        return true;
    }
};

void ExpectSame(VarMap& map, Model& model) {
    ASSERT_EQ(map.GetCount(), static_cast<int>(model.rows.size()));
    for (int i = 0; i < map.GetCount(); ++i) {
        const auto& [key, value] = model.rows[static_cast<std::size_t>(i)];
        EXPECT_EQ(map.KeyAt(i), key);
        EXPECT_EQ(std::as_const(map).ValueAt(i), value);
        ASSERT_NE(map.Lookup(key), nullptr);
        EXPECT_EQ(*map.Lookup(key), value);
    }
}

Var RandomKey(std::mt19937& random, int range) {
    const int number = static_cast<int>(random() % static_cast<unsigned>(range));
    switch (random() % 4) {
        case 0:
            return Var(number);
        case 1:
            return Var(static_cast<double>(number) / 2);
        case 2:
            return Var(std::to_string(number).c_str());
        default:
            return test::RandomValue(random, 1);
    }
}

TEST(VarMap, BehavesLikeAListOfPairs) {
    std::mt19937 random(31);
    for (int round = 0; round < 60; ++round) {
        const auto map = VarMap::Create();
        Model model;
        const int range = round % 3 == 0 ? 4 : round % 3 == 1 ? 30 : 300;
        for (int step = 0; step < 400; ++step) {
            const Var key = RandomKey(random, range);
            switch (random() % 4) {
                case 0:
                    EXPECT_EQ(map->Remove(key), model.Remove(key));
                    break;
                case 1:
                    EXPECT_EQ(map->Lookup(key) != nullptr, model.Find(key) != model.rows.end());
                    break;
                default:
                    map->At(key) = Var(step);
                    model.Set(key, Var(step));
            }
        }
        ExpectSame(*map, model);
        const auto copy = CountedCast<VarMap>(map->Clone(1));
        ExpectSame(*copy, model);
    }
}

TEST(VarMap, FindsKeysByEqualityWhateverTheirTag) {
    const auto map = VarMap::Create();
    for (int i = 0; i < 100; ++i)
        map->At(i) = Var(i);
    EXPECT_EQ(map->Lookup(Var(50.0))->ToInt(), 50);
    EXPECT_EQ(map->Lookup(Var(std::int64_t{50}))->ToInt(), 50);
    EXPECT_EQ(map->Lookup(Var("50")), nullptr);
    EXPECT_EQ(map->Lookup(Var(true)), nullptr);
    EXPECT_EQ(map->Lookup(7)->ToInt(), 7);
    EXPECT_EQ(map->Lookup(100), nullptr);
}

TEST(VarMap, HoldsAnEmptyKeyLikeAnyOther) {
    const auto map = VarMap::Create();
    map->At(Var()) = Var(1);
    for (int i = 0; i < 20; ++i)
        map->At(i);
    EXPECT_EQ(map->Lookup(Var())->ToInt(), 1);
    EXPECT_TRUE(map->Remove(Var()));
    EXPECT_EQ(map->Lookup(Var()), nullptr);
}

TEST(VarMap, RemovesManyFromTheMiddleInLinearTime) {
    const auto map = VarMap::Create();
    const int count = 400000;
    for (int i = 0; i < count; ++i)
        map->At(i) = Var(i);
    for (int i = 0; i < count; i += 2)
        EXPECT_TRUE(map->Remove(Var(i)));
    EXPECT_FALSE(map->Remove(Var(0)));
    ASSERT_EQ(map->GetCount(), count / 2);
    for (int i = 0; i < count / 2; ++i)
        ASSERT_EQ(map->KeyAt(i).ToInt(), 2 * i + 1);
    EXPECT_EQ(map->Lookup(7)->ToInt(), 7);
    EXPECT_EQ(map->Lookup(8), nullptr);
}

TEST(VarMap, RemovesFromTheEndCheaply) {
    const auto map = VarMap::Create();
    const int count = 400000;
    for (int i = 0; i < count; ++i)
        map->At(i);
    for (int i = count - 1; i >= 0; --i) {
        ASSERT_TRUE(map->Remove(Var(map->KeyAt(i))));
        ASSERT_EQ(map->GetCount(), i);
    }
}

TEST(VarMap, RemovesTheKeyThatItLends) {
    const auto map = VarMap::Create();
    for (int i = 0; i < 30; ++i)
        map->At(Var(std::to_string(i).c_str()));
    while (map->GetCount() > 0)
        EXPECT_TRUE(map->Remove(map->KeyAt(map->GetCount() / 2)));
}

TEST(VarMap, TakesAKeyOfItsOwnForANewRow) {
    const auto map = VarMap::Create();
    map->At(Var("a")) = Var("b");
    for (int i = 0; i < 50; ++i)
        map->At(map->ValueAt(map->GetCount() - 1)) = Var(("v" + std::to_string(i)).c_str());
    EXPECT_EQ(map->GetCount(), 51);
}

/// Calls back into the map that drops it.
class Caller : public ReferenceSource {
public:
    explicit Caller(std::function<void()> call) : call_(std::move(call)) {}
    ~Caller() override { call_(); }

private:
    std::function<void()> call_;
};

TEST(VarMap, IsWholeWhenTheValuesThatItDropsLookAtIt) {
    const auto map = VarMap::Create();
    int seen = -1;
    map->At(1) = Var(Make<Caller>([&] { seen = map->GetCount(); }));
    map->At(2);
    map->Remove(Var(1));
    EXPECT_EQ(seen, 1);
    map->At(3) = Var(Make<Caller>([&] { seen = map->GetCount(); }));
    map->Clear();
    EXPECT_EQ(seen, 0);
}

TEST(VarMap, IsEmptyAndUsableAfterClear) {
    const auto map = VarMap::Create();
    for (int i = 0; i < 50; ++i)
        map->At(i);
    map->Remove(Var(10));
    map->Clear();
    EXPECT_EQ(map->GetCount(), 0);
    EXPECT_EQ(map->Lookup(5), nullptr);
    map->At(5) = Var(1);
    EXPECT_EQ(map->GetCount(), 1);
}

TEST(VarMap, LooksUpTextsWithoutMakingValues) {
    const auto map = VarMap::Create();
    for (int i = 0; i < 20; ++i) {
        map->At(Var(std::to_string(i).c_str())) = Var(i);
        for (int k = 0; k <= i; ++k)
            EXPECT_EQ(map->LookupText(std::to_wstring(k))->ToInt(), k);
        EXPECT_EQ(map->LookupText(L"none"), nullptr);
    }
}

TEST(VarMap, ClonesPrivatelyWithParametersAndMetadata) {
    const auto map = VarMap::Create();
    map->At(Var("in")) = test::ArrayOf({Var(1)});
    map->SetParamVar(3, Var("p"));
    map->SetMetaValue(Var("m"), Var("v"));
    const auto copy = CountedCast<VarMap>(map->Clone(0x80));
    copy->At(Var("in")).At(0) = Var(2);
    copy->SetParamVar(3, Var("q"));
    copy->SetMetaValue(Var("m"), Var("w"));
    EXPECT_EQ(map->At(Var("in")), test::ArrayOf({Var(1)}));
    EXPECT_EQ(map->GetParamVar(3), Var("p"));
    EXPECT_EQ(*map->GetMetadata(false)->Lookup(Var("m")), Var("v"));
}

TEST(VarMap, CopiesFromAMapOnly) {
    const auto map = VarMap::Create(), copy = VarMap::Create();
    map->At(1) = test::MapOf({{Var("x"), Var(1)}});
    map->SetParamVar(3, Var("p"));
    copy->At(9) = Var(9);
    EXPECT_EQ(copy->CopyFrom(VarArray::Create().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(copy->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
    EXPECT_EQ(copy->GetCount(), 1);
    EXPECT_EQ(copy->CopyFrom(map.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(Var(copy), Var(map));
    EXPECT_NE(copy->At(1).ToMap(), map->At(1).ToMap());
    EXPECT_EQ(copy->GetParamVar(3), Var("p"));
    EXPECT_EQ(copy->CopyFrom(copy.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(Var(copy), Var(map));
}

TEST(VarMapStream, KeepsRowsInTheirOrder) {
    const auto map = VarMap::Create(), loaded = VarMap::Create();
    for (int i = 30; i > 0; --i)
        map->At(Var(std::to_string(i).c_str())) = Var(i);
    map->Remove(Var("15"));
    map->SetParamVar(4, Var(5));
    const auto stream = Make<FlatStream>();
    EXPECT_EQ(map->Save(stream.Get(), nullptr), ResultEnum::kSuccess);
    stream->Rewind();
    EXPECT_EQ(loaded->Load(stream.Get(), nullptr), ResultEnum::kSuccess);
    ASSERT_EQ(loaded->GetCount(), 29);
    for (int i = 0; i < 29; ++i)
        EXPECT_EQ(loaded->KeyAt(i), map->KeyAt(i));
    EXPECT_EQ(loaded->GetParamVar(4), Var(5));
}

TEST(VarMapStream, WritesNothingForAnEmptyMap) {
    const auto stream = Make<FlatStream>();
    EXPECT_EQ(VarMap::Create()->Save(stream.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_TRUE(stream->bytes.empty());
}

TEST(VarMapStream, FailsForRowsThatAreNotThere) {
    for (const int count : {-1, 2, 0x7fffffff}) {
        const auto stream = Make<FlatStream>();
        stream->BeginChunk(0x10);
        stream->WriteInt(count);
        stream->WriteData("\0\0\0", 1, 3);
        stream->EndChunk();
        stream->Rewind();
        EXPECT_EQ(VarMap::Create()->Load(stream.Get(), nullptr), ResultEnum::kNothing) << count;
        EXPECT_TRUE(stream->HasFailed());
    }
}

TEST(VarMapStream, AnswersEveryWriteThatFails) {
    const auto map = VarMap::Create();
    map->At(Var("a")) = Var(1);
    map->At(Var("b")) = Var(2.5);
    for (int failing = 1;; ++failing) {
        const auto stream = Make<FlatStream>();
        stream->failingWrite = failing;
        const ResultEnum result = map->Save(stream.Get(), nullptr);
        if (result == ResultEnum::kSuccess) break;
        EXPECT_EQ(result, ResultEnum::kWriteFailed);
        ASSERT_LT(failing, 100);
    }
}

}  // namespace
}  // namespace qn
