#include "tool/file_jobs.h"

#include "tool/failure.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

namespace assembly::tool {
namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using TempFile = std::unique_ptr<std::FILE, CloseFile>;

TempFile MakeTempFile() {
    TempFile file(std::tmpfile());
    if (!file) throw Failure(ExitCode::kNotWritten, "no temporary file can be made");
    return file;
}

std::string ReadAll(std::FILE* file) {
    std::string text;
    char buffer[1 << 14];
    std::rewind(file);
    while (const std::size_t read = std::fread(buffer, 1, sizeof buffer, file))
        text.append(buffer, read);
    return text;
}

struct Job {
    TempFile output = MakeTempFile();
    TempFile messages = MakeTempFile();
};

/// The rest of a process that a job has for itself.
[[noreturn]] void RunJob(const Job& job, const std::function<std::string(std::size_t)>& work,
                         std::size_t index) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    ::dup2(::fileno(job.messages.get()), STDERR_FILENO);
    const std::string output = work(index);
    const bool written = std::fwrite(output.data(), 1, output.size(), job.output.get()) == output.size() &&
                         std::fflush(job.output.get()) == 0;
    std::exit(written ? EXIT_SUCCESS : EXIT_FAILURE);
}

class Jobs {
public:
    explicit Jobs(const std::function<std::string(std::size_t)>& work) : work_(work) {}

    void Start(std::size_t index) {
        Job job;
        std::fflush(nullptr);
        const pid_t process = ::fork();
        if (process < 0) throw Failure(ExitCode::kLimit, "no further process can be started");
        if (process == 0) RunJob(job, work_, index);
        running_.emplace(process, Running{index, std::move(job)});
    }
    std::size_t CountRunning() const { return running_.size(); }
    void WaitForOne() {
        int status = 0;
        const auto found = running_.find(::wait(&status));
        if (found == running_.end()) return;
        const auto& [index, job] = found->second;
        const bool finished = WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
        done_[index] = {finished, ReadAll(job.output.get()), ReadAll(job.messages.get())};
        running_.erase(found);
    }
    /// Hands a result to `take`; false if the job is not done.
    bool Take(std::size_t index, const std::function<void(std::size_t, const JobResult&)>& take) {
        const auto found = done_.find(index);
        if (found == done_.end()) return false;
        take(index, found->second);
        done_.erase(found);
        return true;
    }

private:
    struct Running {
        std::size_t index;
        Job job;
    };
    const std::function<std::string(std::size_t)>& work_;
    std::map<pid_t, Running> running_;
    std::map<std::size_t, JobResult> done_;
};

/// A cancelled job says so itself; this process lives on to tell.
class IgnoredInterrupt {
public:
    IgnoredInterrupt() : former_(std::signal(SIGINT, SIG_IGN)) {}
    ~IgnoredInterrupt() { std::signal(SIGINT, former_); }

private:
    void (*former_)(int);
};

}  // namespace

void RunInProcesses(std::size_t count, std::size_t atOnce,
                    const std::function<std::string(std::size_t)>& work,
                    const std::function<void(std::size_t, const JobResult&)>& take) {
    const IgnoredInterrupt ignored;
    Jobs jobs(work);
    std::size_t next = 0;
    for (std::size_t taken = 0; taken < count;) {
        while (next < count && jobs.CountRunning() < atOnce)
            jobs.Start(next++);
        jobs.WaitForOne();
        while (jobs.Take(taken, take))
            ++taken;
    }
}

}  // namespace assembly::tool
