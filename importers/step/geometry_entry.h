#pragma once

#include "importers/step/step_geometry.h"

namespace qn::step {

/// The library with everything that needs the modelling kernel stands beside the importer. It is loaded when
/// geometry is asked for, because loading the kernel takes longer than reading most structures.
inline constexpr const char* kGeometryLibrary = "step_kernel.so";
/// Its one exported function, which does what `ReadGeometry` says.
inline constexpr const char* kGeometryEntry = "ReadStepGeometry";
using GeometryEntry = void (*)(const StructureResult& structure, const Tessellation& tessellation,
                               const MeshSink& take, const ProgressSink& progress, GeometryResult& result);

}  // namespace qn::step
