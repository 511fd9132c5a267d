#pragma once

#include <string>

namespace qn::gltf_export {

/// Whether the .gltf at `path` names `bufferName`, a file in its folder, as one of its buffers. False if it
/// is not there, cannot be read, or is no JSON.
bool NamesBuffer(const std::string& path, const std::string& bufferName);

}  // namespace qn::gltf_export
