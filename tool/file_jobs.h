#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace assembly::tool {

/// What a job left.
struct JobResult {
    bool finished = false;  ///< false: its process broke off
    std::string output;     ///< what `work` gave
    std::string messages;   ///< what it wrote to stderr
};

/// Runs `work` for 0 to `count` - 1, each in a process of its own, up to `atOnce` at a time: the engine is
/// made for one thread, and a file that ends a process does not end the others. `take` gets the results in
/// order, each as soon as those before it are done. Call it before anything was started in this process.
void RunInProcesses(std::size_t count, std::size_t atOnce,
                    const std::function<std::string(std::size_t)>& work,
                    const std::function<void(std::size_t, const JobResult&)>& take);

}  // namespace assembly::tool
