#pragma once

#include "frame/host/context.h"
#include "frame/host/scene_document.h"

namespace qn::exchange {

/// Adds a file to the scene as one top-level node. Under a filter in the context (parameter 0xa7) only a part
/// of it shows: an occurrence is wanted if the filter names the server id of its node or of its instance; it
/// then shows with everything below it and the nodes above it. All other occurrences are hidden, and no view
/// of the file stays. A file without anything wanted adds nothing and is told. False with the cause in the
/// context, and the scene as it was, if the file cannot be loaded.
bool MergeWanted(k3::Scene& scene, const String& file, Context& context);

}  // namespace qn::exchange
