#include "importers/step/part21_numbers.h"

#include "importers/step/part21_error.h"

#include <gtest/gtest.h>

namespace {

using qn::step::ReadFailure;
using qn::step::RefuseHugeNumbers;

TEST(Part21Numbers, AcceptsWhatShapesAreMadeOf) {
    EXPECT_NO_THROW(RefuseHugeNumbers("#1=CARTESIAN_POINT('',(1.,-2.5E-3,3.E+008,1E-400));"));
}

TEST(Part21Numbers, RefusesWhatOverflows) {
    for (const char* number : {"1E400", "1.E+31", "-2.5e99999999999", "1000000000000000000000000000000000."})
        EXPECT_THROW(RefuseHugeNumbers(std::string("#1=A((") + number + "));"), ReadFailure) << number;
}

TEST(Part21Numbers, CallsThatALimit) {
    try {
        RefuseHugeNumbers("#1=A(1E400);");
        FAIL() << "accepted";
    } catch (const ReadFailure& failure) {
        EXPECT_EQ(failure.GetCause(), qn::step::Cause::kLimit);
    }
}

TEST(Part21Numbers, PassesOverStringsNamesAndComments) {
    EXPECT_NO_THROW(RefuseHugeNumbers("#99999999999999999999999999999999=A1E400('1E400',/* 1E400 */.B.);"));
}

}  // namespace
