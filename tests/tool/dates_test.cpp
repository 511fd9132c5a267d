#include "tool/dates.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using tool::DateText;
using tool::ParseDate;

const struct {
    const char* text;
    std::int64_t seconds;
} kDates[] = {
    {"1970-01-01", 0},
    {"1970-01-01T00:00:01Z", 1},
    {"1969-12-31", -86'400},
    {"1969-12-31T23:59:59Z", -1},
    {"2000-02-29", 951'782'400},
    {"2026-03-31T08:30:00Z", 1'774'945'800},
    {"9999-12-31T23:59:59Z", 253'402'300'799},
};

TEST(Dates, AreReadAndWrittenAsSeconds) {
    for (const auto& [text, seconds] : kDates) {
        EXPECT_EQ(ParseDate(text), seconds) << text;
        EXPECT_EQ(DateText(seconds), text);
    }
}

TEST(Dates, ThatNoCalendarHasAreRefused) {
    for (const char* text : {"", "2026-02-30", "1900-02-29", "2026-13-01", "2026-00-10", "2026-1-1",
                             "26-01-01", "2026-01-01T24:00:00Z", "2026-01-01T10:60:00Z",
                             "2026-01-01T10:00:00", "2026-01-01 ", "today", "+026-01-01"})
        EXPECT_FALSE(ParseDate(text)) << text;
}

TEST(Dates, BeyondFourDigitsAreWrittenAsNumbers) {
    EXPECT_EQ(DateText(253'402'300'800), "253402300800");
}

}  // namespace
}  // namespace assembly::tests
