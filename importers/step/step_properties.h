#pragma once

#include "importers/step/part21_file.h"
#include "importers/step/step_model.h"
#include "importers/step/step_products.h"

namespace qn::step {

/// Hangs the properties of the file (validation properties, user-defined attributes, material and
/// the like) on the definitions and uses that they describe, in the order of the file. Properties
/// of other things are passed over.
void ReadProperties(const ExchangeFile& file, const StructureIndex& index, StepModel& model);

}  // namespace qn::step
