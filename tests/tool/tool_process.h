#pragma once

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
std::filesystem::path DataFolder();
/// A folder of this test's own, removed with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    std::string File(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& Path() const { return path_; }

private:
    std::filesystem::path path_;
};

std::string ReadAll(const std::string& file);
void WriteAll(const std::string& file, const std::string& bytes);

}  // namespace assembly::tests
