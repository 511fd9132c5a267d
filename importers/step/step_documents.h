#pragma once

#include "importers/step/part21_file.h"
#include "importers/step/step_model.h"
#include "importers/step/step_products.h"

namespace qn::step {

/// Notes for each definition the files that its document references name. Nothing is opened.
void ReadDocuments(const ExchangeFile& file, const StructureIndex& index, StepModel& model);

}  // namespace qn::step
