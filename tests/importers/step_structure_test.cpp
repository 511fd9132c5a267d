#include "importers/step/step_structure.h"

#include "importers/step/step_transform.h"
#include "tests/importers/step_text.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

namespace {

using namespace qn::step;

StepModel Model(const std::string& text) {
    StructureResult result = ReadStructure(text, "test.stp");
    EXPECT_TRUE(result.Ok()) << result.error;
    return std::move(result.model);
}

std::array<double, 3> OriginOf(const Use& use) {
    return {use.toParent[12], use.toParent[13], use.toParent[14]};
}

using Point = std::array<double, 3>;

TEST(StepStructure, HasADefinitionForEachProductAndAUseForEachOccurrence) {
    StepText file;
    const auto car = file.Definition("car");
    const auto wheel = file.Definition("wheel");
    file.Use("1", car, wheel, file.Axes(10, 0, 0));
    file.Use("2", car, wheel, file.Axes(-10, 0, 0));
    const StepModel model = Model(file.Text());
    ASSERT_EQ(model.definitions.size(), 2u);
    ASSERT_EQ(model.uses.size(), 2u);
    EXPECT_EQ(model.roots, std::vector<std::size_t>{0});
    EXPECT_TRUE(model.definitions[0].IsAssembly());
    EXPECT_EQ(model.definitions[1].name, "wheel");
    EXPECT_EQ(model.definitions[1].productId, "wheel id");
    EXPECT_EQ(model.definitions[1].versionId, "A");
    EXPECT_EQ(model.uses[1].name, "2 name");
    EXPECT_EQ(OriginOf(model.uses[1]), (Point{-10, 0, 0}));
}

TEST(StepStructure, NamesWithoutTextFallBackToIds) {
    StepText file;
    const auto car = file.Definition("");
    const auto wheel = file.Definition("wheel");
    file.Add("NEXT_ASSEMBLY_USAGE_OCCURRENCE('7','','',#" + std::to_string(car.definition) + ",#" +
             std::to_string(wheel.definition) + ",$)");
    const StepModel model = Model(file.Text());
    EXPECT_EQ(model.definitions[0].name, " id");
    EXPECT_EQ(model.uses[0].name, "7");
    EXPECT_FALSE(model.uses[0].isPlaced);
}

TEST(StepStructure, PlacesBySecondItemAfterUndoingTheFirst) {
    StepText file;
    const auto first = file.Axes(1, 0, 0);
    const auto second = file.Axes(0, 5, 0, 0, 1);
    const auto car = file.Definition("car", "#" + std::to_string(second));
    const auto wheel = file.Definition("wheel", "#" + std::to_string(first));
    const auto use = file.PlainUse("1", car, wheel);
    file.Place(use, wheel.shape, car.shape, file.Transformation(first, second));
    const StepModel model = Model(file.Text());
    const Transform expected = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 4, 0, 1};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(model.uses[0].toParent[i], expected[i], 1e-12) << i;
}

TEST(StepStructure, TurnsAPlacementWhoseRepresentationsAreSwapped) {
    StepText file;
    const auto axes = file.Axes(10, 0, 0);
    const auto car = file.Definition("car");
    const auto wheel = file.Definition("wheel");
    const auto use = file.PlainUse("1", car, wheel);
    file.Place(use, car.shape, wheel.shape, file.Transformation(axes, file.Origin()));
    EXPECT_EQ(OriginOf(Model(file.Text()).uses[0]), (Point{10, 0, 0}));
}

TEST(StepStructure, TurnsAPlacementWhoseItemsAreSwapped) {
    StepText file;
    const auto inCar = file.Axes(10, 0, 0);
    const auto inWheel = file.Axes(0, 1, 0);
    const auto car = file.Definition("car", "#" + std::to_string(inCar));
    const auto wheel = file.Definition("wheel", "#" + std::to_string(inWheel));
    const auto use = file.PlainUse("1", car, wheel);
    file.Place(use, wheel.shape, car.shape, file.Transformation(inCar, inWheel));
    EXPECT_EQ(OriginOf(Model(file.Text()).uses[0]), (Point{10, -1, 0}));
}

TEST(StepStructure, MeasuresEachSideOfAPlacementInItsOwnUnit) {
    StepText file("0.0254");
    const auto inCar = file.Axes(10, 0, 0);
    const auto car = file.Definition("car", "#" + std::to_string(inCar));
    file.SetUnit("1.");
    const auto inWheel = file.Axes(0, 1, 0);
    const auto wheel = file.Definition("wheel", "#" + std::to_string(inWheel));
    const auto use = file.PlainUse("1", car, wheel);
    file.Place(use, wheel.shape, car.shape, file.Transformation(inWheel, inCar));
    const StepModel model = Model(file.Text());
    EXPECT_NEAR(OriginOf(model.uses[0])[0], 254, 1e-9);
    EXPECT_NEAR(OriginOf(model.uses[0])[1], -1000, 1e-9);
    EXPECT_NEAR(model.sourceUnit, 0.0254, 1e-12);
}

