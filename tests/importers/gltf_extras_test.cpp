// Tables that a file of our own carries: believed only where they agree with themselves and with the nodes.

#include "engine/runtime/engine.h"
#include "engine/runtime/module_folder.h"
#include "frame/host/api.h"
#include "importers/gltf/assembly_tables.h"
#include "importers/gltf/file_source.h"
#include "importers/gltf/gltf_assembly_extras.h"
#include "importers/gltf/gltf_document.h"
#include "tests/importers/gltf_text.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace qn;
using namespace qn::gltf;
using nlohmann::json;

/// A car with two wheels, each with a tyre.
json Car() {
    return json::parse(R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"scale": [0.001, 0.001, 0.001], "children": [1]},
                  {"children": [2, 4], "extras": {"assembly": {"definition": 0, "use": 0}}},
                  {"children": [3], "extras": {"assembly": {"definition": 1, "use": 1}}},
                  {"translation": [0, 0, 1], "extras": {"assembly": {"definition": 2, "use": 3}}},
                  {"children": [5], "extras": {"assembly": {"definition": 1, "use": 2}}},
                  {"translation": [0, 0, 1], "extras": {"assembly": {"definition": 2, "use": 3}}}],
        "extras": {"assembly": {"version": 1, "frame": 0,
            "definitions": [{"name": "car"}, {"name": "wheel"}, {"name": "tyre"}],
            "uses": [{"definition": 0}, {"parent": 0, "definition": 1}, {"parent": 0, "definition": 1},
                     {"parent": 1, "definition": 2}]}}})");
}

json& TablesOf(json& file) {
    return file["extras"]["assembly"];
}

Model ModelOf(const json& file) {
    const std::string text = file.dump();
    return ReadDocument(*SourceOf(text)).model;
}

Counted<graph::LookupTable> NewTable() {
    SetModuleFolder(String::FromUtf8(ASSEMBLY_LIB_DIR));
    EXPECT_TRUE(StartEngineWithAssembly(nullptr));
    return CreateAs<graph::LookupTable>(graph::ClassKey::kLookupTable);
}

/// What is wrong with the file's tables; empty if they hold.
std::string Disagreement(const json& file) {
    AssemblyTables tables;
    EXPECT_TRUE(tables.Read(ModelOf(file)));
    return tables.Disagreement();
}

TEST(GltfExtras, HoldWhereNodesAndTablesAgree) {
    EXPECT_EQ(Disagreement(Car()), "");
}

TEST(GltfExtras, AreNotLookedForWithoutAVersion) {
    json file = Car();
    TablesOf(file).erase("version");
    EXPECT_FALSE(AssemblyTables().Read(ModelOf(file)));
    file.erase("extras");
    EXPECT_FALSE(AssemblyTables().Read(ModelOf(file)));
}

struct Change {
    const char* what;
    std::function<void(json& file, json& tables)> make;
    const char* said;
};

