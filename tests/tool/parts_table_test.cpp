#include "tests/tool/parts_support.h"
#include "tool/failure.h"
#include "tool/parts_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace assembly::tests {
namespace {

using qn::test::AssemblyBuilder;
using qn::test::AssemblyShape;
using testing::ElementsAre;
using tool::PartsOptions;
using tool::PartsStructure;

/// Two axles with two wheels each, a spare wheel; four bolts in a wheel, one more in the car.
AssemblyShape Car() {
    return AssemblyBuilder("car")
        .Child("axle", 2)
        .Child("wheel")
        .Child("bolt")
        .Under("axle", "wheel", 2)
        .Under("wheel", "bolt", 4)
        .Under("wheel", "tyre")
        .Shape();
}

std::uint64_t SumOf(const std::vector<Part>& parts) {
    return std::accumulate(parts.begin(), parts.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const Part& part) { return sum + part.quantity; });
}

TEST(PartsTable, ShowsLevelsWithQuantitiesPerParent) {
    const MadeStructure car(Car());
    EXPECT_THAT(PartsOf(car.structure, Laid(PartsStructure::kMulti)),
                ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 2, 2}, Part{2, "wheel", 2, 4},
                            Part{3, "bolt", 4, 16}, Part{3, "tyre", 1, 4}, Part{1, "wheel", 1, 1},
                            Part{2, "bolt", 4, 4}, Part{2, "tyre", 1, 1}, Part{1, "bolt", 1, 1}));
}

TEST(PartsTable, ShowsTheComponentsOfAnAssemblyOnceWhereAsked) {
    const MadeStructure car(Car());
    PartsOptions options = Laid(PartsStructure::kMulti);
    options.once = true;
    EXPECT_THAT(PartsOf(car.structure, options),
                ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 2, 2}, Part{2, "wheel", 2, 4},
                            Part{3, "bolt", 4, 16}, Part{3, "tyre", 1, 4}, Part{1, "wheel", 1, 1},
                            Part{1, "bolt", 1, 1}));
}

TEST(PartsTable, StopsAtTheWantedLevel) {
    const MadeStructure car(Car());
    EXPECT_THAT(PartsOf(car.structure, Laid(PartsStructure::kMulti, 1)),
                ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 2, 2}, Part{1, "wheel", 1, 1},
                            Part{1, "bolt", 1, 1}));
}

TEST(PartsTable, ShowsDirectComponentsAlone) {
    const MadeStructure car(Car());
    EXPECT_THAT(PartsOf(car.structure, Laid(PartsStructure::kSingle)),
                ElementsAre(Part{1, "axle", 2, 2}, Part{1, "wheel", 1, 1}, Part{1, "bolt", 1, 1}));
}

TEST(PartsTable, ShowsPartsWithTheirTotalsInAFlatList) {
    const MadeStructure car(Car());
    EXPECT_THAT(PartsOf(car.structure, Laid(PartsStructure::kFlat)),
                ElementsAre(Part{0, "bolt", 21, 21}, Part{0, "tyre", 5, 5}));
}

TEST(PartsTable, CountsAssembliesOnTheLastLevelOfAFlatListAsOne) {
    const MadeStructure car(Car());
    EXPECT_THAT(PartsOf(car.structure, Laid(PartsStructure::kFlat, 2)),
                ElementsAre(Part{0, "bolt", 5, 5}, Part{0, "wheel", 4, 4}, Part{0, "tyre", 1, 1}));
    EXPECT_THAT(PartsOf(car.structure, Laid(PartsStructure::kFlat, 1)),
                ElementsAre(Part{0, "axle", 2, 2}, Part{0, "wheel", 1, 1}, Part{0, "bolt", 1, 1}));
}

TEST(PartsTable, ShowsARowForEachOccurrence) {
    const MadeStructure car(AssemblyBuilder("car").Child("axle", 2).Under("axle", "wheel").Shape());
    EXPECT_THAT(PartsOf(car.structure, Laid(PartsStructure::kOccurrences)),
                ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 1, 1}, Part{2, "wheel", 1, 1},
                            Part{1, "axle", 1, 1}, Part{2, "wheel", 1, 1}));
    EXPECT_EQ(PartsOf(car.structure, Laid(PartsStructure::kOccurrences, 1)).size(), 3u);
}

