#pragma once

#include "frame/host/var.h"

namespace qn::graph {

/// Metadata are groups of entries. Takes out of `metadata` every entry that stands with an equal value in the
/// group of the same key in `base`; groups stay, even empty. Works on a private copy: `metadata` is replaced
/// only if something goes out, other holders of the map see nothing. True if so.
bool RemoveRepeatedMetadata(Var& metadata, const Var& base);

}  // namespace qn::graph
