#pragma once

#include "importers/step/part21_file.h"
#include "importers/step/step_model.h"

#include <unordered_map>

namespace qn::step {

/// Surface colours by the entity that they are given to: a solid, a shell, a face, or a whole
/// representation. An over-riding style wins over the one that it over-rides.
using ColourTable = std::unordered_map<EntityId, Colour>;

ColourTable ReadColours(const ExchangeFile& file);

/// Sets the colours of the definitions: those of their whole representations and of their items.
void ApplyColours(const ColourTable& colours, StepModel& model);

}  // namespace qn::step
