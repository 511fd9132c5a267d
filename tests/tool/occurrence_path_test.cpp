#include "tool/occurrence_path.h"

#include "frame/host/scene.h"
#include "tests/support/generated_scene.h"
#include "tool/failure.h"
#include "tool/structure_counts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using testing::ElementsAre;
using tool::Failure;
using tool::OccurrencePaths;
using tool::Structure;
using tool::Use;

Use UseOf(std::uint32_t definition, const char* name) {
    Use use;
    use.definition = definition;
    use.name = name;
    return use;
}

/// "car" with the uses "front" and (nameless) of "wheel", two nameless ones of "a/b[c]\d"; "wheel" has a
/// nameless use of a nameless definition.
Structure Car() {
    Structure structure;
    for (const char* name : {"car", "wheel", "a/b[c]\\d", ""})
        structure.definitions.emplace_back().name = name;
    structure.roots = {UseOf(0, "")};
    structure.uses = {UseOf(1, "front"), UseOf(1, ""), UseOf(2, ""), UseOf(2, ""), UseOf(3, "")};
    structure.definitions[0].useCount = 4;
    structure.definitions[1].firstUse = 4;
    structure.definitions[1].useCount = 1;
    tool::CountStructure(structure);
    return structure;
}

std::vector<std::string> AllPaths(const Structure& structure) {
    std::vector<std::string> all;
    tool::OccurrenceWalk walk(structure);
    tool::PathOfWalk paths(structure);
    walk.Run([&](const tool::Occurrence& occurrence) {
        all.push_back(paths.At(occurrence));
        return true;
    });
    return all;
}

TEST(OccurrencePath, IsTheNamesOfUsesElseOfDefinitions) {
    EXPECT_THAT(AllPaths(Car()),
                ElementsAre("car", "car/front", "car/front/(no name)", "car/wheel", "car/wheel/(no name)",
                            "car/a\\/b\\[c]\\\\d[1]", "car/a\\/b\\[c]\\\\d[2]"));
}

TEST(OccurrencePath, LeadsBackToItsUses) {
    const Structure structure = Car();
    OccurrencePaths paths(structure);
    for (const std::string& path : AllPaths(structure))
        EXPECT_EQ(paths.PathOf(paths.Find(path)), path);
}

TEST(OccurrencePath, MayUseTheNameOfADefinition) {
    const Structure structure = Car();
    const OccurrencePaths paths(structure);
    EXPECT_EQ(paths.Find("car/wheel").back(), &structure.uses[1]) << "a use's own name comes first";
    EXPECT_EQ(paths.Find("car/wheel[1]").back(), &structure.uses[1]);
}

TEST(OccurrencePath, MayNumberASingleOne) {
    const Structure structure = Car();
    EXPECT_EQ(OccurrencePaths(structure).Find("car[1]/front[1]").back(), &structure.uses[0]);
}

TEST(OccurrencePath, IsRefusedWhereItMeansNothing) {
    const Structure structure = Car();
    const OccurrencePaths paths(structure);
    for (const char* path : {"", "bus", "car/", "car//front", "car/front/x", "car/front[2]", "car/front[0]",
                             "car/front[", "car/front[1]x", "car/front[-1]", "car/a\\/b\\[c]\\\\d",
                             "car/front[99999999999999999999]", "car\\"})
        EXPECT_THROW(paths.Find(path), Failure) << path;
}

TEST(OccurrencePath, OfANodeEndsBelowTheScene) {
    const auto scene = qn::Make<qn::k3::Scene>();
    qn::k3::Node* top = scene->CreateEmptyNode(0, 0, 0);
    top->SetName(L"top");
    for (int i = 0; i < 2; ++i)
        top->CreateChildNode(0, 0, 0)->SetName(L"part");
    tool::NodePaths paths;
    EXPECT_EQ(paths.PathOf(*top), "top");
    EXPECT_EQ(paths.PathOf(*top->GetLastChild()), "top/part[2]");
}

TEST(OccurrencePath, OfANodeInAStructureThatIsNotShownEndsBelowItsRoot) {
    const auto root = qn::Make<qn::k3::Node>();
    qn::k3::Node* top = root->CreateChildNode(0, 0, 0);
    top->SetName(L"top");
    top->CreateChildNode(0, 0, 0);
    tool::NodePaths paths;
    EXPECT_EQ(paths.PathOf(*top->GetFirstChild()), "top/(no name)");
    EXPECT_EQ(paths.PathOf(*root), "(no name)");
}

TEST(OccurrencePath, OfANodeThatWasNotGeneratedIsThatOfItsDefinition) {
    const auto scene = qn::test::GeneratedScene(qn::test::AssemblyBuilder("car").Child("axle").Build());
    qn::k3::Node* const top = scene->GetFirstChild();
    top->SetName(L"file");
    top->DeleteParam(qn::Param::kInstance);
    EXPECT_EQ(tool::NodePaths().PathOf(*top), "car");
}

TEST(OccurrencePath, OfTenThousandSiblingsIsFoundOnce) {
    Structure structure;
    structure.definitions.resize(2);
    structure.definitions[0].name = "car";
    structure.definitions[1].name = "bolt";
    structure.roots = {UseOf(0, "")};
    structure.uses.assign(10'000, UseOf(1, ""));
    structure.definitions[0].useCount = 10'000;
    tool::CountStructure(structure);
    EXPECT_EQ(AllPaths(structure).back(), "car/bolt[10000]");
}

}  // namespace
}  // namespace assembly::tests
