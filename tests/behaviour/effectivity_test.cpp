// Ranges of dates and lines, in memory and in streams.

#include "product/effectivity.h"

#include "frame/host/api.h"
#include "tests/support/nested_tape.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>

namespace qn::test {
namespace {

using k3::Effectivity;

constexpr int kBase = 0x100, kDates = 0x1000, kLines = 0x1001, kRange = 0x1000;
constexpr int kStart = 0x1000, kEnd = 0x1001, kBoth = 0x1002, kTexts = 0x1003;

Counted<Effectivity> NewEffectivity() {
    return CreateAs<Effectivity>(k3::kEffectivityKey);
}

TEST(EffectivityRanges, HoldEveryNumberOfTheirWidth) {
    using Wide = std::numeric_limits<std::int64_t>;
    using Narrow = std::numeric_limits<std::int32_t>;
    const auto e = NewEffectivity();
    e->AddDateRange(Wide::min(), Wide::max());
    e->AddLineRange(Narrow::min(), Narrow::max());
    EXPECT_EQ(e->GetDateStart(0), Wide::min());
    EXPECT_EQ(e->GetDateEnd(0), Wide::max());
    EXPECT_EQ(e->GetLineStart(0), Narrow::min());
    EXPECT_EQ(e->GetLineEnd(0), Narrow::max());
}

TEST(EffectivityClass, CopiesParametersAndMetadataAndNoRanges) {
    const auto source = NewEffectivity(), copy = NewEffectivity();
    source->AddDateRange(1, 2);
    source->AddLineRange(3, 4);
    source->SetParamVar(7, Var(L"seven"));
    source->SetMetaValue(Var(L"key"), Var(5));
    copy->AddLineRange(8, 9);
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetParamVar(7), Var(L"seven"));
    ASSERT_TRUE(copy->GetMetadata(false));
    EXPECT_EQ(*copy->GetMetadata(false)->Lookup(Var(L"key")), Var(5));
    EXPECT_EQ(copy->GetDateCount(), 0u);
    ASSERT_EQ(copy->GetLineCount(), 1u);
    EXPECT_EQ(copy->GetLineStart(0), 8);
}

/// A bit of everything: the base has a parameter, ranges have texts.
Counted<Effectivity> Rich() {
    auto e = NewEffectivity();
    e->SetParamVar(7, Var(1));
    e->AddDateRange(1, 2);
    e->AddDateRange(3, 3);
    e->AddLineRange(4, 5);
    e->AddDateString(0, L"a");
    e->AddLineString(0, L"b");
    return e;
}

std::size_t WritesOf(Effectivity& e) {
    for (int number = 1;; ++number) {
        const auto tape = Make<NestedTape>();
        tape->FailWrite(number);
        if (Succeeded(e.Save(tape.Get(), nullptr))) return static_cast<std::size_t>(number) - 1;
    }
}

template <class T>
T ValueAt(const std::string& bytes, std::size_t place) {
    T value;
    std::memcpy(&value, bytes.data() + place, sizeof value);
    return value;
}

TEST(EffectivitySaving, WritesValuesRawAndTheNumberOfTextsInFront) {
    const auto e = NewEffectivity();
    e->AddLineRange(0x01020304, 0x01020304);
    e->AddLineString(0, L"a");
    e->AddLineString(0, L"b");
    const auto tape = Make<NestedTape>();
    e->Save(tape.Get(), nullptr);
    constexpr std::size_t kHeader = 6;
    const std::size_t value = 4 * kHeader;  // behind base, list, range, value
    const std::size_t texts = value + sizeof(std::int32_t) + kHeader;
    ASSERT_GT(tape->Bytes().size(), texts + sizeof(std::int32_t));
    EXPECT_EQ(ValueAt<std::int32_t>(tape->Bytes(), value), 0x01020304);
    EXPECT_EQ(ValueAt<std::int32_t>(tape->Bytes(), texts), 2);
}

TEST(EffectivitySaving, FailsWithAnyWriteAndClosesWhatItOpened) {
    const auto e = Rich();
    const std::size_t writes = WritesOf(*e);
    EXPECT_GE(writes, 9u);
    for (std::size_t number = 1; number <= writes; ++number) {
        const auto tape = Make<NestedTape>();
        tape->FailWrite(static_cast<int>(number));
        EXPECT_EQ(e->Save(tape.Get(), nullptr), ResultEnum::kWriteFailed) << number;
        EXPECT_EQ(tape->OpenChunks(), 0) << number;
        EXPECT_EQ(tape->Begun(), tape->Ended()) << number;
    }
}

TEST(EffectivitySaving, WritesOnWhereAChunkCannotBeOpenedAndDoesNotCloseIt) {
    for (const int id : {kBase, kDates, kLines, kBoth, kTexts}) {
        const auto e = Rich();
        const auto tape = Make<NestedTape>();
        tape->Refuse(id);
        EXPECT_EQ(e->Save(tape.Get(), nullptr), ResultEnum::kSuccess) << id;
        EXPECT_EQ(tape->Begun(), tape->Ended()) << id;
        EXPECT_EQ(tape->OpenChunks(), 0) << id;
    }
}

/// Says what is written chunk by chunk.
class Script {
public:
    Script& In(int id, const std::function<void(Script&)>& inner) {
        tape_->BeginChunk(static_cast<unsigned>(id));
        inner(*this);
        tape_->EndChunk();
        return *this;
    }
    template <class T>
    Script& Value(int id, T value) {
        return In(id, [&](Script& s) { s.tape_->WriteData(&value, 1, sizeof value); });
    }
    Script& Date(int id, std::int64_t value) { return Value(id, value); }
    Script& Line(int id, std::int32_t value) { return Value(id, value); }
    Script& Texts(int count, const std::vector<const wchar_t*>& texts) {
        return In(kTexts, [&](Script& s) {
            s.tape_->WriteInt(count);
            for (const wchar_t* text : texts)
                String(text).Save(s.tape_.Get());
        });
    }
    NestedTape& Tape() {
        tape_->Rewind();
        return *tape_;
    }
    ResultEnum Into(Effectivity& e) { return e.Load(&Tape(), nullptr); }

private:
    Counted<NestedTape> tape_ = Make<NestedTape>();
};

using Step = std::function<void(Script&)>;

/// One list with one range.
Script OneRange(int list, const Step& range) {
    Script script;
    script.In(list, [&](Script& s) { s.In(kRange, range); });
    return script;
}

TEST(EffectivityReading, TakesTheLastOfSeveralValues) {
    const auto e = NewEffectivity();
    Script script;
    script.In(kLines, [](Script& s) {
        s.In(kRange, [](Script& r) { r.Line(kStart, 1).Line(kBoth, 5).Line(kEnd, 7); });
        s.In(kRange, [](Script& r) { r.Line(kEnd, 9).Line(kBoth, 6); });
    });
    EXPECT_EQ(script.Into(*e), ResultEnum::kSuccess);
    ASSERT_EQ(e->GetLineCount(), 2u);
    EXPECT_EQ(e->GetLineStart(0), 5);
    EXPECT_EQ(e->GetLineEnd(0), 7);
    EXPECT_EQ(e->GetLineStart(1), 6);
    EXPECT_EQ(e->GetLineEnd(1), 6);
}

TEST(EffectivityReading, CollectsTextsOfSeveralChunks) {
    const auto e = NewEffectivity();
    EXPECT_EQ(OneRange(kDates,
                       [](Script& r) {
                           r.Texts(2, {L"a", L"b"}).Texts(0, {}).Texts(1, {L"c"});
                       })
                  .Into(*e),
              ResultEnum::kSuccess);
    ASSERT_EQ(e->GetDateStringCount(0), 3u);
    EXPECT_EQ(e->GetDateString(0, 2), String(L"c"));
}

TEST(EffectivityReading, CollectsRangesOfSeveralLists) {
    const auto e = NewEffectivity();
    Script script;
    for (const int day : {1, 2})
        script.In(kDates, [&](Script& s) { s.In(kRange, [&](Script& r) { r.Date(kBoth, day); }); });
    EXPECT_EQ(script.Into(*e), ResultEnum::kSuccess);
    ASSERT_EQ(e->GetDateCount(), 2u);
    EXPECT_EQ(e->GetDateStart(1), 2);
}

TEST(EffectivityReading, FailsOnAValueWithTooFewBytes) {
    for (const int id : {kStart, kEnd, kBoth}) {
        for (const int list : {kDates, kLines}) {
            const auto e = NewEffectivity();
            EXPECT_EQ(
                OneRange(list, [&](Script& r) { r.Value(id, std::int16_t(1)).Texts(1, {L"a"}); }).Into(*e),
                ResultEnum::kWriteFailed);
            EXPECT_EQ(e->GetDateStringCount(0) + e->GetLineStringCount(0), 0u) << "it ends there";
        }
    }
}

TEST(EffectivityReading, ReadsALineFromTheFrontOfALongerChunk) {
    const auto e = NewEffectivity();
    EXPECT_EQ(OneRange(kLines, [](Script& r) { r.Date(kBoth, 5).Line(kEnd, 6); }).Into(*e),
              ResultEnum::kSuccess);
    EXPECT_EQ(e->GetLineStart(0), 5);
    EXPECT_EQ(e->GetLineEnd(0), 6);
}

TEST(EffectivityReading, LeavesEveryChunkAfterAFailure) {
    for (const Step& damage : {Step([](Script& r) { r.Value(kBoth, std::int16_t(1)); }),
                               Step([](Script& r) { r.Texts(2, {L"a"}); })}) {
        const auto e = NewEffectivity();
        Script script = OneRange(kLines, damage);
        NestedTape& tape = script.Tape();
        e->Load(&tape, nullptr);
        EXPECT_EQ(tape.GetChunkId(), 0) << "outside of all chunks";
    }
}

}  // namespace
}  // namespace qn::test
