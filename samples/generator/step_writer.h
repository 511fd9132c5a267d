#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace assembly::samples {

/// Number of an entity in the file.
using Entity = int;
using Point = std::array<double, 3>;
using Colour = std::array<double, 3>;  ///< red, green, blue, 0 to 1

/// Writes an assembly as an exchange file (ISO 10303-21, schema AUTOMOTIVE_DESIGN): products with prisms as
/// geometry, their uses, colours. Lengths are millimetres. The same calls give the same bytes.
class StepWriter {
public:
    /// A definition: its product definition and the representation that placements refer to.
    struct Definition {
        Entity productDefinition = 0;
        Entity representation = 0;
        Entity origin = 0;  ///< placement at the origin of the representation
    };

    explicit StepWriter(std::string fileName);

    /// A part: a prism over a polygon (counter-clockwise, x and y) from z = 0 to `height`.
    Definition AddPart(std::string_view id, std::string_view name, std::string_view description,
                       const std::vector<std::array<double, 2>>& outline, double height,
                       const Colour& colour);
    Definition AddAssembly(std::string_view id, std::string_view name, std::string_view description);
    /// One use of `child` in `parent`, turned by `degrees` about z and moved.
    void AddUse(const Definition& parent, const Definition& child, std::string_view id, std::string_view name,
                std::string_view designator, const Point& place, double degrees = 0);
    /// The whole file.
    std::string Text() const;

private:
    Entity Add(const std::string& record);
    Entity AddPoint(const Point& point);
    Entity AddDirection(const Point& direction);
    Entity AddPlacement(const Point& place, const Point& axis, const Point& reference);
    Entity AddPrism(const std::vector<std::array<double, 2>>& outline, double height);
    Entity AddFace(const std::vector<std::pair<Entity, bool>>& edges, Entity plane);
    Definition AddDefinition(std::string_view id, std::string_view name, std::string_view description,
                             const std::string& representationKind, const std::string& items, Entity origin);
    void AddColour(Entity solid, const Colour& colour);

    std::string fileName_, data_;
    Entity last_ = 0;
    Entity context_ = 0, productContext_ = 0, definitionContext_ = 0, units_ = 0;
};

/// The outline of a regular polygon with its first corner on the x axis.
std::vector<std::array<double, 2>> Polygon(int corners, double radius);
std::vector<std::array<double, 2>> Rectangle(double width, double depth);

}  // namespace assembly::samples
