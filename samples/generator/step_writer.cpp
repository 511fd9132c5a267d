#include "samples/generator/step_writer.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace assembly::samples {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr const char* kStamp = "2026-01-01T00:00:00";

/// A real number as the format wants it: with a point.
std::string Real(double value) {
    if (value == 0) return "0.";
    char text[32];
    std::string result(text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr);
    return result.find('.') == std::string::npos ? result + "." : result;
}

std::string Ref(Entity entity) {
    return "#" + std::to_string(entity);
}

/// Code points of UTF-8 text that is known to be well formed.
std::u32string Decode(std::string_view text) {
    std::u32string result;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const int length = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
        std::uint32_t point = length == 1 ? lead : lead & (0xffu >> (length + 1));
        for (int k = 1; k < length; ++k)
            point = point << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3fu);
        result += static_cast<char32_t>(point);
        i += static_cast<std::size_t>(length);
    }
    return result;
}

/// A string literal; characters outside ASCII as \X2\ (16 bits) or \X4\ (32 bits) escapes.
std::string Literal(std::string_view text) {
    std::string result = "'";
    for (const char32_t point : Decode(text)) {
        char escaped[24];
        if (point == U'\'' || point == U'\\')
            result += std::string(2, static_cast<char>(point));
        else if (point >= 0x20 && point < 0x7f)
            result += static_cast<char>(point);
        else
            result.append(escaped, static_cast<std::size_t>(std::snprintf(
                                       escaped, sizeof escaped,
                                       point < 0x10000 ? "\\X2\\%04X\\X0\\" : "\\X4\\%08X\\X0\\",
                                       static_cast<unsigned>(point))));
    }
    return result + "'";
}

std::string Triple(const std::array<double, 3>& values) {
    return "(" + Real(values[0]) + "," + Real(values[1]) + "," + Real(values[2]) + ")";
}

}  // namespace

std::vector<std::array<double, 2>> Polygon(int corners, double radius) {
    std::vector<std::array<double, 2>> outline;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * kPi * i / corners;
        // Rounded, so that every C library's sine gives the same file.
        outline.push_back({std::round(radius * std::cos(angle) * 1e6) / 1e6,
                           std::round(radius * std::sin(angle) * 1e6) / 1e6});
    }
    return outline;
}

std::vector<std::array<double, 2>> Rectangle(double width, double depth) {
    const double x = width / 2, y = depth / 2;
    return {{{-x, -y}}, {{x, -y}}, {{x, y}}, {{-x, y}}};
}

StepWriter::StepWriter(std::string fileName) : fileName_(std::move(fileName)) {
    context_ = Add("APPLICATION_CONTEXT('core data for automotive mechanical design processes')");
    Add("APPLICATION_PROTOCOL_DEFINITION('international standard','automotive_design',2000," + Ref(context_) +
        ")");
    productContext_ = Add("PRODUCT_CONTEXT(''," + Ref(context_) + ",'mechanical')");
    definitionContext_ = Add("PRODUCT_DEFINITION_CONTEXT('part definition'," + Ref(context_) + ",'design')");
    const Entity length = Add("(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.))");
    const Entity angle = Add("(NAMED_UNIT(*)PLANE_ANGLE_UNIT()SI_UNIT($,.RADIAN.))");
    const Entity solidAngle = Add("(NAMED_UNIT(*)SI_UNIT($,.STERADIAN.)SOLID_ANGLE_UNIT())");
    const Entity accuracy = Add("UNCERTAINTY_MEASURE_WITH_UNIT(LENGTH_MEASURE(1.E-6)," + Ref(length) +
                                ",'distance_accuracy_value','')");
    units_ = Add("(GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNCERTAINTY_ASSIGNED_CONTEXT((" + Ref(accuracy) +
                 "))GLOBAL_UNIT_ASSIGNED_CONTEXT((" + Ref(length) + "," + Ref(angle) + "," + Ref(solidAngle) +
                 "))REPRESENTATION_CONTEXT('',''))");
}

Entity StepWriter::Add(const std::string& record) {
    data_ += Ref(++last_) + "=" + record + ";\n";
    return last_;
}

Entity StepWriter::AddPoint(const Point& point) {
    return Add("CARTESIAN_POINT(''," + Triple(point) + ")");
}

Entity StepWriter::AddDirection(const Point& direction) {
    return Add("DIRECTION(''," + Triple(direction) + ")");
}

Entity StepWriter::AddPlacement(const Point& place, const Point& axis, const Point& reference) {
    const Entity point = AddPoint(place), z = AddDirection(axis), x = AddDirection(reference);
    return Add("AXIS2_PLACEMENT_3D(''," + Ref(point) + "," + Ref(z) + "," + Ref(x) + ")");
}