TEST(PartsTable, OfASinglePartIsThatPart) {
    const MadeStructure part(AssemblyBuilder("part").Shape());
    EXPECT_THAT(PartsOf(part.structure, Laid(PartsStructure::kFlat)), ElementsAre(Part{0, "part", 1, 1}));
    EXPECT_THAT(PartsOf(part.structure, Laid(PartsStructure::kMulti)), ElementsAre(Part{0, "part", 1, 1}));
    EXPECT_TRUE(PartsOf(part.structure, Laid(PartsStructure::kSingle)).empty());
}

/// Definitions use only later ones, some of them never; a few hundred occurrences.
AssemblyShape RandomShape(unsigned seed) {
    std::mt19937 random(seed);
    const int count = 2 + static_cast<int>(random() % 12);
    AssemblyShape shape;
    for (int i = 0; i < count; ++i) {
        AssemblyShape::Definition definition{"d" + std::to_string(i), {}};
        const int uses = static_cast<int>(random() % 4);
        for (int u = 0; u < uses && i + 1 < count; ++u)
            definition.children.push_back(i + 1 +
                                          static_cast<int>(random() % static_cast<unsigned>(count - i - 1)));
        shape.definitions.push_back(definition);
    }
    return shape;
}

std::uint64_t LeavesDownTo(const AssemblyShape& shape, std::size_t definition, std::uint32_t level) {
    const auto& children = shape.definitions[definition].children;
    if (children.empty() || level == 0) return 1;
    std::uint64_t leaves = 0;
    for (const int child : children)
        leaves += LeavesDownTo(shape, static_cast<std::size_t>(child), level - 1);
    return leaves;
}

TEST(PartsTable, QuantitiesOfAFlatListAlwaysAddUpToTheLeafOccurrences) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        const AssemblyShape shape = RandomShape(seed);
        const MadeStructure made(shape);
        const std::uint64_t leaves = LeavesDownTo(shape, 0, PartsOptions::kAllLevels);
        EXPECT_EQ(made.structure.leafOccurrences, leaves) << seed;
        EXPECT_EQ(SumOf(PartsOf(made.structure, Laid(PartsStructure::kFlat))), leaves) << seed;
        for (const std::uint32_t level : {1u, 2u, 4u})
            EXPECT_EQ(SumOf(PartsOf(made.structure, Laid(PartsStructure::kFlat, level))),
                      LeavesDownTo(shape, 0, level))
                << seed << " down to level " << level;
    }
}

TEST(PartsTable, TotalsOfAllLevelsAddUpToTheOccurrences) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        const MadeStructure made(RandomShape(seed));
        std::uint64_t total = 0;
        for (const Part& part : PartsOf(made.structure, Laid(PartsStructure::kMulti)))
            total += part.total;
        EXPECT_EQ(total, made.structure.occurrences) << seed;
        EXPECT_EQ(PartsOf(made.structure, Laid(PartsStructure::kOccurrences)).size(), total) << seed;
    }
}

TEST(PartsTable, CountsMoreOccurrencesThanAnyWalkCouldVisit) {
    AssemblyShape shape;
    for (int level = 0; level < 60; ++level)
        shape.definitions.push_back({"level " + std::to_string(level), {level + 1, level + 1}});
    shape.definitions.push_back({"part", {}});
    const MadeStructure made(shape);
    EXPECT_THAT(PartsOf(made.structure, Laid(PartsStructure::kFlat)),
                ElementsAre(Part{0, "part", std::uint64_t{1} << 60, std::uint64_t{1} << 60}));
    EXPECT_EQ(PartsOf(made.structure, Laid(PartsStructure::kMulti)).size(), 61u);
}

TEST(PartsList, RefusesToSortOrGroupMoreLinesThanTheLimit) {
    const MadeStructure car(Car());
    tool::Output output;
    for (const bool grouped : {false, true}) {
        PartsOptions options = Laid(PartsStructure::kOccurrences);
        if (grouped)
            options.groupBy = {"name"};
        else
            options.sortField = "name";
        options.mostKeptLines = 3;
        try {
            tool::WritePartsList(output, car.structure, options, tool::PartsFormat::kJson);
            ADD_FAILURE() << "grouped: " << grouped;
        } catch (const tool::Failure& failure) {
            EXPECT_EQ(failure.Code(), tool::ExitCode::kLimit);
        }
    }
}

}  // namespace
}  // namespace assembly::tests
