#pragma once

#include "importers/step/part21_file.h"

#include <string>
#include <unordered_map>

namespace qn::step {

/// The length units of a file's representation contexts.
class Units {
public:
    explicit Units(const ExchangeFile& file) : file_(file) {}

    /// Metres that one unit of length stands for in this context; 0 if the context states none.
    double MetresOfContext(EntityId context);

private:
    double MetresOfUnit(EntityId unit) const;

    const ExchangeFile& file_;
    std::unordered_map<EntityId, double> known_;
};

/// A short text for a unit of any kind, such as "mm", "mm^3", "kg" or "INCH"; empty if there is none.
std::string UnitText(const ExchangeFile& file, EntityId unit);

}  // namespace qn::step