TEST(StepStructure, TakesAMappedItemAsThePlacementOfAComponent) {
    StepText file;
    const auto target = file.Axes(3, 4, 5);
    const auto wheel = file.Definition("wheel");
    const auto map = file.Add("REPRESENTATION_MAP(#" + std::to_string(file.Origin()) + ",#" +
                              std::to_string(wheel.shape) + ")");
    const auto item =
        file.Add("MAPPED_ITEM('',#" + std::to_string(map) + ",#" + std::to_string(target) + ")");
    const auto car = file.Definition("car", "#" + std::to_string(item));
    file.PlainUse("1", car, wheel);
    const StepModel model = Model(file.Text());
    EXPECT_EQ(OriginOf(model.uses[0]), (Point{3, 4, 5}));
    EXPECT_FALSE(model.definitions[1].HasOwnGeometry());
}

TEST(StepStructure, ReadsScalingOperators) {
    StepText file;
    const auto car = file.Definition("car");
    const auto wheel = file.Definition("wheel");
    const auto point = file.Add("CARTESIAN_POINT('',(1.,2.,3.))");
    const auto scale =
        file.Add("CARTESIAN_TRANSFORMATION_OPERATOR_3D('','','',$,$,#" + std::to_string(point) + ",2.,$)");
    file.Place(file.PlainUse("1", car, wheel), wheel.shape, car.shape, scale);
    const Transform expected = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 1, 2, 3, 1};
    EXPECT_EQ(Model(file.Text()).uses[0].toParent, expected);
}

TEST(StepStructure, LeavesOutDocumentsAndRawMaterials) {
    StepText file;
    const auto part = file.Definition("part");
    const auto steel = file.Definition("steel");
    const auto drawing = file.Definition("drawing");
    file.Add("MAKE_FROM_USAGE_OPTION('','','',#" + std::to_string(part.definition) + ",#" +
             std::to_string(steel.definition) + ",1,'',$)");
    const auto product = drawing.definition - 2;
    file.Add("PRODUCT_RELATED_PRODUCT_CATEGORY('document',$,(#" + std::to_string(product) + "))");
    const StepModel model = Model(file.Text());
    ASSERT_EQ(model.definitions.size(), 1u);
    EXPECT_EQ(model.definitions[0].name, "part");
}

TEST(StepStructure, KeepsARawMaterialThatIsAComponentToo) {
    StepText file;
    const auto part = file.Definition("part");
    const auto blank = file.Definition("blank");
    file.Add("MAKE_FROM_USAGE_OPTION('','','',#" + std::to_string(part.definition) + ",#" +
             std::to_string(blank.definition) + ",1,'',$)");
    file.PlainUse("1", part, blank);
    EXPECT_EQ(Model(file.Text()).definitions.size(), 2u);
}

TEST(StepStructure, ReadsComplexRecordsAsTheirSimpleForm) {
    StepText file;
    const auto car = file.Definition("car");
    const auto wheel = file.Definition("wheel");
    file.Add(
        "(ASSEMBLY_COMPONENT_USAGE('R1')NEXT_ASSEMBLY_USAGE_OCCURRENCE()PRODUCT_DEFINITION_RELATIONSHIP('1','"
        "a',"
        "'b',#" +
        std::to_string(car.definition) + ",#" + std::to_string(wheel.definition) +
        ")PRODUCT_DEFINITION_USAGE())");
    const StepModel model = Model(file.Text());
    ASSERT_EQ(model.uses.size(), 1u);
    EXPECT_EQ(model.uses[0].name, "a");
    EXPECT_EQ(model.uses[0].description, "b");
    EXPECT_EQ(model.uses[0].referenceDesignator, "R1");
}

TEST(StepStructure, TellsOfAUseThatLeadsNowhere) {
    StepText file;
    const auto car = file.Definition("car");
    file.PlainUse("1", car, {9999, 0});
    const StepModel model = Model(file.Text());
    EXPECT_TRUE(model.uses.empty());
    ASSERT_EQ(model.warnings.size(), 1u);
    EXPECT_NE(model.warnings[0].find("has no component"), std::string::npos);
}

TEST(StepStructure, RefusesACycleAndNamesItsChain) {
    StepText file;
    const auto top = file.Definition("top");
    const auto a = file.Definition("a");
    const auto b = file.Definition("b");
    file.PlainUse("1", top, a);
    file.PlainUse("2", a, b);
    file.PlainUse("3", b, a);
    const auto result = ReadStructure(file.Text(), "ring.stp");
    EXPECT_EQ(result.cause, Cause::kMalformed);
    EXPECT_EQ(result.error.rfind("ring.stp: the product structure is cyclic: \"a\"", 0), 0u) << result.error;
    EXPECT_NE(result.error.find("> \"b\""), std::string::npos) << result.error;
}

