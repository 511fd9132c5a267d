#include "frame/host/api.h"
#include "product/effectivity_impl.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using k3::Effectivity;
using k3::effectivity_impl::EffectivityImpl;

TEST(Effectivity, IsEmptyAtFirst) {
    const auto object = Make<EffectivityImpl>();
    EXPECT_EQ(object->GetDateCount(), 0u);
    EXPECT_EQ(object->GetLineCount(), 0u);
}

TEST(Effectivity, KeepsDatesOf64BitsInTheirOrder) {
    const auto object = Make<EffectivityImpl>();
    EXPECT_TRUE(object->AddDateRange(5'000'000'000, 6'000'000'000));
    EXPECT_TRUE(object->AddDateRange(-1, 0));
    ASSERT_EQ(object->GetDateCount(), 2u);
    EXPECT_EQ(object->GetDateStart(0), 5'000'000'000);
    EXPECT_EQ(object->GetDateEnd(0), 6'000'000'000);
    EXPECT_EQ(object->GetDateStart(1), -1);
    EXPECT_EQ(object->GetLineCount(), 0u);
}

TEST(Effectivity, KeepsLinesInTheirOrder) {
    const auto object = Make<EffectivityImpl>();
    EXPECT_TRUE(object->AddLineRange(100, 200));
    EXPECT_TRUE(object->AddLineRange(1, 2));
    ASSERT_EQ(object->GetLineCount(), 2u);
    EXPECT_EQ(object->GetLineStart(0), 100);
    EXPECT_EQ(object->GetLineEnd(1), 2);
    EXPECT_EQ(object->GetDateCount(), 0u);
}

TEST(Effectivity, KeepsInvertedOverlappingAndEqualRangesAsGiven) {
    const auto object = Make<EffectivityImpl>();
    object->AddLineRange(9, 1);
    object->AddLineRange(1, 5);
    object->AddLineRange(3, 7);
    object->AddLineRange(3, 7);
    ASSERT_EQ(object->GetLineCount(), 4u);
    EXPECT_EQ(object->GetLineStart(0), 9);
    EXPECT_EQ(object->GetLineEnd(0), 1);
    EXPECT_EQ(object->GetLineStart(3), 3);
}

TEST(Effectivity, GivesEachRangeTextsOfItsOwn) {
    const auto object = Make<EffectivityImpl>();
    object->AddDateRange(1, 2);
    object->AddDateRange(3, 4);
    object->AddLineRange(1, 2);
    EXPECT_TRUE(object->AddDateString(1, L"a"));
    EXPECT_TRUE(object->AddDateString(1, L"b"));
    EXPECT_TRUE(object->AddLineString(0, L"c"));
    EXPECT_EQ(object->GetDateStringCount(0), 0u);
    ASSERT_EQ(object->GetDateStringCount(1), 2u);
    EXPECT_EQ(object->GetDateString(1, 1), String(L"b"));
    EXPECT_EQ(object->GetLineString(0, 0), String(L"c"));
}

TEST(Effectivity, RefusesATextForARangeThatIsNotThere) {
    const auto object = Make<EffectivityImpl>();
    object->AddDateRange(1, 2);
    EXPECT_FALSE(object->AddDateString(1, L"a"));
    EXPECT_FALSE(object->AddLineString(0, L"a"));
    EXPECT_EQ(object->GetDateStringCount(0), 0u);
}

TEST(Effectivity, AnswersNothingOutside) {
    const auto object = Make<EffectivityImpl>();
    object->AddDateRange(1, 2);
    object->AddLineRange(1, 2);
    EXPECT_EQ(object->GetDateStart(1), 0);
    EXPECT_EQ(object->GetDateEnd(~0u), 0);
    EXPECT_EQ(object->GetDateStringCount(1), 0u);
    EXPECT_EQ(object->GetDateString(0, 0), String());
    EXPECT_EQ(object->GetDateString(1, 0), String());
    EXPECT_EQ(object->GetLineStart(1), 0);
    EXPECT_EQ(object->GetLineEnd(1), 0);
    EXPECT_EQ(object->GetLineStringCount(1), 0u);
    EXPECT_EQ(object->GetLineString(1, 0), String());
}

TEST(Effectivity, AnswersToItsNamesAndThoseOfItsBases) {
    const auto object = CreateAs<Effectivity>("qn.k3.effectivity");
    ASSERT_TRUE(object);
    EXPECT_STREQ(object->GetInterfaceName(), "qn.k3.effectivity");
    for (const char* name : {"QN.k3.effectivity", "k3_refsource", "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(object->IsTypeOf(name)) << name;
    EXPECT_FALSE(object->IsTypeOf("qn.k3.entity"));
}

TEST(Effectivity, CopiesParametersOfItsKindAndNoRanges) {
    const auto source = Make<EffectivityImpl>();
    source->AddDateRange(1, 2);
    source->SetParamVar(0x9e, Var(L"id"));
    const auto copy = Make<EffectivityImpl>();
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetParamVar(0x9e), Var(L"id"));
    EXPECT_EQ(copy->GetDateCount(), 0u);
    EXPECT_EQ(ToInt(copy->CopyFrom(VarArray::Create().Get(), 0)), -9);
    EXPECT_EQ(ToInt(copy->CopyFrom(nullptr, 0)), -9);
}

}  // namespace
}  // namespace qn::test
