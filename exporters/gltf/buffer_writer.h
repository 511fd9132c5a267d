#pragma once

#include "exporters/gltf/mesh_plan.h"
#include "exporters/gltf/sink.h"

namespace qn::gltf_export {

/// Writes the buffer as the plan lays it out: `MeshPlan::BufferBytes` bytes. Throws ExportFailure.
void WriteBuffer(const MeshPlan& plan, Sink& sink);

}  // namespace qn::gltf_export
