#pragma once

#include "tool/session.h"

#include <string>

namespace assembly::tool {

struct GltfRequest {
    std::string file;            ///< UTF-8; ends in .glb or .gltf
    bool structureOnly = false;  ///< nodes without meshes
    std::string up;              ///< axis of the scene that points up: "y", "z"; empty: by what the file says
};

/// Whether the file name is one of glTF.
bool IsGltfName(const std::string& file);
/// The scene of a file as an export needs it: by definitions and uses alone, unless single occurrences say
/// something of their own.
qn::Counted<qn::k3::Scene> LoadForExport(Session& session, LoadRequest request);
/// Writes the scene's occurrence tree. Fails with kNotWritten, kLimit or kCancelled; nothing is left then.
void ExportGltf(qn::k3::Scene& scene, Session& session, const GltfRequest& request);

}  // namespace assembly::tool
