#include "tool/similar_file.h"

#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace assembly::tests {
namespace {

class SimilarFile : public testing::Test {
protected:
    SimilarFile() {
        std::filesystem::create_directory(folder_.File("Parts"));
        for (const char* name : {"Parts/Long Bolt.stp", "Parts/50%.stp", "parts.stp"})
            WriteAll(folder_.File(name), "x");
    }
    std::string Find(const std::string& name) {
        const std::string found = files_.Find(folder_.File(name));
        return found.empty() ? found
                             : std::filesystem::path(found).lexically_relative(folder_.Path()).string();
    }
    TemporaryFolder folder_;
    tool::SimilarFiles files_;
};

TEST_F(SimilarFile, HasLettersOfOtherCase) {
    EXPECT_EQ(Find("Parts/LONG BOLT.STP"), "Parts/Long Bolt.stp");
    EXPECT_EQ(Find("parts/long bolt.stp"), "Parts/Long Bolt.stp");
}

TEST_F(SimilarFile, HasLettersThatAreWrittenAsNumbers) {
    EXPECT_EQ(Find("parts/long%20bolt.stp"), "Parts/Long Bolt.stp");
    EXPECT_EQ(Find("Parts/50%25.stp"), "Parts/50%.stp");
    EXPECT_EQ(Find("Parts/50%2"), "");
}

TEST_F(SimilarFile, IsNotOneOfAnotherName) {
    std::filesystem::create_symlink("gone.stp", folder_.File("link.stp"));
    EXPECT_EQ(Find("link.stp"), "");
    EXPECT_EQ(Find("LINK.stp"), "");
    EXPECT_EQ(Find("Parts/bolts.stp"), "");
    EXPECT_EQ(Find("nowhere/Long Bolt.stp"), "");
}

}  // namespace
}  // namespace assembly::tests
