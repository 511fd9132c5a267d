#pragma once

#include "frame/host/string.h"

#include <functional>
#include <string_view>

namespace qn {

/// Takes one line of a record; false if it cannot be used. Neither text is empty.
using RecordFieldFunction = std::function<bool(std::string_view name, std::string_view value)>;

/// Goes over the "name = value" lines of a record, the text file that stands beside a module ("#" starts a
/// comment line). False, with the line in `reason`, at the first line that cannot be used.
bool ReadRecordFields(std::string_view text, const RecordFieldFunction& take, String& reason);

/// Whether the text names a file beside its record: it has no folder.
bool IsPlainFileName(std::string_view name);

}  // namespace qn
