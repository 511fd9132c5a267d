#include "tool/ops_formats.h"

#include "tool/operation_types.h"

#include <nlohmann/json.hpp>

namespace assembly::tool {
namespace {

using nlohmann::ordered_json;

constexpr int kIndent = 2;

void WriteDocument(Output& output, const ordered_json& document) {
    output.Line(document.dump(kIndent, ' ', false, ordered_json::error_handler_t::replace));
}

/// A described default as the value that it stands for; the text itself if it is none.
ordered_json DefaultOf(const OperationParameter& parameter) {
    const std::string_view type = TypeOf(parameter.type).schema;
    const ordered_json read = ordered_json::parse(*parameter.defaultValue, nullptr, false);
    const bool isTyped = type != "string" && !read.is_discarded();
    return isTyped ? read : ordered_json(*parameter.defaultValue);
}

ordered_json DescribeParameter(const OperationParameter& parameter) {
    ordered_json row = {{"id", parameter.id}, {"name", parameter.name}, {"type", parameter.type}};
    if (parameter.defaultValue) row["default"] = *parameter.defaultValue;
    row["comment"] = PlainComment(parameter.comment);
    return row;
}

ordered_json DescribeOperation(const Operation& operation) {
    ordered_json parameters = ordered_json::array();
    for (const OperationParameter& parameter : operation.parameters)
        parameters.push_back(DescribeParameter(parameter));
    return {{"id", operation.id},
            {"name", operation.name},
            {"private", operation.isPrivate},
            {"comment", PlainComment(operation.comment)},
            {"result", operation.resultType},
            {"parameters", std::move(parameters)}};
}

/// The scene comes from a file and is always needed, whatever its default in the description.
ordered_json SchemaOf(const OperationParameter& parameter) {
    ordered_json schema = {{"type", TypeOf(parameter.type).schema},
                           {"description", PlainComment(parameter.comment)}};
    if (parameter.defaultValue && !parameter.IsScene()) schema["default"] = DefaultOf(parameter);
    return schema;
}

ordered_json ArgumentSchema(const Operation& operation) {
    ordered_json properties = ordered_json::object(), required = ordered_json::array();
    for (const OperationParameter& parameter : operation.parameters) {
        properties[parameter.name] = SchemaOf(parameter);
        if (parameter.IsScene() || !parameter.defaultValue) required.push_back(parameter.name);
    }
    return {{"title", operation.name},
            {"description", PlainComment(operation.comment)},
            {"type", "object"},
            {"properties", std::move(properties)},
            {"required", std::move(required)},
            {"additionalProperties", false},
            {"x-id", operation.id},
            {"x-private", operation.isPrivate}};
}

ordered_json CallSchema(const Operation& operation) {
    return {{"type", "object"},
            {"properties",
             {{"operation", {{"const", operation.name}}},
              {"arguments", {{"$ref", "#/$defs/" + operation.name}}}}},
            {"required", {"operation", "arguments"}},
            {"additionalProperties", false}};
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += letter;
        }
    }
    return escaped;
}

std::string Attribute(const char* name, std::string_view value) {
    return std::string(" ") + name + "=\"" + Escaped(value) + "\"";
}

void WriteXmlOperation(Output& output, const Operation& operation) {
    output.Line("    <Method" + Attribute("id", std::to_string(operation.id)) +
                Attribute("name", operation.name) + Attribute("comment", operation.comment) +
                (operation.isPrivate ? Attribute("private", "true") : std::string()) + ">");
    output.Line("      <Result" + Attribute("type", operation.resultType) + "/>");
    for (const OperationParameter& parameter : operation.parameters)
        output.Line("      <Parameter" + Attribute("id", std::to_string(parameter.id)) +
                    Attribute("name", parameter.name) + Attribute("type", parameter.type) +
                    Attribute("comment", parameter.comment) +
                    (parameter.defaultValue ? Attribute("default", *parameter.defaultValue) : std::string()) +
                    "/>");
    output.Line("    </Method>");
}

}  // namespace

void WriteOperationJson(Output& output, const OperationList& list) {
    ordered_json operations = ordered_json::array();
    for (const Operation& operation : list.operations)
        operations.push_back(DescribeOperation(operation));
    WriteDocument(output, {{"operations", std::move(operations)}});
}

void WriteOperationXml(Output& output, const OperationList& list) {
    output.Line("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    output.Line("<Interface" + Attribute("context", list.context) + ">");
    output.Line("  <Methods>");
    for (const Operation& operation : list.operations)
        WriteXmlOperation(output, operation);
    output.Line("  </Methods>\n</Interface>");
}

void WriteOperationSchema(Output& output, const OperationList& list) {
    ordered_json definitions = ordered_json::object(), calls = ordered_json::array();
    for (const Operation& operation : list.operations) {
        definitions[operation.name] = ArgumentSchema(operation);
        calls.push_back(CallSchema(operation));
    }
    WriteDocument(output, {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                           {"title", "Operations on a scene"},
                           {"oneOf", std::move(calls)},
                           {"$defs", std::move(definitions)}});
}

}  // namespace assembly::tool
