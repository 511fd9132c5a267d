// Real files have sound hierarchies, as they come and with their nodes stored.

#include "tests/support/data_dir.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace assembly::tests {
namespace {

namespace fs = std::filesystem;

void ExpectSound(const std::vector<fs::path>& files) {
    std::vector<std::string> call = {"check", "--jobs", "2"};
    for (const fs::path& file : files)
        call.push_back(file.string());
    const ToolRun run = RunTool(call);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "");
}

TEST(CheckedData, HasNoFindingsInStepFiles) {
    if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
    ExpectSound(qn::test::DataFiles({".stp", ".step"}));
}

TEST(CheckedData, HasNoFindingsInGltfFiles) {
    if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
    ExpectSound(qn::test::DataFiles({".gltf", ".glb"}));
}

TEST(CheckedData, HasNoFindingsInStepFilesWithStoredNodes) {
    if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
    const TemporaryFolder folder;
    std::vector<fs::path> stored;
    for (const fs::path& file : qn::test::DataFiles({".stp", ".step"})) {
        for (const char* form : {"--structure-only", "--expand"}) {
            stored.push_back(folder.File(std::to_string(stored.size()) + ".qn"));
            std::vector<std::string> call = {"convert", "--structure-only", file.string(),
                                             stored.back().string()};
            if (std::string(form) == "--expand") call.push_back(form);
            ASSERT_EQ(RunTool(call).exitCode, 0) << file;
        }
    }
    ExpectSound(stored);
}

}  // namespace
}  // namespace assembly::tests
