#pragma once

#include "exporters/gltf/export_model.h"

namespace qn::gltf_export {

/// Fills in how many nodes and occurrences the definitions have. Throws ExportFailure for a definition that
/// contains itself, and for more than `mostNodes` nodes.
void CountNodes(ExportModel& model, std::uint64_t mostNodes);

}  // namespace qn::gltf_export
