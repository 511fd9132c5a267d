#include "tests/support/recording_context.h"

namespace qn::test {

std::vector<std::string> RecordingContext::Texts() const {
    std::vector<std::string> texts;
    for (const Message& message : GetMessages())
        texts.push_back(message.text.ToUtf8());
    return texts;
}

std::vector<int> RecordingContext::Levels() const {
    std::vector<int> levels;
    for (const Message& message : GetMessages())
        levels.push_back(message.level);
    return levels;
}

void RecordingContext::CancelAtReport(int reports) {
    cancelAt_ = reports_ + reports;
}

bool RecordingContext::ReportProgress(double fraction) {
    if (++reports_ == cancelAt_) Cancel();
    return ContextImpl::ReportProgress(fraction);
}

}  // namespace qn::test
