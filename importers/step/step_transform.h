#pragma once

#include "importers/step/step_model.h"

namespace qn::step {

/// The transform that applies `first`, then `second`.
Transform Then(const Transform& first, const Transform& second);

/// The inverse; the identity if `transform` is singular. Exact for rotations and translations.
Transform Inverse(const Transform& transform);

}  // namespace qn::step
