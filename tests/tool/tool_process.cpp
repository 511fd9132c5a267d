#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <fstream>

namespace assembly::tests {
namespace {

[[noreturn]] void Become(const std::string& program, const std::vector<std::string>& arguments, int out,
                         int err) {
    ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    ::execvp(program.c_str(), words.data());
    ::_exit(127);
}

}  // namespace

ToolRun RunProgram(const std::string& program, const std::vector<std::string>& arguments) {
    const TemporaryFolder folder;
    const std::string outFile = folder.File("out"), errFile = folder.File("err");
    const int out = ::open(outFile.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    const int err = ::open(errFile.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    const pid_t child = ::fork();
    if (child == 0) Become(program, arguments, out, err);
    ::close(out);
    ::close(err);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    ToolRun run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    run.out = ReadAll(outFile);
    run.err = ReadAll(errFile);
    return run;
}

ToolRun RunTool(const std::vector<std::string>& arguments) {
    return RunProgram(ASSEMBLY_TOOL, arguments);
}

nlohmann::json ToolJson(const std::vector<std::string>& arguments) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    nlohmann::json parsed = nlohmann::json::parse(run.out, nullptr, false);
    EXPECT_FALSE(parsed.is_discarded()) << run.out.substr(0, 1000);
    return parsed;
}

void WriteAll(const std::string& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

}  // namespace assembly::tests
