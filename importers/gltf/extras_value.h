#pragma once

#include "frame/host/var.h"

namespace qn::gltf {

/// The value that a writer of ours meant by this piece of JSON: forms for what JSON has no word for are
/// undone, at any depth. A form that is damaged stays what it looks like.
Var MeantValue(const Var& json);

/// 16 numbers; false for anything else.
bool ReadMatrix(const Var& json, Matrix4<double>& out);

}  // namespace qn::gltf
