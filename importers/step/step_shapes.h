#pragma once

#include "importers/step/part21_file.h"
#include "importers/step/step_model.h"
#include "importers/step/step_products.h"

namespace qn::step {

/// Finds which shape representations belong to which definition, sets the placements of the uses,
/// the own shapes of the definitions and the unit of the file.
///
/// A definition's own shape is what its shape definition representations hold, and every
/// representation that plain relationships tie to these and that no other definition claims.
/// Placement axes, and mapped items that stand for components, are no geometry.
void ReadShapes(const ExchangeFile& file, const StructureIndex& index, StepModel& model);

}  // namespace qn::step
