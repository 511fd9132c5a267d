#pragma once

#include <cstdint>
#include <string>

namespace qn::bench {

enum class GltfShape : std::int64_t {
    kFlat = 0,       ///< all nodes are roots
    kTwoLevels = 1,  ///< groups of 100 nodes
    kNamed = 2,      ///< two levels, every node with a name and a rotation
};

const char* NameOf(GltfShape shape);

/// A glTF file of so many nodes that share 100 meshes, each moved.
std::string GltfText(std::int64_t nodes, GltfShape shape);

}  // namespace qn::bench
