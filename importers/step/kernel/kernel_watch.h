#pragma once

#include "importers/step/step_limits.h"

#include <Message_ProgressIndicator.hxx>

#include <chrono>
#include <functional>

namespace qn::step {

/// Stops a long piece of the kernel's work: when the user wants to, or when it takes longer than any sound
/// shape does.
class KernelWatch final : public Message_ProgressIndicator {
public:
    static constexpr std::chrono::seconds kLongestWork{
        step_limits::kLongestShapeSeconds};  ///< for one definition

    /// `wantsMore` is asked some times in a second; false stops the work.
    explicit KernelWatch(std::function<bool()> wantsMore, std::chrono::milliseconds longest = kLongestWork)
        : wantsMore_(std::move(wantsMore)), longest_(longest) {}

    /// From now on the time of the next definition runs.
    void BeginDefinition();
    /// A range for one call of the kernel.
    Message_ProgressRange Range() { return Start(); }
    /// Whether the definition was stopped for the time that it took.
    bool TookTooLong() const { return tookTooLong_; }

    Standard_Boolean UserBreak() override;
    void Show(const Message_ProgressScope&, const Standard_Boolean) override {}

private:
    using Clock = std::chrono::steady_clock;

    std::function<bool()> wantsMore_;
    std::chrono::milliseconds longest_;
    Clock::time_point begin_;
    Clock::time_point asked_;
    bool isStopped_ = false;
    bool tookTooLong_ = false;
};

}  // namespace qn::step
