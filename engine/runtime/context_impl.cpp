#include "engine/runtime/context_impl.h"

namespace qn {
namespace {

constexpr int kLoadingLevel = 3;  // level of messages about loading a file

}  // namespace

bool Context::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_context") || Extension::IsTypeOf(name);
}

const ClassRecord& Context::StaticClass() {
    static const ClassRecord& record = InternClass("qn::Context");
    return record;
}

void* Context::CastTo(const ClassRecord& wanted) {
    return CastThrough<Context, Extension>(this, wanted);
}

ContextImpl::ContextImpl() = default;
ContextImpl::~ContextImpl() = default;

void ContextImpl::Restart() {
    messages_.clear();
    failureText_.Clear();
    failure_ = LoadFailure::kNone;
    cancelled_.store(false, std::memory_order_relaxed);
}

void ContextImpl::ReportMessage(const MessageInfo& info, const String& text) {
    messages_.push_back({info.level, text});
    if (listener_) listener_(Message{info.level, text});
}

int ContextImpl::GetOption(int, const char* key, int) const {
    const auto found = key ? options_.find(std::string_view(key)) : options_.end();
    return found == options_.end() ? 0 : found->second;
}

void ContextImpl::SetOption(const char* key, int value) {
    if (key) options_[key] = value;
}

bool ContextImpl::ReportProgress(double fraction) {
    if (progress_ && !progress_(fraction)) Cancel();
    return !IsCancelled();
}

void ContextImpl::Fail(LoadFailure kind, const String& text) {
    if (failure_ == LoadFailure::kNone) {
        failure_ = kind;
        failureText_ = text;
    }
    ReportMessage(MessageInfo(kLoadingLevel), text);
}

const ClassRecord& ContextImpl::StaticClass() {
    static const ClassRecord& record = InternClass("qn::ContextImpl");
    return record;
}

void* ContextImpl::CastTo(const ClassRecord& wanted) {
    return CastThrough<ContextImpl, Context>(this, wanted);
}

}  // namespace qn
