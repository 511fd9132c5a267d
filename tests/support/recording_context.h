#pragma once

#include "engine/runtime/context_impl.h"

namespace qn::test {

/// A context for tests: the engine's own, with the messages as plain texts and a cancellation that comes by
/// itself.
class RecordingContext final : public ContextImpl {
public:
    /// UTF-8, in order.
    std::vector<std::string> Texts() const;
    std::vector<int> Levels() const;
    /// Cancels at the `reports`-th progress report from now, counted from 1.
    void CancelAtReport(int reports);
    int ReportCount() const { return reports_; }

    bool ReportProgress(double fraction) override;

private:
    int reports_ = 0;
    int cancelAt_ = -1;
};

inline Counted<RecordingContext> MakeContext() {
    return Make<RecordingContext>();
}

}  // namespace qn::test
