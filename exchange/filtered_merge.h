#pragma once

#include "frame/host/context.h"
#include "frame/host/scene_document.h"

namespace qn::exchange {

/// Adds the part of a file that the context's filter (parameter 0xa7) wants to the scene, as one top-level
/// node; all of it without a filter. An occurrence is wanted if the filter names the server id of its node or
/// of its instance; it then comes with everything below it, and with the nodes above it. Nothing else of the
/// file stays, no view of it either. False with the cause in the context, and the scene as it was, if the
/// file cannot be loaded. A file without anything wanted adds nothing and is told.
bool MergeWanted(k3::Scene& scene, const String& file, Context& context);

}  // namespace qn::exchange
