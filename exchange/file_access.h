#pragma once

#include "frame/host/context.h"

#include <string>
#include <string_view>

namespace qn::exchange {

/// The context, or a fresh one that nobody reads where the caller has none.
Counted<Context> UsedContext(Context* context);

/// Makes the folder and those above it; true if it is there. False with the cause in the context.
bool MakeFolder(const String& folder, Context& context);

/// Reads a whole file of at most `exchange_limits::kLargestFile` bytes; false with the cause in the context.
bool ReadInput(const String& file, std::string& bytes, Context& context);

/// Writes a whole file, its folder first; a failure leaves the old file and the cause in the context.
bool WriteOutput(const String& file, std::string_view bytes, Context& context);

/// Whether the file name has that ending (as ".json"), in any ASCII case.
bool EndsWith(const String& file, std::string_view ending);

}  // namespace qn::exchange
