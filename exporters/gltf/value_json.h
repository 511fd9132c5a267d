#pragma once

#include "frame/host/hierarchy_element.h"
#include "frame/host/var.h"

#include <string>

namespace qn::gltf_export {

/// The value as JSON, see docs/gltf.md; objects that are no values become null. Throws ExportFailure for maps
/// and arrays nested deeper than `kDeepestMetadata`, or in themselves.
void AppendValue(std::string& out, const Var& value);

/// Whether a property with this value is written: it is set and is not an object of another kind.
bool IsWritable(const Var& value);

}  // namespace qn::gltf_export
