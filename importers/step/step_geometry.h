#pragma once

#include "importers/step/step_mesh.h"
#include "importers/step/step_structure.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace qn::step {

struct Tessellation {
    /// Largest distance between a surface and its triangles in millimetres; 0 or less: a
    /// thousandth of the definition's diagonal.
    double tolerance = 0;
    double angle = 20;  ///< largest angle between neighbouring facets, degrees
};

/// Receives the meshes, one call for each definition that has triangles, in their order.
using MeshSink = std::function<void(std::size_t definition, MeshData mesh)>;
/// Hears how far the work is, 0 to 1. False stops it.
using ProgressSink = std::function<bool(double fraction)>;

struct GeometryResult {
    std::string error;  ///< empty if all went well, else the file's name and the cause
    Cause cause = Cause::kNone;
    std::vector<std::string> warnings;  ///< shapes that could not be built; the rest is there
    bool isCancelled = false;

    bool Ok() const { return error.empty() && !isCancelled; }
};

/// Builds and triangulates the own shapes of all definitions of a structure that was read without error and
/// still has its file. The kernel sees no more of the file than these shapes: an assembly gets what is
/// its own and nothing of its components, and several representations of one definition give one mesh.
/// Throws nothing but what the sinks throw.
GeometryResult ReadGeometry(const StructureResult& structure, const Tessellation& tessellation,
                            const MeshSink& take, const ProgressSink& progress);

}  // namespace qn::step
