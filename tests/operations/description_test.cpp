#include "operations/description.h"
#include "engine/runtime/resources.h"
#include "frame/host/api.h"
#include "frame/host/xml.h"
#include "graph/module_handle.h"
#include "tests/operations/operations_support.h"

namespace qn::test {
namespace {

struct ParameterRow {
    int id;
    const char* name;
    const char* type;
    const char* fallback;  ///< null where the caller has to give the argument
    const char* comment;
};

struct MethodRow {
    int id;
    const char* name;
    bool isPrivate;
    const char* comment;
    std::vector<ParameterRow> parameters;
};

constexpr ParameterRow kScene{0, "scene", "scene", nullptr, "Pointer to the current scene"};
constexpr ParameterRow kSceneOrNone{0, "scene", "scene", "0", "Pointer to the current scene"};

const std::vector<MethodRow>& ExpectedMethods() {
    static const std::vector<MethodRow> rows = {
        {1,
         "remove_qfxml_ids",
         true,
         "Removes QfXml Ids from the scene",
         {kScene,
          {1, "remove_entity_bs_id", "bool", "false", "Remove entity bs ids"},
          {2, "remove_node_bs_id", "bool", "false", "Remove node bs ids"},
          {3, "remove_selector_bs_id", "bool", "false", "Remove selector bs ids"},
          {4, "remove_entity_external_id", "bool", "false", "Remove entity external ids"},
          {5, "remove_node_external_id", "bool", "false", "Remove node external ids"},
          {6, "remove_selector_external_id", "bool", "false", "Remove selector external ids"}}},
        {2,
         "remove_qfxml_hierarchy_cache",
         false,
         "Removes QfXml specific hierarchy cache from the scene",
         {kScene,
          {1, "keep_all_metadata_as_selector_metadata", "bool", "false",
           "Copy metadata from QfXml hierarchy to scene nodes"},
          {2, "keep_selector_bs_ids", "bool", "false", "Keep QfXml hierarchy selector bs ids on scene nodes"},
          {3, "keep_selector_external_ids", "bool", "false",
           "Keep QfXml hierarchy selector external ids on scene nodes"},
          {4, "keep_all_metadata_as_entity_metadata", "bool", "false",
           "Copy metadata from QfXml hierarchy to entity descriptors associated with scene nodes"}}},
        {3,
         "update_bs_ids",
         true,
         "Updates QfXml Brine Server Ids in the scene",
         {kScene,
          {1, "update_entity_bs_id", "bool", "false", "Update entity bs ids"},
          {2, "update_node_bs_id", "bool", "false", "Update node bs ids"},
          {3, "update_selector_bs_id", "bool", "false", "Update selector bs ids"},
          {4, "modification_string", "string", nullptr, "String to be added as prefix/suffix"},
          {5, "suffix", "bool", "false", "Append to the name"}}},
        {4,
         "remove_qfxml_hierarchy_metadata",
         true,
         "Removes QfXml hierarchy metadata from the scene",
         {kScene,
          {1, "remove_entity_metadata", "bool", "false", "Remove entity metadata"},
          {2, "remove_node_metadata", "bool", "false", "Remove node metadata"},
          {3, "remove_selector_metadata", "bool", "false", "Remove selector metadata"},
          {4, "preserve_system_metadata", "bool", "false", "Preserve system metadata"}}},
        {5,
         "visual_context_merge",
         true,
         "Merges visual context file into the current scene",
         {kScene,
          {1, "visual_context_file", "filename", nullptr, "Visual context filename"},
          {2, "visual_context_query_file", "filename", nullptr,
           "Visual context query file used to get the visual context"}}},
        {6,
         "visual_context_extract",
         true,
         "Extract Visual Context Query xml from an existing qfxml file",
         {{0, "source_qfxml_file", "filename", nullptr, "Source qfxml file path"},
          {1, "spatial_index_file", "filename", nullptr, "Spatial index file path"},
          {2, "output_visual_context_query_file", "filename", nullptr,
           "Output visual context query xml file path"}}},
        {7,
         "generate_bs_ids",
         true,
         "Generates QfXml Brine Server Ids in the scene for elements that don't have one",
         {kSceneOrNone,
          {1, "generate_entity_bs_id", "bool", "false", "Update entity bs ids"},
          {2, "generate_node_bs_id", "bool", "false", "Update node bs ids"},
          {3, "generate_selector_bs_id", "bool", "false", "Update selector bs ids"},
          {4, "prefix_string", "string", nullptr, "String to be added as prefix to the id"},
          {5, "suffix_string", "string", nullptr, "String to be added as suffix to the id"}}},
        {10,
         "regenerate_scene_thumbnails",
         false,
         "Generates thumbnails for scene step, model and detail views",
         {kSceneOrNone,
          {1, "regenerate_model_view_thumbnails", "bool", "true", "Regenerate model view thumbnails"},
          {2, "regenerate_step_view_thumbnails", "bool", "true", "Regenerate step view thumbnails"},
          {3, "regenerate_detail_view_thumbnails", "bool", "true", "Regenerate detail view thumbnails"}}},
        {11, "validate_scene_hierarchy", false, "Validates scene hierarchy", {kSceneOrNone}},
        {12,
         "validate_and_fix_scene_hierarchy",
         false,
         "Validates scene hierarchy and fixes errors",
         {kSceneOrNone}},
        {13,
         "qfxml_replace_bs_ids_with_based_on",
         true,
         "Internal Use Only - for collapsing!!! Replaces current Brine Server ids with Based On id.",
         {kSceneOrNone}},
        {14,
         "internal_export_scene_metadata",
         true,
         "Internal Scene metadata extraction. Internal Usage Only !!!",
         {kSceneOrNone,
          {1, "output_file", "filename", nullptr, "Output file path"},
          {2, "output_blob_folder", "filename", nullptr, "Folder for text blobs"},
          {3, "top_level_metadata_only", "bool", "true",
           "Export only scene level and top level node metadata"}}},
        {15,
         "generate_scene_instance_reference_hierarchy",
         true,
         "Generates instance-reference hierarchy with Brine Server ids for the scene.",
         {kSceneOrNone}},
        {16, "validate_scene_layers", false, "Validates scene layers", {kSceneOrNone}},
        {17,
         "validate_and_fix_scene_layers",
         false,
         "Validates scene layers and fixes errors",
         {kSceneOrNone}},
        {18,
         "scene_collaboration_objects_present",
         true,
         "Detects presence of collaboration objects in the scene",
         {kSceneOrNone}},
    };
    return rows;
}

std::string AttributeOf(const xml::Element& element, const wchar_t* name) {
    const xml::Attribute* const attribute = element.FindAttribute(name);
    return attribute ? attribute->GetValue().ToUtf8() : "(missing)";
}

class Description : public OperationTest {
protected:
    void SetUp() override {
        ASSERT_EQ(operation->QueryInfo(document.Get(), 0xff), ResultEnum::kSuccess);
        root = document->FindChild(L"Interface");
        ASSERT_NE(root, nullptr);
        methods = root->FindChild(L"Methods");
        ASSERT_NE(methods, nullptr);
    }

