#include "importers/step/step_geometry.h"

#include "importers/step/step_structure.h"
#include "tests/support/data_dir.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace {

using namespace qn::step;

struct Read {
    StepModel model;
    std::map<std::string, MeshData> meshes;  ///< by definition name
    std::size_t meshCount = 0;
    GeometryResult result;
};

Read ReadAll(const std::string& file, const Tessellation& tessellation = {}) {
    Read read;
    const auto structure = ReadStructure(qn::test::DataDir() / file);
    EXPECT_TRUE(structure.Ok()) << structure.error;
    read.model = structure.model;
    const auto take = [&](std::size_t definition, MeshData mesh) {
        ++read.meshCount;
        read.meshes[read.model.definitions[definition].name] = std::move(mesh);
    };
    read.result = ReadGeometry(structure, tessellation, take, nullptr);
    EXPECT_TRUE(read.result.Ok()) << read.result.error;
    return read;
}

double Volume(const MeshData& mesh) {
    double sixfold = 0;
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
        const float* a = &mesh.positions[mesh.indices[i] * 3];
        const float* b = &mesh.positions[mesh.indices[i + 1] * 3];
        const float* c = &mesh.positions[mesh.indices[i + 2] * 3];
        sixfold += a[0] * (double(b[1]) * c[2] - double(b[2]) * c[1]) -
                   a[1] * (double(b[0]) * c[2] - double(b[2]) * c[0]) +
                   a[2] * (double(b[0]) * c[1] - double(b[1]) * c[0]);
    }
    return sixfold / 6;
}

double StatedVolume(const StepModel& model, const std::string& name) {
    for (const Definition& definition : model.definitions)
        for (const Property& property : definition.properties)
            for (const PropertyValue& value : property.values)
                if (definition.name == name && value.name == "volume measure" && property.aspect.empty())
                    return value.numbers.at(0);
    return 0;
}

class StepGeometry : public testing::Test {
protected:
    void SetUp() override {
        if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
    }
};

TEST_F(StepGeometry, HasTheVolumesThatTheFileStates) {
    const Read read = ReadAll("cax-as1/as1-tu-203.stp", {0.01, 5});
    for (const char* name : {"nut", "bolt", "rod", "plate", "l-bracket"}) {
        const double stated = StatedVolume(read.model, name);
        ASSERT_GT(stated, 0) << name;
        ASSERT_EQ(read.meshes.count(name), 1u) << name;
        EXPECT_NEAR(Volume(read.meshes.at(name)), stated, stated * 0.01) << name;
    }
}

TEST_F(StepGeometry, GivesAssembliesNothingOfTheirComponents) {
    EXPECT_EQ(ReadAll("cax-as1/as1-oc-214.stp").meshCount, 5u);
    EXPECT_EQ(ReadAll("cax-as1/as1-tu-203.stp").meshCount, 5u);
}

TEST_F(StepGeometry, KeepsWhatIsAnAssemblysOwn) {
    const Read read = ReadAll("apex-robot/apexrobot-assembly.step");
    EXPECT_EQ(read.meshes.count("Aperx v9"), 1u);
}

TEST_F(StepGeometry, TurnsInchesAndMetresIntoMillimetres) {
    const Read inches = ReadAll("cax-dm1/dm1-id-214.stp");
    float longest = 0;
    for (const float coordinate : inches.meshes.at("l-bracket").positions)
        longest = std::max(longest, std::abs(coordinate));
    EXPECT_GT(longest, 30);
    EXPECT_LT(longest, 200);

    const Read metres = ReadAll("dissonance/dissonance-assembly.step");
    longest = 0;
    for (const float coordinate : metres.meshes.at("18650").positions)
        longest = std::max(longest, std::abs(coordinate));
    EXPECT_GT(longest, 30);
    EXPECT_LT(longest, 500);
}

TEST_F(StepGeometry, TakesColoursOfSolidsAndFaces) {
    const Read read = ReadAll("small/red_cube_blue_cylinder.step");
    ASSERT_EQ(read.meshes.at("red_cube").parts.size(), 1u);
    const Colour red = read.meshes.at("red_cube").parts[0].colour.value();
    const Colour blue = read.meshes.at("blue_cylinder").parts[0].colour.value();
    EXPECT_NEAR(red.red, 0.866667, 1e-5);
    EXPECT_NEAR(blue.blue, 0.705882, 1e-5);
}

TEST_F(StepGeometry, IsFinerWithASmallerTolerance) {
    const Read coarse = ReadAll("cax-as1/as1-oc-214.stp", {2, 45});
    const Read fine = ReadAll("cax-as1/as1-oc-214.stp", {0.01, 45});
    EXPECT_GT(fine.meshes.at("nut").indices.size(), coarse.meshes.at("nut").indices.size());
}

TEST_F(StepGeometry, GivesTheSameTrianglesInEveryRun) {
    const Read one = ReadAll("seedmint/SeedMint-2021-08-03.step");
    const Read two = ReadAll("seedmint/SeedMint-2021-08-03.step");
    for (const auto& [name, mesh] : one.meshes) {
        EXPECT_EQ(mesh.positions, two.meshes.at(name).positions) << name;
        EXPECT_EQ(mesh.indices, two.meshes.at(name).indices) << name;
    }
}

TEST_F(StepGeometry, StopsWhenItIsToldTo) {
    const auto structure = ReadStructure(qn::test::DataDir() / "cax-as1/as1-oc-214.stp");
    int meshes = 0;
    const auto result = ReadGeometry(
        structure, {}, [&](std::size_t, MeshData) { ++meshes; },
        [](double fraction) { return fraction < 0.5; });
    EXPECT_TRUE(result.isCancelled);
    EXPECT_EQ(meshes, 0);
}

}  // namespace
