#include "engine/stream/object_file.h"
#include "product/effectivity_impl.h"
#include "tests/support/failing_stream.h"
#include "tests/support/nested_tape.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using k3::effectivity_impl::EffectivityImpl;

constexpr int kDates = 0x1000, kLines = 0x1001, kRange = 0x1000, kStart = 0x1000, kEnd = 0x1001,
              kBoth = 0x1002, kTexts = 0x1003;

/// The chunks of what the object writes; ranges are lists.
std::string Layout(EffectivityImpl& object) {
    const auto tape = Make<NestedTape>();
    EXPECT_EQ(object.Save(tape.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(tape->OpenChunks(), 0);
    return tape->Text({"1000", "1001", "1000/1000", "1001/1000"});
}

/// Writes chunks by hand.
class Writer {
public:
    Writer& Begin(int id) { return tape_->BeginChunk(static_cast<unsigned>(id)), *this; }
    Writer& End() { return tape_->EndChunk(), *this; }
    template <class T>
    Writer& Value(int id, T value) {
        Begin(id);
        tape_->WriteData(&value, 1, sizeof value);
        return End();
    }
    Counted<NestedTape> Tape() {
        tape_->Rewind();
        return tape_;
    }
    NestedTape& operator*() { return *tape_; }

private:
    Counted<NestedTape> tape_ = Make<NestedTape>();
};

int Load(EffectivityImpl& object, const Counted<NestedTape>& tape) {
    return ToInt(object.Load(tape.Get(), nullptr));
}

TEST(EffectivityChunks, OfAnObjectWithoutRangesAreTheBaseAlone) {
    EXPECT_EQ(Layout(*Make<EffectivityImpl>()), "100:0");
}

TEST(EffectivityChunks, ARangeOfOneDateIsOneValue) {
    const auto object = Make<EffectivityImpl>();
    object->AddDateRange(5, 5);
    EXPECT_EQ(Layout(*object), "100:0 1000(1000(1002:8))");
}

TEST(EffectivityChunks, ARangeHasStartThenEnd) {
    const auto object = Make<EffectivityImpl>();
    object->AddDateRange(5, 6);
    object->AddLineRange(1, 2);
    object->AddLineRange(3, 3);
    EXPECT_EQ(Layout(*object), "100:0 1000(1000(1000:8 1001:8)) 1001(1000(1000:4 1001:4) 1000(1002:4))");
}

TEST(EffectivityChunks, TextsFollowTheValues) {
    const auto object = Make<EffectivityImpl>();
    object->AddLineRange(1, 1);
    object->AddLineString(0, L"a");
    const std::string text = Layout(*object);
    EXPECT_EQ(text.substr(0, text.rfind(':')), "100:0 1001(1000(1002:4 1003");
}

TEST(EffectivityChunks, ReadBackEqual) {
    const auto object = Make<EffectivityImpl>();
    object->SetParamVar(0x9e, Var(L"id"));
    object->AddDateRange(5'000'000'000, -7);
    object->AddDateRange(4, 4);
    object->AddDateString(1, L"first");
    object->AddDateString(1, L"zweit\u00e4");
    object->AddLineRange(9, 1);
    object->AddLineString(0, L"");
    const auto context = MakeContext();
    const std::string bytes = SaveToBytes(*object, *context);
    const auto read = CountedCast<k3::Effectivity>(LoadFromBytes(bytes, *context));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->GetParamVar(0x9e), Var(L"id"));
    ASSERT_EQ(read->GetDateCount(), 2u);
    EXPECT_EQ(read->GetDateStart(0), 5'000'000'000);
    EXPECT_EQ(read->GetDateEnd(0), -7);
    EXPECT_EQ(read->GetDateEnd(1), 4);
    ASSERT_EQ(read->GetDateStringCount(1), 2u);
    EXPECT_EQ(read->GetDateString(1, 1), String(L"zweit\u00e4"));
    EXPECT_EQ(read->GetLineStart(0), 9);
    ASSERT_EQ(read->GetLineStringCount(0), 1u);
    EXPECT_EQ(SaveToBytes(*read, *context), bytes);
}

TEST(EffectivityChunks, AreReadInAnyOrder) {
    Writer out;
    out.Begin(kLines).Begin(kRange).Value(kEnd, 9).Value(kStart, 4).End().End();
    out.Begin(kDates).Begin(kRange).Value(kBoth, std::int64_t{3}).End().End();
    const auto object = Make<EffectivityImpl>();
    EXPECT_EQ(Load(*object, out.Tape()), 1);
    EXPECT_EQ(object->GetLineStart(0), 4);
    EXPECT_EQ(object->GetLineEnd(0), 9);
    EXPECT_EQ(object->GetDateStart(0), 3);
    EXPECT_EQ(object->GetDateEnd(0), 3);
}

TEST(EffectivityChunks, UnknownOnesAreSkippedOnEachLevel) {
    Writer out;
    out.Value(0x77, 1);
    out.Begin(kDates).Value(0x1001, 5).Begin(kRange);
    out.Value(0x1004, 1).Begin(0x2000).Value(kStart, std::int64_t{8}).End();
    out.Value(kStart, std::int64_t{2}).End().End();
    const auto object = Make<EffectivityImpl>();
    EXPECT_EQ(Load(*object, out.Tape()), 1);
    ASSERT_EQ(object->GetDateCount(), 1u);
    EXPECT_EQ(object->GetDateStart(0), 2);
    EXPECT_EQ(object->GetDateEnd(0), 0);
}

TEST(EffectivityChunks, LoadingAppends) {
    Writer out;
    out.Begin(kLines).Begin(kRange).Value(kBoth, 7).End().End();
    const auto object = Make<EffectivityImpl>();
    object->AddLineRange(1, 2);
    EXPECT_EQ(Load(*object, out.Tape()), 1);
    ASSERT_EQ(object->GetLineCount(), 2u);
    EXPECT_EQ(object->GetLineStart(0), 1);
    EXPECT_EQ(object->GetLineStart(1), 7);
}

TEST(EffectivityChunks, AValueOfTooFewBytesFailsAndLeavesTheRange) {
    Writer out;
    out.Begin(kDates).Begin(kRange).Value(kStart, std::int64_t{2}).Value(kEnd, 5).End();
    out.Begin(kRange).Value(kBoth, std::int64_t{9}).End().End();
    out.Begin(kLines).Begin(kRange).Value(kBoth, 7).End().End();
    const auto object = Make<EffectivityImpl>();
    EXPECT_EQ(Load(*object, out.Tape()), -8);
    ASSERT_EQ(object->GetDateCount(), 1u);
    EXPECT_EQ(object->GetDateStart(0), 2);
    EXPECT_EQ(object->GetDateEnd(0), 0);
    EXPECT_EQ(object->GetLineCount(), 0u);
}

TEST(EffectivityChunks, ATextThatCannotBeReadEndsTheLoadAndKeepsThoseBefore) {
    Writer out;
    out.Begin(kLines).Begin(kRange).Value(kBoth, 7).Begin(kTexts);
    (*out).WriteInt(3);
    String(L"a").Save(&*out, 0);
    out.End().End().Begin(kRange).Value(kBoth, 8).End().End();
    const auto object = Make<EffectivityImpl>();
    EXPECT_EQ(Load(*object, out.Tape()), -8);
    ASSERT_EQ(object->GetLineCount(), 1u);
    ASSERT_EQ(object->GetLineStringCount(0), 1u);
    EXPECT_EQ(object->GetLineString(0, 0), String(L"a"));
}

TEST(EffectivityChunks, AMissingCountFails) {
    Writer out;
    out.Begin(kLines).Begin(kRange).Begin(kTexts).End().End().End();
    EXPECT_EQ(Load(*Make<EffectivityImpl>(), out.Tape()), -8);
}

TEST(EffectivityChunks, ANegativeCountFails) {
    Writer out;
    out.Begin(kLines).Begin(kRange).Value(kTexts, -1).Value(kBoth, 7).End().End();
    const auto object = Make<EffectivityImpl>();
    EXPECT_EQ(Load(*object, out.Tape()), -8);
    ASSERT_EQ(object->GetLineCount(), 1u);
    EXPECT_EQ(object->GetLineStart(0), 0);
}

TEST(EffectivityChunks, ABaseThatCannotBeReadEndsTheLoadWithItsResult) {
    constexpr int kParameters = 0x01;
    Writer out;
    out.Begin(0x100).Begin(kParameters).End().End();  // without the count of rows
    out.Begin(kLines).Begin(kRange).Value(kBoth, 7).End().End();
    const auto object = Make<EffectivityImpl>();
    EXPECT_EQ(Load(*object, out.Tape()), ToInt(ResultEnum::kNothing));
    EXPECT_EQ(object->GetLineCount(), 0u);
}

TEST(EffectivityChunks, ACountBeyondTheChunkAllocatesNothing) {
    Writer out;
    out.Begin(kLines).Begin(kRange).Value(kTexts, 0x7fffffff).End().End();
    const auto object = Make<EffectivityImpl>();
    EXPECT_EQ(Load(*object, out.Tape()), -8);
    EXPECT_EQ(object->GetLineStringCount(0), 0u);
}

TEST(EffectivityChunks, EveryWriteThatFailsGivesMinusEightAndClosesWhatIsOpen) {
    const auto object = Make<EffectivityImpl>();
    object->AddDateRange(1, 2);
    object->AddDateString(0, L"a");
    object->AddLineRange(3, 3);
    int failures = 0;
    for (int write = 1;; ++write) {
        const auto tape = Make<NestedTape>();
        tape->FailWrite(write);
        const ResultEnum result = object->Save(tape.Get(), nullptr);
        EXPECT_EQ(tape->OpenChunks(), 0) << write;
        if (result == ResultEnum::kSuccess) break;
        EXPECT_EQ(ToInt(result), -8) << write;
        ++failures;
    }
    EXPECT_GE(failures, 5) << "start, end, count, text, line";
}

TEST(EffectivityChunks, ABaseThatFailsEndsTheSave) {
    const auto object = Make<EffectivityImpl>();
    object->SetParamVar(0x9e, Var(1));
    object->AddLineRange(3, 3);
    const auto tape = Make<NestedTape>();
    tape->FailWrite(1);
    EXPECT_EQ(ToInt(object->Save(tape.Get(), nullptr)), -8);
    EXPECT_EQ(tape->Text({}), "100:6") << "the opened chunk of the base alone";
}

/// The payload of a chunk that does not open goes into the chunk around it.
TEST(EffectivityChunks, SavingGoesOnWhereAChunkCannotBeOpened) {
    const auto object = Make<EffectivityImpl>();
    object->AddLineRange(3, 3);
    const auto tape = Make<NestedTape>();
    tape->Refuse(kBoth);
    EXPECT_EQ(object->Save(tape.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(tape->Text({"1001"}), "100:0 1001(1000:4)");
    EXPECT_EQ(tape->Begun(), tape->Ended());
}

TEST(EffectivityChunks, SavingGoesOnWhereAListCannotBeOpened) {
    const auto object = Make<EffectivityImpl>();
    object->AddLineRange(3, 3);
    const auto tape = Make<NestedTape>();
    tape->Refuse(kLines);
    EXPECT_EQ(object->Save(tape.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(tape->Text({"1000"}), "100:0 1000(1002:4)") << "the range stands where the list should";
    EXPECT_EQ(tape->Begun(), tape->Ended());
}

TEST(EffectivityChunks, SavingGoesOnWhereTheBaseCannotBeOpened) {
    const auto object = Make<EffectivityImpl>();
    object->AddDateRange(1, 1);
    const auto tape = Make<NestedTape>();
    tape->Refuse(0x100);
    EXPECT_EQ(object->Save(tape.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(tape->Text({"1000", "1000/1000"}), "1000(1000(1002:8))");
}

}  // namespace
}  // namespace qn::test
