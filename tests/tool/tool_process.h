#pragma once

#include "tests/support/data_dir.h"
#include "tests/support/temp_folder.h"

#include <nlohmann/json.hpp>
#include <filesystem>
#include <string>
#include <vector>

namespace assembly::tests {

/// What one run of the tool left.
struct ToolRun {
    int exitCode = -1;
    std::string out, err;
};

/// Runs the tool with these arguments, no standard input, and no terminal.
ToolRun RunTool(const std::vector<std::string>& arguments);
/// Runs any program; `program` is looked up in PATH.
ToolRun RunProgram(const std::string& program, const std::vector<std::string>& arguments);
/// The tool's output as JSON; fails the test, with what it printed, if it did not end with 0.
nlohmann::json ToolJson(const std::vector<std::string>& arguments);

/// The folder of the real assembly files; empty if it is not there.
inline std::filesystem::path DataFolder() {
    return qn::test::HasData() ? qn::test::DataDir() : std::filesystem::path();
}
/// A folder of this test's own, removed with the object, whose files are named in UTF-8.
class TemporaryFolder : public qn::test::TempFolder {
public:
    std::string File(const std::string& name) const { return (Path() / name).string(); }
};

inline std::string ReadAll(const std::string& file) {
    return qn::test::ReadBytes(file);
}
void WriteAll(const std::string& file, const std::string& bytes);

}  // namespace assembly::tests
