#include "importers/step/kernel/kernel_guard.h"

#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <setjmp.h>
#include <signal.h>
#include <Standard_Failure.hxx>

#include <array>
#include <exception>
#include <iterator>
#include <new>
#include <vector>

namespace qn::step {
namespace {

constexpr struct {
    int signal;
    const char* text;
} kFaults[] = {
    {SIGSEGV, "the modelling kernel failed: bad memory access"},
    {SIGBUS, "the modelling kernel failed: bad memory access"},
    {SIGFPE, "the modelling kernel failed: arithmetic fault"},
    {SIGILL, "the modelling kernel failed: illegal instruction"},
};

thread_local sigjmp_buf* wayOut = nullptr;

/// Leaves the guarded work, or dies of the signal in a thread that is not guarded.
void OnFault(int signal) {
    if (wayOut) siglongjmp(*wayOut, signal);
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

/// Handlers for faults, on a stack of their own: the fault may be that there is no stack left.
class FaultHandlers {
public:
    FaultHandlers() : stack_(kStackSize) {
        stack_t own{};
        own.ss_sp = stack_.data();
        own.ss_size = stack_.size();
        sigaltstack(&own, &oldStack_);
        struct sigaction action {};
        action.sa_handler = OnFault;
        action.sa_flags = SA_ONSTACK | SA_NODEFER;
        sigemptyset(&action.sa_mask);
        for (std::size_t i = 0; i < old_.size(); ++i)
            sigaction(kFaults[i].signal, &action, &old_[i]);
    }
    ~FaultHandlers() {
        for (std::size_t i = 0; i < old_.size(); ++i)
            sigaction(kFaults[i].signal, &old_[i], nullptr);
        sigaltstack(&oldStack_, nullptr);
    }
    FaultHandlers(const FaultHandlers&) = delete;
    FaultHandlers& operator=(const FaultHandlers&) = delete;

private:
    static constexpr std::size_t kStackSize = 64 * 1024;
    std::vector<char> stack_;
    stack_t oldStack_{};
    std::array<struct sigaction, std::size(kFaults)> old_{};
};

std::string CatchExceptions(const std::function<void()>& work) {
    try {
        work();
    } catch (const Standard_Failure& failure) {
        const char* text = failure.GetMessageString();
        const std::string kind = failure.DynamicType()->Name();
        return "the modelling kernel failed: " + (text && *text ? kind + ", " + text : kind);
    } catch (const std::bad_alloc&) {
        return "not enough memory";
    } catch (const std::exception& failure) {
        return failure.what();
    }
    return {};
}

#ifndef ASSEMBLY_SANITIZERS
/// The signal that ended the work, 0 if none did. Holds nothing that a jump would lose.
[[gnu::noinline]] int JumpPoint(const std::function<void()>& work, std::string& error) {
    sigjmp_buf here;
    sigjmp_buf* const outer = wayOut;
    const int signal = sigsetjmp(here, 1);
    if (signal == 0) {
        wayOut = &here;
        error = CatchExceptions(work);
    }
    wayOut = outer;
    return signal;
}
#endif

}  // namespace

#ifdef ASSEMBLY_SANITIZERS
GuardResult RunGuarded(const std::function<void()>& work) {
    return {CatchExceptions(work), false};
}
#else
GuardResult RunGuarded(const std::function<void()>& work) {
    const FaultHandlers handlers;
    GuardResult result;
    const int signal = JumpPoint(work, result.error);
    for (const auto& fault : kFaults)
        if (fault.signal == signal) result = {fault.text, true};
    return result;
}
#endif

struct QuietKernel::Printers {
    Message_SequenceOfPrinters kept;
};

QuietKernel::QuietKernel() : printers_(new Printers) {
    auto& present = Message::DefaultMessenger()->ChangePrinters();
    printers_->kept = present;
    present.Clear();
}

QuietKernel::~QuietKernel() {
    Message::DefaultMessenger()->ChangePrinters() = printers_->kept;
    delete printers_;
}

}  // namespace qn::step
