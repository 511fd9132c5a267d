// What a user sees of a save, and how it can be stopped.

#include "engine/stream/object_file.h"
#include "tests/engine/stream/knot.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qn::test {
namespace {

constexpr int kKnots = 20'000;

Counted<Knot> MakeBush() {
    const auto root = MakeKnot("root");
    for (int i = 0; i < kKnots; ++i)
        root->Link(MakeKnot("leaf").Get());
    return root;
}

TEST(SaveProgress, GrowsToAll) {
    const auto context = MakeContext();
    std::vector<double> reports;
    context->SetProgressFunction([&](double done) {
        reports.push_back(done);
        return true;
    });
    EXPECT_FALSE(SaveToBytes(*MakeBush(), *context).empty());
    ASSERT_GT(reports.size(), 3u);
    EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
    EXPECT_EQ(reports.front(), 0);
    EXPECT_EQ(reports.back(), 1);
}

TEST(SaveProgress, CanBeStoppedAtEachReport) {
    const auto root = MakeBush();
    const auto whole = MakeContext();
    SaveToBytes(*root, *whole);
    for (int report = 1; report <= whole->ReportCount(); ++report) {
        const auto context = MakeContext();
        context->CancelAtReport(report);
        EXPECT_EQ(SaveToBytes(*root, *context), "") << report;
        EXPECT_EQ(context->GetFailure(), LoadFailure::kCancelled) << report;
    }
}

}  // namespace
}  // namespace qn::test
