#pragma once

#include "tool/named_files.h"

namespace assembly::tool {

/// Reads the files that definitions of the scene name into the scene itself, with their views and layers:
/// those that `files` has as read, each once. `files` comes from a run over the same first file. Other names
/// stay as they are. Costs by occurrences of the files. Fails with kUsage if the scene holds nodes of its
/// own, which would not show what comes in.
void MergeNamedFiles(Session& session, qn::k3::Scene& scene, const NamedFiles& files,
                     const FollowRequest& follow);

}  // namespace assembly::tool
