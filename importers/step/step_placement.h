#pragma once

#include "importers/step/part21_file.h"
#include "importers/step/step_model.h"
#include "importers/step/step_units.h"

#include <unordered_map>
#include <vector>

namespace qn::step {

/// Reads placements as transforms in millimetres. A representation's own unit counts for each of
/// the two sides of a placement.
class Placements {
public:
    explicit Placements(const ExchangeFile& file) : file_(file), units_(file) {}

    /// Geometry items and placements of a representation, in its own order.
    const std::vector<EntityId>& ItemsOf(EntityId representation) { return Of(representation).items; }
    /// Metres per unit in this representation; 0 if it does not say.
    double MetresOf(EntityId representation) { return Of(representation).metres; }

    /// The transform from the first representation of a relationship to its second one; the
    /// identity without a transformation. Placement items that stand the wrong way round, first
    /// item in the second representation, are turned.
    Transform OfRelationship(const Params& relationship, EntityId transformation);

    /// The transform that a mapped item gives to the representation that it maps, which belongs to
    /// `owner`, the representation that holds the mapped item.
    Transform OfMappedItem(EntityId mappedItem, EntityId owner);

private:
    struct Representation {
        std::vector<EntityId> items;
        std::vector<EntityId> sorted;
        double metres = 0;
    };

    const Representation& Of(EntityId representation);
    bool Holds(EntityId representation, EntityId item);
    double Millimetres(EntityId representation);
    Transform OfItem(EntityId item, double millimetres) const;
    Transform OfAxes(const Params& axes, double millimetres) const;
    Transform OfOperator(const Params& attributes, double millimetres) const;

    const ExchangeFile& file_;
    Units units_;
    std::unordered_map<EntityId, Representation> known_;
};

}  // namespace qn::step
