#include "tool/show_json.h"

namespace assembly::tool {
namespace {

using qn::Matrix4;

std::string IdField(const qn::graph::HierarchyElement* element, const ShowOptions& options) {
    const std::string id = options.ids && element ? PersistentIdOf(*element) : std::string();
    return id.empty() ? id : ", \"id\": " + Quoted(id);
}

constexpr const char* kStateNames[] = {"", "not read", "read", "missing"};

std::string FileFields(const Definition& definition) {
    if (definition.fileState == FileState::kNone) return std::string();
    return ", \"file\": " + Quoted(definition.file) + ", \"file_state\": \"" +
           kStateNames[static_cast<int>(definition.fileState)] + "\"";
}

void WriteDefinitions(Output& output, const Structure& structure, const ShowOptions& options) {
    output.Write("  \"definitions\": [");
    const char* separator = "\n";
    for (const Definition& definition : structure.definitions) {
        output.Write(separator);
        output.Write("    {\"name\": " + Quoted(definition.name) +
                     ", \"kind\": " + (definition.useCount ? "\"assembly\"" : "\"part\"") +
                     ", \"uses\": " + std::to_string(definition.usedBy) +
                     ", \"occurrences\": " + std::to_string(definition.occurrences) +
                     IdField(definition.reference, options) + FileFields(definition) + "}");
        separator = ",\n";
    }
    output.Write("\n  ]");
}

std::string MatrixText(const Matrix4<double>& matrix) {
    std::string text = "[";
    for (const auto& row : matrix.m)
        for (const double value : row)
            text += (text.size() > 1 ? ", " : "") + NumberText(value);
    return text + "]";
}

void WriteInstances(Output& output, const Structure& structure, const ShowOptions& options) {
    output.Write(",\n  \"instances\": [");
    const char* separator = "\n";
    for (std::size_t parent = 0; parent < structure.definitions.size(); ++parent) {
        const Definition& definition = structure.definitions[parent];
        for (std::uint32_t u = 0; u < definition.useCount; ++u) {
            const Use& use = structure.uses[definition.firstUse + u];
            output.Write(separator);
            output.Write("    {\"name\": " + Quoted(use.name) + ", \"parent\": " + std::to_string(parent) +
                         ", \"definition\": " + std::to_string(use.definition) +
                         ", \"matrix\": " + MatrixText(use.local) + IdField(use.instance, options) + "}");
            separator = ",\n";
        }
    }
    output.Write("\n  ]");
}

std::string OriginText(const Matrix4<double>& world) {
    return "[" + NumberText(world.m[3][0]) + ", " + NumberText(world.m[3][1]) + ", " +
           NumberText(world.m[3][2]) + "]";
}

void WriteOccurrences(Output& output, const Structure& structure, const ShowOptions& options) {
    output.Write(",\n  \"occurrences\": [");
    const char* separator = "\n";
    OccurrenceWalk walk(structure, options.depth);
    walk.Run([&](const Occurrence& occurrence) {
        output.Write(separator);
        const bool isRoot = occurrence.level == 1;
        std::string text = "    {\"level\": " + std::to_string(occurrence.level) +
                           ", \"parent\": " + (isRoot ? "null" : std::to_string(occurrence.parent)) +
                           ", \"definition\": " + std::to_string(occurrence.use->definition);
        if (!occurrence.name.empty()) text += ", \"name\": " + Quoted(occurrence.name);
        output.Write(text + ", \"origin_mm\": " + OriginText(*occurrence.world) + "}");
        separator = ",\n";
        return output.IsOpen();
    });
    output.Write("\n  ]");
}

}  // namespace

void WriteShowJson(Output& output, const Structure& structure, const ShowOptions& options) {
    output.Write("{\n");
    WriteDefinitions(output, structure, options);
    WriteInstances(output, structure, options);
    if (!options.definitions) WriteOccurrences(output, structure, options);
    output.Line("\n}");
}

}  // namespace assembly::tool
