#pragma once

#include "exporters/gltf/export_model.h"
#include "exporters/gltf/mesh_plan.h"
#include "exporters/gltf/sink.h"
#include "frame/host/context.h"

#include <string>

namespace qn::gltf_export {

/// Writes the JSON text of the file. `bufferUri` names the buffer's file; empty: the binary part of the same
/// file. Throws ExportFailure.
void WriteDocument(const ExportModel& model, const MeshPlan& plan, const std::string& bufferUri, Sink& sink,
                   Context& context);

/// A file name as a URI: bytes that may not stand there are percent-encoded.
std::string UriOf(const std::string& fileName);

}  // namespace qn::gltf_export
