#pragma once

#include "importers/step/step_model.h"

namespace qn::step {

/// Throws ReadFailure with the chain of names, "a > b > a", if a definition is used below itself.
void RefuseCycles(const StepModel& model);

}  // namespace qn::step
