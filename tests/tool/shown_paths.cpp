#include "tests/tool/shown_paths.h"

#include "tests/support/sha256.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace assembly::tests {

using nlohmann::json;

void ExpectPaths(const json& shown, const json& expected,
                 const std::function<std::string(const json& occurrence)>& nameOf) {
    std::vector<std::string> paths;
    for (const json& occurrence : shown["occurrences"]) {
        const std::string name = nameOf(occurrence);
        const json& parent = occurrence["parent"];
        paths.push_back(parent.is_null() ? name : paths[parent.get<std::size_t>()] + "/" + name);
    }
    std::sort(paths.begin(), paths.end());
    if (!expected["paths"].is_null()) {
        EXPECT_EQ(json(paths), expected["paths"]);
    }
    EXPECT_EQ(qn::test::Sha256OfLines(paths), expected["paths_sha256"]);
}

}  // namespace assembly::tests
