#pragma once

#include "exporters/gltf/export_model.h"
#include "exporters/gltf/sink.h"

namespace qn::gltf_export {

/// Writes the value of the document's `extras.assembly`: what the format has no word for, once for each
/// definition, use and override. Throws ExportFailure.
void WriteTables(const ExportModel& model, Sink& sink);

}  // namespace qn::gltf_export
