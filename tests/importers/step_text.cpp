#include "tests/importers/step_text.h"

#include <cstdio>

namespace {

std::string Ref(StepText::Id id) {
    return "#" + std::to_string(id);
}

std::string Real(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6f", value);
    return text;
}

}  // namespace

StepText::StepText(const std::string& metresPerUnit) {
    const Id application = Add("APPLICATION_CONTEXT('core data for automotive mechanical design processes')");
    productContext_ = Add("PRODUCT_CONTEXT(''," + Ref(application) + ",'mechanical')");
    definitionContext_ =
        Add("PRODUCT_DEFINITION_CONTEXT('part definition'," + Ref(application) + ",'design')");
    SetUnit(metresPerUnit);
    origin_ = Axes(0, 0, 0);
}

void StepText::SetUnit(const std::string& metresPerUnit) {
    const Id metre = Add("(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT($,.METRE.))");
    const Id measure =
        Add("LENGTH_MEASURE_WITH_UNIT(LENGTH_MEASURE(" + metresPerUnit + ")," + Ref(metre) + ")");
    const Id unit = Add("(CONVERSION_BASED_UNIT('UNIT'," + Ref(measure) + ")LENGTH_UNIT()NAMED_UNIT(*))");
    context_ = Add("(GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNIT_ASSIGNED_CONTEXT((" + Ref(unit) +
                   "))REPRESENTATION_CONTEXT('',''))");
}

StepText::Id StepText::Add(const std::string& record) {
    body_ += Ref(++last_) + "=" + record + ";\n";
    return last_;
}

StepText::Part StepText::Definition(const std::string& name, const std::string& items) {
    const Id product = Add("PRODUCT('" + name + " id','" + name + "','',(" + Ref(productContext_) + "))");
    const Id formation = Add("PRODUCT_DEFINITION_FORMATION('A',''," + Ref(product) + ")");
    const Id definition =
        Add("PRODUCT_DEFINITION('design',''," + Ref(formation) + "," + Ref(definitionContext_) + ")");
    const Id shape = Add("PRODUCT_DEFINITION_SHAPE('',''," + Ref(definition) + ")");
    const Id representation = Add("SHAPE_REPRESENTATION('',(" + Ref(origin_) + (items.empty() ? "" : ",") +
                                  items + ")," + Ref(context_) + ")");
    Add("SHAPE_DEFINITION_REPRESENTATION(" + Ref(shape) + "," + Ref(representation) + ")");
    return {definition, representation};
}

StepText::Id StepText::Axes(double x, double y, double z, double directionX, double directionY) {
    const Id point = Add("CARTESIAN_POINT('',(" + Real(x) + "," + Real(y) + "," + Real(z) + "))");
    const Id up = Add("DIRECTION('',(0.,0.,1.))");
    const Id along = Add("DIRECTION('',(" + Real(directionX) + "," + Real(directionY) + ",0.))");
    return Add("AXIS2_PLACEMENT_3D(''," + Ref(point) + "," + Ref(up) + "," + Ref(along) + ")");
}

StepText::Id StepText::PlainUse(const std::string& id, const Part& parent, const Part& child) {
    return Add("NEXT_ASSEMBLY_USAGE_OCCURRENCE('" + id + "','" + id + " name',''," + Ref(parent.definition) +
               "," + Ref(child.definition) + ",$)");
}

StepText::Id StepText::Transformation(Id fromItem, Id toItem) {
    return Add("ITEM_DEFINED_TRANSFORMATION('',''," + Ref(fromItem) + "," + Ref(toItem) + ")");
}

void StepText::Place(Id occurrence, Id first, Id second, Id transformation) {
    const Id placement = Add("PRODUCT_DEFINITION_SHAPE('Placement',''," + Ref(occurrence) + ")");
    const Id relationship = Add("(REPRESENTATION_RELATIONSHIP('',''," + Ref(first) + "," + Ref(second) +
                                ")REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(" + Ref(transformation) +
                                ")SHAPE_REPRESENTATION_RELATIONSHIP())");
    Add("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(" + Ref(relationship) + "," + Ref(placement) + ")");
}

StepText::Id StepText::Use(const std::string& id, const Part& parent, const Part& child, Id axes) {
    const Id occurrence = PlainUse(id, parent, child);
    Place(occurrence, child.shape, parent.shape, Transformation(origin_, axes));
    return occurrence;
}

std::string StepText::Text() const {
    return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
           "FILE_SCHEMA(('AUTOMOTIVE_DESIGN'));\nENDSEC;\nDATA;\n" +
           body_ + "ENDSEC;\nEND-ISO-10303-21;\n";
}
