#pragma once

#include "frame/host/object_writer.h"

#include <vector>

namespace qn {

/// Writers of the engine's own classes whose content their `Save` does not cover: parameter tables and lists
/// of objects.
std::vector<ObjectWriter> BuiltinWriters();

}  // namespace qn
