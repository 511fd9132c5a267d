#pragma once

#include "tool/kept_names.h"
#include "tool/named_files.h"

namespace assembly::tool {

/// Reads the files that definitions of the scene name into the scene itself, with their views and layers:
/// those that `files` has as read, each once. `files` comes from a run over the same first file. Other names
/// stay, and are given back with the files that they come from. Costs by occurrences of the files. Nodes that
/// are stored do not show what comes in. Fails with kUsage if a top node has no definitions.
std::vector<KeptName> MergeNamedFiles(Session& session, qn::k3::Scene& scene, const NamedFiles& files,
                                      const FollowRequest& follow);

}  // namespace assembly::tool
