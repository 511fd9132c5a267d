#pragma once

#include "tool/occurrence_walk.h"

#include <cstdint>

namespace assembly::tool {

struct ShowOptions {
    std::uint32_t depth = OccurrenceWalk::kAllLevels;
    bool definitions = false;
    bool ids = false;
};

/// The ids of an element for print: server id, else the file's own id, else nothing. UTF-8.
std::string PersistentIdOf(const qn::graph::HierarchyElement& element);

}  // namespace assembly::tool
