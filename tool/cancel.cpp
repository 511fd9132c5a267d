#include "tool/cancel.h"

#include "tool/failure.h"

#include <atomic>

namespace assembly::tool {
namespace {

std::atomic<bool> cancelled = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

}  // namespace

void NoteCancel() noexcept {
    cancelled.store(true, std::memory_order_relaxed);
}

void ThrowIfCancelled() {
    if (cancelled.load(std::memory_order_relaxed)) throw Failure(ExitCode::kCancelled, "cancelled");
}

}  // namespace assembly::tool
