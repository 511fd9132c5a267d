#pragma once

#include "frame/host/collections.h"
#include "frame/host/node.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace qn::k3 {

/// Groups of a node's fields that are recorded together.
namespace FieldKind {
inline constexpr unsigned kName = 1;
inline constexpr unsigned kAttributes = 2;
inline constexpr unsigned kObject = 4;
inline constexpr unsigned kTransform = 8;
}  // namespace FieldKind

/// The state of some groups of a node's fields.
struct NodeFields {
    unsigned kinds = 0;
    String name, displayName;
    unsigned flags = 0, word1 = 0;
    int integerAttribute = 0;
    std::int16_t shortValue = 0;
    float opacity = 1.0f;
    String text;
    Counted<Object3D> object;
    Matrix4<double> matrix, ownMatrix, thirdMatrix;
};

/// One of a scene's arrays: which one it is, and what it holds.
struct ArrayState {
    Counted<InterfaceArray> array;
    std::vector<Var> entries;
};

/// The arrays of a scene. Entries are held as the arrays hold them.
struct SceneArrays {
    ArrayState layers, viewports, entities, selection;
};

}  // namespace qn::k3
