#include "importers/step/step_placement.h"

#include "importers/step/step_transform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace qn::step {
namespace {

using Vector = std::array<double, 3>;

constexpr double kMillimetresPerMetre = 1000;
/// Below this length a direction does not direct.
constexpr double kShortest = 1e-12;

double Dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector Cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

std::optional<Vector> Normalised(const Vector& v) {
    const double length = std::sqrt(Dot(v, v));
    if (!(length > kShortest) || !std::isfinite(length)) return std::nullopt;
    return Vector{v[0] / length, v[1] / length, v[2] / length};
}

/// `v` without its share along the unit vector `axis`, normalised.
std::optional<Vector> Across(const Vector& v, const Vector& axis) {
    const double share = Dot(v, axis);
    return Normalised({v[0] - share * axis[0], v[1] - share * axis[1], v[2] - share * axis[2]});
}

Vector Triple(const Params& list) {
    return {NumberAt(list, 0, 0), NumberAt(list, 1, 0), NumberAt(list, 2, 0)};
}

Vector Point(const ExchangeFile& file, EntityId id) {
    return Triple(ListAt(file.Get(id).Attributes({"REPRESENTATION_ITEM", "CARTESIAN_POINT"}), 1));
}

std::optional<Vector> Direction(const ExchangeFile& file, EntityId id) {
    const Record record = file.Get(id);
    if (!record.Exists()) return std::nullopt;
    return Normalised(Triple(ListAt(record.Attributes({"REPRESENTATION_ITEM", "DIRECTION"}), 1)));
}

/// A unit vector across `z`: as near to `wanted` as can be, else to the first axis that differs.
Vector FirstAxis(const Vector& z, const std::optional<Vector>& wanted) {
    for (const Vector& candidate : {wanted.value_or(Vector{1, 0, 0}), Vector{1, 0, 0}, Vector{0, 1, 0}})
        if (const auto x = Across(candidate, z)) return *x;
    return {1, 0, 0};
}

Transform FromAxes(const Vector& x, const Vector& y, const Vector& z, const Vector& origin) {
    return {x[0], x[1], x[2], 0, y[0],      y[1],      y[2],      0,
            z[0], z[1], z[2], 0, origin[0], origin[1], origin[2], 1};
}

Vector Scaled(const Vector& v, double factor) {
    return {v[0] * factor, v[1] * factor, v[2] * factor};
}

}  // namespace

const Placements::Representation& Placements::Of(EntityId representation) {
    const auto [entry, isNew] = known_.try_emplace(representation);
    Representation& result = entry->second;
    if (!isNew) return result;
    const Params attributes = file_.Get(representation).Attributes({"REPRESENTATION"});
    const Params& items = ListAt(attributes, 1);
    for (std::size_t i = 0; i < items.size(); ++i)
        if (const EntityId item = ReferenceAt(items, i)) result.items.push_back(item);
    result.sorted = result.items;
    std::sort(result.sorted.begin(), result.sorted.end());
    result.metres = units_.MetresOfContext(ReferenceAt(attributes, 2));
    return result;
}

bool Placements::Holds(EntityId representation, EntityId item) {
    const auto& sorted = Of(representation).sorted;
    return std::binary_search(sorted.begin(), sorted.end(), item);
}

double Placements::Millimetres(EntityId representation) {
    const double metres = MetresOf(representation);
    return metres > 0 ? metres * kMillimetresPerMetre : 1;
}

Transform Placements::OfAxes(const Params& axes, double millimetres) const {
    const Vector origin = Scaled(Point(file_, ReferenceAt(axes, 1)), millimetres);
    const Vector z = Direction(file_, ReferenceAt(axes, 2)).value_or(Vector{0, 0, 1});
    const Vector x = FirstAxis(z, Direction(file_, ReferenceAt(axes, 3)));
    return FromAxes(x, Cross(z, x), z, origin);
}

Transform Placements::OfOperator(const Params& attributes, double millimetres) const {
    // Two names and a description come before the axes in the full form, one name in the short.
    const std::size_t first = attributes.size() >= 8 ? 3 : 1;
    const auto axis1 = Direction(file_, ReferenceAt(attributes, first));
    const auto axis2 = Direction(file_, ReferenceAt(attributes, first + 1));
    const Vector origin = Scaled(Point(file_, ReferenceAt(attributes, first + 2)), millimetres);
    const double scale = NumberAt(attributes, first + 3, 1);
    const auto axis3 = Direction(file_, ReferenceAt(attributes, first + 4));
    const Vector z = axis3.value_or(
        axis1 && axis2 ? Normalised(Cross(*axis1, *axis2)).value_or(Vector{0, 0, 1}) : Vector{0, 0, 1});
    const Vector x = FirstAxis(z, axis1);
    Vector y = Cross(z, x);
    if (axis2 && Dot(*axis2, y) < 0) y = Scaled(y, -1);
    return FromAxes(Scaled(x, scale), Scaled(y, scale), Scaled(z, scale), origin);
}

Transform Placements::OfItem(EntityId item, double millimetres) const {
    const Record record = file_.Get(item);
    if (record.Is("AXIS2_PLACEMENT_3D"))
        return OfAxes(record.Attributes({"REPRESENTATION_ITEM", "PLACEMENT", "AXIS2_PLACEMENT_3D"}),
                      millimetres);
    if (record.Is("CARTESIAN_TRANSFORMATION_OPERATOR_3D"))
        return OfOperator(
            record.Attributes({"REPRESENTATION_ITEM", "FUNCTIONALLY_DEFINED_TRANSFORMATION",
                               "CARTESIAN_TRANSFORMATION_OPERATOR", "CARTESIAN_TRANSFORMATION_OPERATOR_3D"}),
            millimetres);
    return kIdentity;
}

Transform Placements::OfRelationship(const Params& relationship, EntityId transformation) {
    const EntityId from = ReferenceAt(relationship, 2);
    const EntityId to = ReferenceAt(relationship, 3);
    const Record record = file_.Get(transformation);
    if (!record.Exists()) return kIdentity;
    if (!record.Is("ITEM_DEFINED_TRANSFORMATION")) return OfItem(transformation, Millimetres(to));
    const Params attributes = record.Attributes({"ITEM_DEFINED_TRANSFORMATION"});
    EntityId fromItem = ReferenceAt(attributes, 2);
    EntityId toItem = ReferenceAt(attributes, 3);
    const bool isStraight = Holds(from, fromItem) || Holds(to, toItem);
    if (!isStraight && Holds(to, fromItem) && Holds(from, toItem)) std::swap(fromItem, toItem);
    return Then(Inverse(OfItem(fromItem, Millimetres(from))), OfItem(toItem, Millimetres(to)));
}

Transform Placements::OfMappedItem(EntityId mappedItem, EntityId owner) {
    const Params item = file_.Get(mappedItem).Attributes({"REPRESENTATION_ITEM", "MAPPED_ITEM"});
    const Params map = file_.Get(ReferenceAt(item, 1)).Attributes({"REPRESENTATION_MAP"});
    const Transform origin = OfItem(ReferenceAt(map, 0), Millimetres(ReferenceAt(map, 1)));
    return Then(Inverse(origin), OfItem(ReferenceAt(item, 2), Millimetres(owner)));
}

}  // namespace qn::step
