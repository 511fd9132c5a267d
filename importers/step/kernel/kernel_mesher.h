#pragma once

#include "importers/step/kernel/kernel_watch.h"
#include "importers/step/step_geometry.h"
#include "importers/step/step_mesh.h"

#include <Standard_Transient.hxx>
#include <TopoDS_Shape.hxx>

#include <unordered_map>

namespace qn::step {

/// Colours of faces, by the face without its place.
using FaceColours = std::unordered_map<const Standard_Transient*, Colour>;

/// A shape of a definition, how it stands in it, and the colour of faces that have none of their own.
struct PlacedShape {
    TopoDS_Shape shape;
    Transform toDefinition = kIdentity;
    std::optional<Colour> colour;
};

/// Triangulates the shapes into one mesh. Faces that cannot be triangulated, or are not when the watch stops
/// the work, are left out.
MeshData MeshShapes(const std::vector<PlacedShape>& shapes, const FaceColours& colours,
                    const Tessellation& tessellation, KernelWatch& watch);

}  // namespace qn::step