TEST(StepStructure, RefusesADefinitionInItself) {
    StepText file;
    const auto a = file.Definition("a");
    file.PlainUse("1", a, a);
    EXPECT_NE(ReadStructure(file.Text(), "x").error.find("cyclic"), std::string::npos);
}

TEST(StepStructure, KeepsPropertiesOfDefinitionsAndUses) {
    StepText file;
    const auto car = file.Definition("car");
    const auto wheel = file.Definition("wheel");
    const auto use = file.PlainUse("1", car, wheel);
    const auto describe = [&](StepText::Id of, const std::string& group, const std::string& item) {
        const auto property =
            file.Add("PROPERTY_DEFINITION('" + group + "','why',#" + std::to_string(of) + ")");
        const auto value = file.Add(item);
        const auto context = file.Add("REPRESENTATION_CONTEXT('','')");
        const auto values = file.Add("REPRESENTATION('what',(#" + std::to_string(value) + "),#" +
                                     std::to_string(context) + ")");
        file.Add("PROPERTY_DEFINITION_REPRESENTATION(#" + std::to_string(property) + ",#" +
                 std::to_string(values) + ")");
        return property;
    };
    const auto attribute = describe(wheel.definition, "user defined attribute",
                                    R"(DESCRIPTIVE_REPRESENTATION_ITEM('Maker','M\X\FCller'))");
    const auto general = file.Add("GENERAL_PROPERTY('','Maker','')");
    file.Add("GENERAL_PROPERTY_ASSOCIATION('','',#" + std::to_string(general) + ",#" +
             std::to_string(attribute) + ")");
    describe(use, "assembly validation property",
             "(INTEGER_REPRESENTATION_ITEM(4)REPRESENTATION_ITEM('count'))");
    const StepModel model = Model(file.Text());
    ASSERT_EQ(model.definitions[1].properties.size(), 1u);
    const Property& maker = model.definitions[1].properties[0];
    EXPECT_EQ(maker.group, "user defined attribute");
    EXPECT_EQ(maker.name, "Maker");
    EXPECT_EQ(maker.values.at(0).text, "Müller");
    ASSERT_EQ(model.uses[0].properties.size(), 1u);
    EXPECT_EQ(model.uses[0].properties[0].values.at(0).name, "count");
    EXPECT_EQ(model.uses[0].properties[0].values.at(0).numbers, std::vector<double>{4});
}

TEST(StepStructure, ReadsAssembliesTenThousandLevelsDeep) {
    constexpr int kLevels = 10000;
    StepText file;
    auto parent = file.Definition("level");
    for (int i = 1; i < kLevels; ++i) {
        const auto child = file.Definition("level");
        file.Use("1", parent, child, file.Origin());
        parent = child;
    }
    const StepModel model = Model(file.Text());
    EXPECT_EQ(model.uses.size(), kLevels - 1u);
    EXPECT_EQ(model.roots.size(), 1u);
}

TEST(StepStructure, RefusesACycleOfTenThousandWithoutTellingAll) {
    constexpr int kLevels = 10000;
    StepText file;
    const auto first = file.Definition("level");
    auto parent = first;
    for (int i = 1; i < kLevels; ++i) {
        const auto child = file.Definition("level");
        file.PlainUse("1", parent, child);
        parent = child;
    }
    file.PlainUse("1", parent, first);
    const std::string error = ReadStructure(file.Text(), "x").error;
    EXPECT_NE(error.find("more) >"), std::string::npos);
    EXPECT_LT(error.size(), 2000u);
}

TEST(StepStructure, ReadsAHundredThousandChildrenUnderOneParent) {
    constexpr int kChildren = 100000;
    StepText file;
    std::string items;
    std::vector<StepText::Id> axes;
    for (int i = 0; i < kChildren; ++i) {
        axes.push_back(file.Axes(i, 0, 0));
        items += (i ? ",#" : "#") + std::to_string(axes.back());
    }
    const auto parent = file.Definition("wide", items);
    const auto child = file.Definition("part");
    for (int i = 0; i < kChildren; ++i)
        file.Use("1", parent, child, axes[static_cast<std::size_t>(i)]);
    const StepModel model = Model(file.Text());
    ASSERT_EQ(model.definitions[0].uses.size(), static_cast<std::size_t>(kChildren));
    EXPECT_EQ(OriginOf(model.uses.back()), (Point{kChildren - 1, 0, 0}));
}

TEST(StepTransform, InvertsWhatItCan) {
    const Transform turned = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1};
    EXPECT_EQ(Then(turned, Inverse(turned)), kIdentity);
    const Transform scaled = {2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 8, 0, 1, 2, 3, 1};
    EXPECT_EQ(Then(scaled, Inverse(scaled)), kIdentity);
    const Transform flat = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 2, 3, 1};
    EXPECT_EQ(Inverse(flat), kIdentity);
}

}  // namespace
