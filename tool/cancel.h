#pragma once

namespace assembly::tool {

/// Notes that the user wants the run to end. May be called from a signal handler.
void NoteCancel() noexcept;
/// Fails with kCancelled once the user wants the run to end. Cheap enough for every line of an output.
void ThrowIfCancelled();

}  // namespace assembly::tool
