#pragma once

#include "exporters/gltf/gltf_export.h"
#include "exporters/gltf/place.h"
#include "frame/host/var.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace qn::gltf_export {

inline constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

/// What one occurrence says apart from its use.
struct OverrideRow {
    std::uint32_t use = kNone;        ///< that carries it
    std::vector<std::uint32_t> path;  ///< uses, from any one down to `use`
    Var attributes;                   ///< map from property number to value
    std::string name;                 ///< empty: that of the use
    bool isMoved = false;
    Place place;  ///< node to parent, if it is moved
};

/// One use of a definition.
struct UseRow {
    graph::Instance* instance = nullptr;  ///< borrowed; may be null for a root
    std::uint32_t parent = kNone;         ///< definition; none for a root
    std::uint32_t definition = kNone;
    std::string name;
    Place place;                  ///< node to parent, the definition's own transform included
    bool isTwoNodes = false;      ///< in one of its occurrences at least, so in all
    bool nodeSaysMatrix = false;  ///< its first node has the very matrix of the use, or none
};

/// One definition with its uses of others.
struct DefinitionRow {
    graph::Reference* reference = nullptr;  ///< borrowed
    std::string name;
    std::uint32_t firstUse = 0;  ///< in `ExportModel::uses`
    std::uint32_t useCount = 0;
    std::uint64_t nodes = 0;        ///< of its own tree, itself included
    std::uint64_t occurrences = 0;  ///< in the whole tree
    std::uint32_t mesh = kNone;     ///< in the file; filled in by `MeshPlan`
};

/// The definition graph, flat: costs by definitions and uses. Root uses stand first, then those of the
/// definitions, in order; definitions stand as a walk from the roots, parents first, meets them.
struct ExportModel {
    std::vector<DefinitionRow> definitions;
    std::vector<UseRow> uses;
    std::uint32_t rootCount = 0;
    std::vector<OverrideRow> overrides;
    std::uint32_t container = kNone;
    std::uint64_t nodes = 0;  ///< without the frame
    bool isUpY = false;
    std::vector<std::string> warnings;
};

/// Throws ExportFailure for a definition that contains itself, a place that cannot be written, or too many
/// nodes.
ExportModel ReadModel(const Assembly& assembly, const Options& options);

}  // namespace qn::gltf_export