const Change kChanges[] = {
    {"another version", [](json&, json& t) { t["version"] = 2; }, "version 2"},
    {"no definitions", [](json&, json& t) { t.erase("definitions"); }, "missing"},
    {"uses that are no list", [](json&, json& t) { t["uses"] = 1; }, "missing"},
    {"no frame", [](json&, json& t) { t.erase("frame"); }, "frame"},
    {"another frame", [](json&, json& t) { t["frame"] = 1; }, "frame"},
    {"a frame that is no node", [](json&, json& t) { t["frame"] = 99; }, "frame"},
    {"a definition that is no object", [](json&, json& t) { t["definitions"][1] = 7; }, "no object"},
    {"a use that is no object", [](json&, json& t) { t["uses"][1] = "x"; }, "no object"},
    {"a mesh that is missing", [](json&, json& t) { t["definitions"][2]["mesh"] = 0; }, "mesh"},
    {"a negative mesh", [](json&, json& t) { t["definitions"][2]["mesh"] = -1; }, "mesh"},
    {"a definition that is missing", [](json&, json& t) { t["uses"][1]["definition"] = 3; }, "definition"},
    {"a definition that is no number", [](json&, json& t) { t["uses"][1]["definition"] = "1"; },
     "definition"},
    {"a parent that is missing", [](json&, json& t) { t["uses"][1]["parent"] = 3; }, "parent"},
    {"a container that is missing", [](json&, json& t) { t["container"] = 3; }, "container"},
    {"a container in the tree", [](json&, json& t) { t["container"] = 1; }, "container"},
    {"a use without a node",
     [](json&, json& t) {
         t["uses"].push_back({{"parent", 2}, {"definition", 2}});
     },
     "nodes were changed"},
    {"a ring that no node shows",
     [](json&, json& t) {
         t["definitions"].push_back({{"name", "ring"}});
         t["uses"].push_back({{"parent", 3}, {"definition", 3}});
     },
     "nodes were changed"},
    {"one wheel fewer",
     [](json& f, json&) {
         f["nodes"][1]["children"] = {2}, f["nodes"][0]["children"] = {1, 4};
     },
     "nodes were changed"},
    {"wheels in another order",
     [](json& f, json&) {
         f["nodes"][1]["children"] = {4, 2};
     },
     "nodes were changed"},
    {"a node that says nothing", [](json& f, json&) { f["nodes"][3].erase("extras"); }, "nodes were changed"},
    {"a node with the use of another", [](json& f, json&) { f["nodes"][4]["extras"]["assembly"]["use"] = 1; },
     "nodes were changed"},
    {"one tyre moved",
     [](json& f, json&) {
         f["nodes"][5]["translation"] = {0, 0, 2};
     },
     "nodes were changed"},
    {"an override without path",
     [](json&, json& t) {
         t["overrides"] = {{{"use", 1}}};
     },
     "path"},
    {"an override of no use",
     [](json&, json& t) {
         t["overrides"] = json::array({{{"use", 9}, {"path", {0, 9}}}});
     },
     "nowhere"},
    {"an override of another use",
     [](json&, json& t) {
         t["overrides"] = json::array({{{"use", 1}, {"path", {0, 2}}}});
     },
     "nowhere"},
};

TEST(GltfExtras, AreRefusedWhereSomethingDoesNotFit) {
    for (const Change& change : kChanges) {
        json file = Car();
        change.make(file, TablesOf(file));
        EXPECT_NE(Disagreement(file).find(change.said), std::string::npos)
            << change.what << ": " << Disagreement(file);
    }
}

TEST(GltfExtras, OfNodesCostNoValuesWhereTheySayTheirUseAlone) {
    const Model model = ModelOf(Car());
    EXPECT_EQ(model.nodes[3].use, 3u);
    EXPECT_EQ(model.nodes[0].use, kNone);
    EXPECT_TRUE(model.extras.empty());
}

TEST(GltfExtras, OfNodesMayStandInAnyForm) {
    json file = Car();
    file["nodes"][3]["extras"]["other"] = 1;
    file["nodes"][4]["extras"]["assembly"].erase("definition");
    const std::string spaced = file.dump(2);
    AssemblyTables tables;
    EXPECT_TRUE(tables.Read(ReadDocument(*SourceOf(spaced)).model));
    EXPECT_EQ(tables.Disagreement(), "");
    EXPECT_EQ(Disagreement(file), "");
}

TEST(GltfExtras, AMovedNodeIsFineWhereAnOverrideSaysSo) {
    json file = Car();
    file["nodes"][5]["translation"] = {0, 0, 2};
    TablesOf(file)["overrides"] = json::array({{{"use", 3}, {"path", {2, 3}}}});
    EXPECT_EQ(Disagreement(file), "");
}

TEST(GltfExtras, MakeNothingWhereTheyAreRefused) {
    const auto table = NewTable();
    json file = Car();
    file["nodes"][5]["translation"] = {0, 0, 2};
    AssemblyHierarchy out;
    std::string warning;
    EXPECT_FALSE(BuildAssembly(ModelOf(file), *table, out, warning));
    EXPECT_NE(warning, "");
    EXPECT_FALSE(out.root);
}

TEST(GltfExtras, ElementsOfOneIdStayTwo) {
    const auto table = NewTable();
    json file = Car();
    for (const int definition : {1, 2})
        TablesOf(file)["definitions"][definition].update({{"id", "e_1"}, {"serverId", "s:1"}});
    for (const int use : {1, 2, 3})
        TablesOf(file)["uses"][use].update({{"id", "n_1"}, {"serverId", "s:2"}});
    AssemblyHierarchy out;
    std::string warning;
    ASSERT_TRUE(BuildAssembly(ModelOf(file), *table, out, warning)) << warning;
    ASSERT_EQ(out.root->GetChildCount(), 2);
    const auto wheel = out.root->GetChild(0)->GetReference();
    ASSERT_EQ(wheel->GetChildCount(), 1);
    EXPECT_NE(wheel, wheel->GetChild(0)->GetReference());
}

}  // namespace