    const Counted<xml::Element> document = CreateAs<xml::Element>("qnxmldocument");
    xml::Element* root = nullptr;
    xml::Element* methods = nullptr;
};

TEST_F(Description, NamesItsContextAndItsSchema) {
    EXPECT_EQ(AttributeOf(*root, L"context"), "assembly");
    EXPECT_NE(graph::OperationDescription().find("/PlateCore/2012/January/DiscoverableOperation\""),
              std::string_view::npos);
    EXPECT_EQ(root->GetChildCount(), 1);
}

TEST_F(Description, ListsSixteenMethodsInTheirOrder) {
    ASSERT_EQ(methods->GetChildCount(), 16);
    ASSERT_EQ(ExpectedMethods().size(), 16u);
    for (int i = 0; i < 16; ++i) {
        const MethodRow& expected = ExpectedMethods()[static_cast<std::size_t>(i)];
        const xml::Element& method = *methods->GetChild(i);
        EXPECT_EQ(method.GetName(), String(L"Method"));
        EXPECT_EQ(AttributeOf(method, L"id"), std::to_string(expected.id));
        EXPECT_EQ(AttributeOf(method, L"name"), expected.name);
        EXPECT_EQ(AttributeOf(method, L"private"), expected.isPrivate ? "true" : "(missing)");
    }
}

TEST_F(Description, DoesNotListMethodsEightAndNine) {
    for (int i = 0; i < methods->GetChildCount(); ++i) {
        EXPECT_NE(AttributeOf(*methods->GetChild(i), L"id"), "8");
        EXPECT_NE(AttributeOf(*methods->GetChild(i), L"id"), "9");
    }
}

TEST_F(Description, PutsABarInFrontOfEveryComment) {
    for (int i = 0; i < methods->GetChildCount(); ++i) {
        xml::Element& method = *methods->GetChild(i);
        const MethodRow& expected = ExpectedMethods()[static_cast<std::size_t>(i)];
        EXPECT_EQ(AttributeOf(method, L"comment"), std::string("|") + expected.comment);
        for (int p = 1; p < method.GetChildCount(); ++p)
            EXPECT_EQ(AttributeOf(*method.GetChild(p), L"comment").front(), '|');
    }
}

TEST_F(Description, GivesEveryMethodABoolResultBeforeItsParameters) {
    for (int i = 0; i < methods->GetChildCount(); ++i) {
        xml::Element& method = *methods->GetChild(i);
        ASSERT_GE(method.GetChildCount(), 1);
        EXPECT_EQ(method.GetChild(0)->GetName(), String(L"Result"));
        EXPECT_EQ(AttributeOf(*method.GetChild(0), L"type"), "bool");
    }
}

void ExpectParameter(const xml::Element& parameter, const ParameterRow& expected, const char* method) {
    EXPECT_EQ(parameter.GetName(), String(L"Parameter")) << method;
    EXPECT_EQ(AttributeOf(parameter, L"id"), std::to_string(expected.id)) << method;
    EXPECT_EQ(AttributeOf(parameter, L"name"), expected.name) << method;
    EXPECT_EQ(AttributeOf(parameter, L"type"), expected.type) << method << expected.name;
    EXPECT_EQ(AttributeOf(parameter, L"comment"), std::string("|") + expected.comment) << method;
    EXPECT_EQ(AttributeOf(parameter, L"default"), expected.fallback ? expected.fallback : "(missing)")
        << method << expected.name;
}

TEST_F(Description, DescribesEveryParameterRowByRow) {
    for (int i = 0; i < methods->GetChildCount(); ++i) {
        xml::Element& method = *methods->GetChild(i);
        const MethodRow& expected = ExpectedMethods()[static_cast<std::size_t>(i)];
        ASSERT_EQ(method.GetChildCount(), 1 + static_cast<int>(expected.parameters.size())) << expected.name;
        for (std::size_t p = 0; p < expected.parameters.size(); ++p)
            ExpectParameter(*method.GetChild(1 + static_cast<int>(p)), expected.parameters[p], expected.name);
    }
}

TEST_F(Description, GivesTheSceneADefaultOnlyFromMethodSevenOn) {
    for (int i = 0; i < methods->GetChildCount(); ++i) {
        xml::Element& method = *methods->GetChild(i);
        const int id = std::stoi(AttributeOf(method, L"id"));
        if (id == 6) continue;
        EXPECT_EQ(AttributeOf(*method.GetChild(1), L"default"), id >= 7 ? "0" : "(missing)") << id;
    }
}

TEST_F(Description, SaysUpdateWhereMethodSevenGenerates) {
    xml::Element& generate = *methods->GetChild(6);
    ASSERT_EQ(AttributeOf(generate, L"name"), "generate_bs_ids");
    EXPECT_EQ(AttributeOf(*generate.GetChild(2), L"comment"), "|Update entity bs ids");
    EXPECT_EQ(AttributeOf(*generate.GetChild(3), L"comment"), "|Update node bs ids");
    EXPECT_EQ(AttributeOf(*generate.GetChild(4), L"comment"), "|Update selector bs ids");
}

TEST_F(Description, IsTheSameForEveryReservedWord) {
    EXPECT_EQ(operation->QueryInfo(document.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(document->FindChild(L"Interface")->FindChild(L"Methods")->GetChildCount(), 16);
}

TEST_F(Description, ThatIsMissingAnswersAFailureAndLeavesTheElement) {
    ASSERT_TRUE(RemoveResource(graph::GetModuleHandle(), graph::kDescriptionResource));
    EXPECT_EQ(operation->QueryInfo(document.Get(), 0), ResultEnum::kWriteFailed);
    EXPECT_EQ(document->FindChild(L"Interface"), root);
    EXPECT_EQ(methods->GetChildCount(), 16);
}

TEST_F(Description, ThatCannotBeReadGivesTheAnswerOfTheElement) {
    RegisterResource(graph::GetModuleHandle(), graph::kDescriptionResource, "<Interface");
    EXPECT_EQ(operation->QueryInfo(document.Get(), 0), ResultEnum::kNothing);
    EXPECT_EQ(document->FindChild(L"Interface"), root);
}

}  // namespace
}  // namespace qn::test
