#pragma once

#include <functional>
#include <string>

namespace qn::step {

/// What went wrong inside the kernel. After a fault the work was torn off: what it held is leaked, and the
/// kernel's objects are not to be trusted.
struct GuardResult {
    std::string error;  ///< empty if nothing did
    bool isFault = false;
};

/// Runs `work`, which calls the modelling kernel. Catches exceptions of the kernel and of the
/// standard library, and faults inside the kernel (bad access, arithmetic fault, end of the stack). Only the
/// thread that runs `work` is watched; signal handlers are put back at the end. In builds with sanitizers
/// faults stay with the sanitizer.
GuardResult RunGuarded(const std::function<void()>& work);

/// Keeps the kernel from writing to the console while it lives.
class QuietKernel {
public:
    QuietKernel();
    ~QuietKernel();
    QuietKernel(const QuietKernel&) = delete;
    QuietKernel& operator=(const QuietKernel&) = delete;

private:
    struct Printers;
    Printers* printers_;
};

}  // namespace qn::step