StepWriter::Definition StepWriter::AddDefinition(std::string_view id, std::string_view name,
                                                 std::string_view description,
                                                 const std::string& representationKind,
                                                 const std::string& items, Entity origin) {
    const Entity product = Add("PRODUCT(" + Literal(id) + "," + Literal(name) + "," + Literal(description) +
                               ",(" + Ref(productContext_) + "))");
    Add("PRODUCT_RELATED_PRODUCT_CATEGORY('part',$,(" + Ref(product) + "))");
    const Entity formation = Add("PRODUCT_DEFINITION_FORMATION('A',''," + Ref(product) + ")");
    Definition result;
    result.productDefinition =
        Add("PRODUCT_DEFINITION('design',''," + Ref(formation) + "," + Ref(definitionContext_) + ")");
    const Entity shape = Add("PRODUCT_DEFINITION_SHAPE('',''," + Ref(result.productDefinition) + ")");
    result.origin = origin;
    result.representation =
        Add(representationKind + "(" + Literal(name) + ",(" + items + ")," + Ref(units_) + ")");
    Add("SHAPE_DEFINITION_REPRESENTATION(" + Ref(shape) + "," + Ref(result.representation) + ")");
    return result;
}

StepWriter::Definition StepWriter::AddPart(std::string_view id, std::string_view name,
                                           std::string_view description,
                                           const std::vector<std::array<double, 2>>& outline, double height,
                                           const Colour& colour) {
    const Entity origin = AddPlacement({0, 0, 0}, {0, 0, 1}, {1, 0, 0});
    const Entity solid = AddPrism(outline, height);
    const Definition result = AddDefinition(id, name, description, "ADVANCED_BREP_SHAPE_REPRESENTATION",
                                            Ref(origin) + "," + Ref(solid), origin);
    AddColour(solid, colour);
    return result;
}

StepWriter::Definition StepWriter::AddAssembly(std::string_view id, std::string_view name,
                                               std::string_view description) {
    const Entity origin = AddPlacement({0, 0, 0}, {0, 0, 1}, {1, 0, 0});
    return AddDefinition(id, name, description, "SHAPE_REPRESENTATION", Ref(origin), origin);
}

void StepWriter::AddUse(const Definition& parent, const Definition& child, std::string_view id,
                        std::string_view name, std::string_view designator, const Point& place,
                        double degrees) {
    const double angle = degrees * kPi / 180;
    const auto rounded = [](double value) { return std::round(value * 1e9) / 1e9; };
    const Entity target =
        AddPlacement(place, {0, 0, 1}, {rounded(std::cos(angle)), rounded(std::sin(angle)), 0});
    const Entity use = Add("NEXT_ASSEMBLY_USAGE_OCCURRENCE(" + Literal(id) + "," + Literal(name) + ",''," +
                           Ref(parent.productDefinition) + "," + Ref(child.productDefinition) + "," +
                           (designator.empty() ? "$" : Literal(designator)) + ")");
    const Entity shape = Add("PRODUCT_DEFINITION_SHAPE('',''," + Ref(use) + ")");
    const Entity map =
        Add("ITEM_DEFINED_TRANSFORMATION('',''," + Ref(child.origin) + "," + Ref(target) + ")");
    const Entity relation =
        Add("(REPRESENTATION_RELATIONSHIP('',''," + Ref(child.representation) + "," +
            Ref(parent.representation) + ")REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(" + Ref(map) +
            ")SHAPE_REPRESENTATION_RELATIONSHIP())");
    Add("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(" + Ref(relation) + "," + Ref(shape) + ")");
}

void StepWriter::AddColour(Entity solid, const Colour& colour) {
    const Entity rgb =
        Add("COLOUR_RGB(''," + Real(colour[0]) + "," + Real(colour[1]) + "," + Real(colour[2]) + ")");
    const Entity fill = Add("FILL_AREA_STYLE_COLOUR(''," + Ref(rgb) + ")");
    const Entity area = Add("FILL_AREA_STYLE('',(" + Ref(fill) + "))");
    const Entity surface = Add("SURFACE_STYLE_FILL_AREA(" + Ref(area) + ")");
    const Entity side = Add("SURFACE_SIDE_STYLE('',(" + Ref(surface) + "))");
    const Entity usage = Add("SURFACE_STYLE_USAGE(.BOTH.," + Ref(side) + ")");
    const Entity style = Add("PRESENTATION_STYLE_ASSIGNMENT((" + Ref(usage) + "))");
    const Entity item = Add("STYLED_ITEM('',(" + Ref(style) + ")," + Ref(solid) + ")");
    Add("MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(" + Ref(item) + ")," + Ref(units_) +
        ")");
}

std::string StepWriter::Text() const {
    return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME(" + Literal(fileName_) + ",'" +
           kStamp +
           "',(''),(''),'','make_samples','');\nFILE_SCHEMA(('AUTOMOTIVE_DESIGN { 1 0 10303 214 1 1 1 1 "
           "}'));\n"
           "ENDSEC;\nDATA;\n" +
           data_ + "ENDSEC;\nEND-ISO-10303-21;\n";
}

}  // namespace assembly::samples
