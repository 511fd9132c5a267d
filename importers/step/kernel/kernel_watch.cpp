#include "importers/step/kernel/kernel_watch.h"

namespace qn::step {
namespace {

constexpr std::chrono::milliseconds kBetweenQuestions{100};

}  // namespace

void KernelWatch::BeginDefinition() {
    begin_ = asked_ = Clock::now();
    isStopped_ = tookTooLong_ = false;
}

Standard_Boolean KernelWatch::UserBreak() {
    if (isStopped_) return true;
    const auto now = Clock::now();
    if (now - asked_ < kBetweenQuestions) return false;
    asked_ = now;
    tookTooLong_ = now - begin_ > longest_;
    isStopped_ = tookTooLong_ || (wantsMore_ && !wantsMore_());
    return isStopped_;
}

}  // namespace qn::step
