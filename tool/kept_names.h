#pragma once

#include "frame/host/scene_document.h"
#include "graph/reference.h"

#include <string>
#include <vector>

namespace assembly::tool {

/// A definition that still names a file when its scene is written.
struct KeptName {
    qn::Counted<qn::graph::Reference> definition;
    std::string namingFile;  ///< the file whose folder the name is relative to
};

/// All of a scene, with `file` as the file that they come from. Costs by definitions, uses and nodes.
std::vector<KeptName> KeptNamesOf(qn::k3::Scene& scene, const std::string& file);

/// Gives the names the form by which they lead from the folder of `output` to where they lead now, and tells
/// on stderr if this is out of that folder, which a reader of the new file has to allow. Fails, with
/// no name changed, with kNotWritten if one cannot be said, with kUsage if one leads to `output` itself,
/// which is another file than that of the name.
void MoveNames(const std::vector<KeptName>& names, const std::string& output);

}  // namespace assembly::tool
