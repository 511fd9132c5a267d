#pragma once

#include "importers/step/step_model.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// What the independent reader's files state about a STEP file, taken from our model of it:
/// counts, names with their counts, uses, occurrence paths, summed world origins.
nlohmann::json SummaryOf(const qn::step::StepModel& model);
