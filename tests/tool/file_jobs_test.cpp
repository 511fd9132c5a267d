#include "tool/file_jobs.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <cstdio>
#include <vector>

namespace assembly::tests {
namespace {

using tool::JobResult;
using tool::RunInProcesses;

std::vector<JobResult> ResultsOf(std::size_t count, std::size_t atOnce,
                                 const std::function<std::string(std::size_t)>& work) {
    std::vector<JobResult> results;
    RunInProcesses(count, atOnce, work, [&](std::size_t index, const JobResult& result) {
        EXPECT_EQ(index, results.size());
        results.push_back(result);
    });
    return results;
}

TEST(FileJobs, GiveTheirResultsInOrder) {
    const auto results = ResultsOf(20, 4, [](std::size_t index) {
        ::usleep(static_cast<unsigned>((20 - index) * 500));
        return std::string(index, 'x');
    });
    ASSERT_EQ(results.size(), 20u);
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_TRUE(results[i].finished);
        EXPECT_EQ(results[i].output.size(), i);
    }
}

TEST(FileJobs, AreNoneForNoFiles) {
    EXPECT_TRUE(ResultsOf(0, 4, [](std::size_t) { return std::string("x"); }).empty());
}

TEST(FileJobs, GoOnWhereOneBreaksOff) {
    const auto results = ResultsOf(3, 1, [](std::size_t index) {
        if (index == 1) ::_exit(9);
        return std::string("done");
    });
    ASSERT_EQ(results.size(), 3u);
    EXPECT_TRUE(results[0].finished);
    EXPECT_FALSE(results[1].finished);
    EXPECT_EQ(results[2].output, "done");
}

TEST(FileJobs, KeepWhatTheyWriteToStderr) {
    const auto results = ResultsOf(2, 2, [](std::size_t index) {
        std::fprintf(stderr, "job %zu\n", index);
        return std::string();
    });
    EXPECT_EQ(results.at(0).messages, "job 0\n");
    EXPECT_EQ(results.at(1).messages, "job 1\n");
}

TEST(FileJobs, ReturnMoreThanAPipeHolds) {
    const auto results = ResultsOf(1, 1, [](std::size_t) { return std::string(3'000'000, 'y'); });
    EXPECT_EQ(results.at(0).output.size(), 3'000'000u);
}

}  // namespace
}  // namespace assembly::tests
