#pragma once

#include "frame/host/context.h"
#include "frame/host/string.h"

#include <string>
#include <string_view>

namespace qn {

/// Reads a regular file up to `scene_file_limits::kLargestFile`; false with the cause in the context.
bool ReadWholeFile(const String& path, std::string& bytes, Context& context);

/// Writes to a new file beside `path`, flushes it to the disk, renames it to `path` and flushes the folder. A
/// link is followed, the old file's permissions are kept. On failure the old file is as it was, the new one
/// is gone, and the cause is in the context.
bool WriteFileSafely(const String& path, std::string_view bytes, Context& context);

}  // namespace qn
