#include "importers/step/step_units.h"

#include <algorithm>
#include <cmath>

namespace qn::step {
namespace {

/// Conversion-based units stand on other units; real files need one step, two at the most.
constexpr int kLongestUnitChain = 8;

constexpr struct {
    std::string_view name;
    double factor;
    std::string_view symbol;
} kPrefixes[] = {
    {"EXA", 1e18, "E"},  {"PETA", 1e15, "P"},  {"TERA", 1e12, "T"},   {"GIGA", 1e9, "G"},
    {"MEGA", 1e6, "M"},  {"KILO", 1e3, "k"},   {"HECTO", 1e2, "h"},   {"DECA", 1e1, "da"},
    {"DECI", 1e-1, "d"}, {"CENTI", 1e-2, "c"}, {"MILLI", 1e-3, "m"},  {"MICRO", 1e-6, "u"},
    {"NANO", 1e-9, "n"}, {"PICO", 1e-12, "p"}, {"FEMTO", 1e-15, "f"}, {"ATTO", 1e-18, "a"},
};

constexpr struct {
    std::string_view name;
    std::string_view symbol;
} kSiSymbols[] = {
    {"METRE", "m"},  {"GRAM", "g"},   {"SECOND", "s"},  {"RADIAN", "rad"}, {"STERADIAN", "sr"},
    {"KELVIN", "K"}, {"NEWTON", "N"}, {"PASCAL", "Pa"}, {"AMPERE", "A"},   {"DEGREE_CELSIUS", "degC"},
};

double PrefixFactor(std::string_view prefix) {
    for (const auto& row : kPrefixes)
        if (row.name == prefix) return row.factor;
    return 1;
}

std::string SiText(const Params& params) {
    std::string text;
    for (const auto& row : kPrefixes)
        if (row.name == EnumAt(params, 0)) text = row.symbol;
    for (const auto& row : kSiSymbols)
        if (row.name == EnumAt(params, 1)) return text + std::string(row.symbol);
    return text + std::string(EnumAt(params, 1));
}

std::string DerivedText(const ExchangeFile& file, const Params& elements) {
    std::string text;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const Params element = file.Get(ReferenceAt(elements, i)).Attributes({"DERIVED_UNIT_ELEMENT"});
        const auto exponent = static_cast<int>(std::lround(std::clamp(NumberAt(element, 1, 1), -99.0, 99.0)));
        const Record unit = file.Get(ReferenceAt(element, 0));
        if (unit.Is("DERIVED_UNIT")) continue;
        if (!text.empty()) text += "*";
        text += UnitText(file, ReferenceAt(element, 0));
        if (exponent != 1) text += "^" + std::to_string(exponent);
    }
    return text;
}

}  // namespace

double Units::MetresOfUnit(EntityId unit) const {
    double factor = 1;
    for (int step = 0; step < kLongestUnitChain; ++step) {
        const Record record = file_.Get(unit);
        if (const Params* si = record.Find("SI_UNIT"))
            return EnumAt(*si, si->size() == 3 ? 2 : 1) == "METRE"
                       ? factor * PrefixFactor(EnumAt(*si, si->size() == 3 ? 1 : 0))
                       : 0;
        const Params* conversion = record.Find("CONVERSION_BASED_UNIT");
        if (!conversion || !record.Is("LENGTH_UNIT")) return 0;
        const Params measure = file_.Get(ReferenceAt(*conversion, 1)).Attributes({"MEASURE_WITH_UNIT"});
        factor *= NumberAt(measure, 0, 0);
        unit = ReferenceAt(measure, 1);
    }
    return 0;
}

double Units::MetresOfContext(EntityId context) {
    const auto [entry, isNew] = known_.try_emplace(context, 0);
    if (!isNew) return entry->second;
    const Record record = file_.Get(context);
    const Params* assigned = record.Find("GLOBAL_UNIT_ASSIGNED_CONTEXT");
    if (!assigned) return 0;
    const std::size_t last = assigned->empty() ? 0 : assigned->size() - 1;
    const Params& units = ListAt(*assigned, last);
    for (std::size_t i = 0; i < units.size() && entry->second == 0; ++i) {
        const double metres = MetresOfUnit(ReferenceAt(units, i));
        if (metres > 0 && std::isfinite(metres)) entry->second = metres;
    }
    return entry->second;
}

std::string UnitText(const ExchangeFile& file, EntityId unit) {
    const Record record = file.Get(unit);
    if (const Params* conversion = record.Find("CONVERSION_BASED_UNIT")) return TextAt(*conversion, 0);
    if (const Params* si = record.Find("SI_UNIT")) return SiText(*si);
    if (const Params* derived = record.Find("DERIVED_UNIT")) return DerivedText(file, ListAt(*derived, 0));
    if (const Params* other = record.Find("CONTEXT_DEPENDENT_UNIT")) return TextAt(*other, 0);
    return {};
}

}  // namespace qn::step
