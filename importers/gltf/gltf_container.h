#pragma once

#include "importers/gltf/file_source.h"

#include <cstdint>
#include <memory>

namespace qn::gltf {

/// The two parts of a glTF file. The binary one is not read here.
struct Container {
    std::unique_ptr<char[]> text;  ///< JSON; unset bytes stand behind it
    std::size_t textLength = 0;
    std::size_t textCapacity = 0;
    std::uint64_t binaryOffset = 0;  ///< in the file
    std::uint64_t binaryLength = 0;
    bool hasBinary = false;
};

/// Tells both kinds of file apart by their content, and reads the text. Throws GltfError.
Container ReadContainer(const FileSource& file);

}  // namespace qn::gltf
