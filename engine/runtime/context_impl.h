#pragma once

#include "frame/host/context.h"

#include <atomic>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qn {

namespace k3 {
class Node;
}  // namespace k3

/// The engine's context: keeps every message, and can be cancelled from a signal handler or another thread.
class ContextImpl : public Context {
public:
    struct Message {
        int level;
        String text;
    };
    /// How far the step is, 0 to 1; false asks to stop.
    using ProgressFunction = std::function<bool(double fraction)>;
    using MessageFunction = std::function<void(const Message& message)>;
    using ImportFunction = std::function<void(k3::Node& top)>;

    ContextImpl();
    ~ContextImpl() override;

    const std::vector<Message>& GetMessages() const { return messages_; }
    /// The text that came with the first failure.
    const String& GetFailureText() const { return failureText_; }

    void SetProgressFunction(ProgressFunction function) { progress_ = std::move(function); }
    /// Called with each message after it was kept.
    void SetMessageFunction(MessageFunction function) { listener_ = std::move(function); }
    /// Called with the top node of each file that was read, before anybody else sees it.
    void SetImportFunction(ImportFunction function) { imported_ = std::move(function); }
    void NoteImport(k3::Node& top) const {
        if (imported_) imported_(top);
    }
    /// From now on the operation stops as soon as it can. Safe in a signal handler.
    void Cancel() noexcept { cancelled_.store(true, std::memory_order_relaxed); }
    /// Forgets messages, failure and cancellation, so that the context serves a further operation.
    void Restart();

    void ReportMessage(const MessageInfo& info, const String& text) override;
    int GetOption(int reserved, const char* key, int reserved2) const override;
    void SetOption(const char* key, int value) override;
    bool ReportProgress(double fraction) override;
    bool IsCancelled() const override { return cancelled_.load(std::memory_order_relaxed); }
    void Fail(LoadFailure kind, const String& text) override;
    LoadFailure GetFailure() const override { return failure_; }

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    std::vector<Message> messages_;
    std::map<std::string, int, std::less<>> options_;
    ProgressFunction progress_;
    MessageFunction listener_;
    ImportFunction imported_;
    String failureText_;
    LoadFailure failure_ = LoadFailure::kNone;
    std::atomic<bool> cancelled_{false};
};

static_assert(std::atomic<bool>::is_always_lock_free);

}  // namespace qn
