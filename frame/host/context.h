#pragma once

#include "frame/host/extension.h"

namespace qn {

/// Goes with a reported message.
struct MessageInfo {
    explicit constexpr MessageInfo(int level) : level(level) {}
    int level;  ///< 2 error, 3 error of file loading
};

/// Why a load, or a step that also writes, failed, for callers that answer with different exit codes.
enum class LoadFailure { kNone, kUnreadable, kMalformed, kLimit, kMissing, kCancelled, kDefect, kNotWritten };

/// The surroundings of one operation: parameters, options, messages, progress.
class Context : public Extension {
public:
    virtual void ReportMessage(const MessageInfo& info, const String& text) = 0;
    /// An option by name, 0 if not set. The first and last arguments mean nothing.
    virtual int GetOption(int reserved, const char* key, int reserved2) const = 0;
    virtual void SetOption(const char* key, int value) = 0;
    /// How far the present step is, 0 to 1. Gives false if the user wants to stop.
    virtual bool ReportProgress(double fraction) = 0;
    virtual bool IsCancelled() const = 0;
    /// Keeps the first failure and reports its text as a message of level 3.
    virtual void Fail(LoadFailure kind, const String& text) = 0;
    virtual LoadFailure GetFailure() const = 0;

    const char* GetInterfaceName() const override { return "k3_context"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn
