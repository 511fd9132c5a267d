#pragma once

#include "importers/step/part21_file.h"
#include "importers/step/step_model.h"

#include <optional>
#include <unordered_map>

namespace qn::step {

/// What the other readers ask of the structure: which row of the model an entity became.
struct StructureIndex {
    std::unordered_map<EntityId, std::size_t> definitions;  ///< product definition to its row
    std::unordered_map<EntityId, std::size_t> uses;         ///< usage occurrence to its row
    std::unordered_map<EntityId, EntityId> subjects;        ///< product definition shape to what it is of

    std::optional<std::size_t> Definition(EntityId entity) const;
    std::optional<std::size_t> Use(EntityId entity) const;
    /// What a property or a shape is of: passes through product definition shapes.
    EntityId SubjectOf(EntityId entity) const;
};

/// Fills definitions, uses and roots (texts and links, no placements) and gives their index.
/// Documents and raw materials become no definitions. A use of, or in, an entity that is no
/// definition is left out with a warning. Throws ReadFailure with the chain of names if a
/// definition is used below itself.
StructureIndex ReadProducts(const ExchangeFile& file, StepModel& model);

}  // namespace qn::step
