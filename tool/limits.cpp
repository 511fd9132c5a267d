#include "engine/stream/limits.h"
#include "exchange/limits.h"
#include "exporters/gltf/gltf_export.h"
#include "graph/limits.h"
#include "importers/gltf/gltf_limits.h"
#include "importers/step/step_limits.h"
#include "tool/named_files.h"
#include "tool/parts_options.h"
#include "tool/terminal.h"
#include "tool/verbs.h"

#include <cstdint>
#include <memory>
#include <string>

namespace assembly::tool {
namespace {

namespace scene = qn::scene_file_limits;
namespace exchange = qn::exchange_limits;
namespace gltf = qn::gltf_limits;
namespace step = qn::step_limits;

constexpr const char* kDescription =
    "Examples:\n"
    "  assembly limits                    what a file may ask for at most\n"
    "  assembly limits --format json      the same for scripts\n\n"
    "Prints what a file may ask for at most. A file beyond one of these limits is refused with exit code 7 "
    "and a message that names it.";

struct Limit {
    const char* key;
    std::uint64_t value;
    const char* meaning;
};

constexpr Limit kLimits[] = {
    {"occurrences", static_cast<std::uint64_t>(qn::graph::kMaxOccurrences),
     "nodes that one generation makes"},
    {"parts_kept_lines", PartsOptions::kMostKeptLines, "lines of a parts list that are sorted or grouped"},
    {"file_levels", named_file_limits::kMostLevels, "levels of files that name files"},
    {"files", named_file_limits::kMostFiles, "files that one assembly is made of"},
    {"scene_file_bytes", scene::kLargestFile, "size of a scene file"},
    {"scene_file_objects", scene::kMostObjects, "objects in a scene file"},
    {"scene_file_classes", scene::kMostClasses, "classes in a scene file"},
    {"scene_file_class_key", scene::kLongestClassKey, "letters of a class key"},
    {"scene_file_blocks", scene::kMostBlocks, "blocks of a scene file"},
    {"scene_file_object_bytes", scene::kLargestBody, "bytes of one object"},
    {"scene_file_ratio", scene::kLargestRatio, "unpacked size of a block to its stored size"},
    {"scene_file_chunk_levels", scene::kDeepestChunk, "chunks nested in one object"},
    {"gltf_text_bytes", gltf::kLargestText, "size of the text of a glTF file"},
    {"gltf_nodes", gltf::kMostNodes, "nodes of a glTF file, copies included"},
    {"gltf_entries", gltf::kMostOthers, "entries of any other list of a glTF file"},
    {"gltf_buffer_bytes", gltf::kLargestBuffer, "size of one buffer"},
    {"gltf_vertices", gltf::kMostVertices, "vertices, and corners, of one mesh"},
    {"gltf_unbacked_elements", gltf::kMostUnbackedElements,
     "elements in use that no byte of the file stands for"},
    {"gltf_free_memory", gltf::kFreeMemory, "bytes of memory for the geometry and copies of any glTF file"},
    {"gltf_memory_ratio", gltf::kMemoryRatio, "further bytes of it for each byte of the file"},
    {"gltf_ratio", gltf::kLargestRatio, "unpacked size of a buffer view to its packed size"},
    {"glb_bytes", qn::gltf_export::Options().mostBytes, "size of a .glb that is written"},
    {"gltf_extras_levels", gltf::kDeepestExtras, "values nested in extras"},
    {"step_parentheses", step::kDeepestParentheses, "levels of parentheses in a record of a STEP file"},
    {"step_digits", step::kMostDigits, "digits before the point, and largest exponent, of a number in it"},
    {"step_file_name_bytes", step::kMostFileNameBytes,
     "of the names of other files in a STEP file, again for each definition that has them"},
    {"step_shape_seconds", step::kLongestShapeSeconds,
     "for the geometry of one definition, which is left out beyond"},
    {"exchange_file_bytes", exchange::kLargestFile, "size of a query or a spatial index"},
    {"exchange_entries", exchange::kMostEntries, "entries of a query or a spatial index"},
    {"exchange_id_length", exchange::kLongestId, "letters of an id in them"},
    {"exchange_values", exchange::kMostValues, "metadata values in one export"},
};

void WriteJson(Output& output) {
    const char* separator = "{\n";
    for (const Limit& limit : kLimits) {
        output.Write(separator);
        output.Write("  " + Quoted(limit.key) + ": " + std::to_string(limit.value));
        separator = ",\n";
    }
    output.Line("\n}");
}

void WriteTable(Output& output) {
    constexpr std::size_t kKeyColumns = 26, kValueColumns = 14;
    for (const Limit& limit : kLimits) {
        std::string line = limit.key;
        const std::string value = std::to_string(limit.value);
        line.resize(kKeyColumns + kValueColumns - value.size(), ' ');
        output.Line(line + value + "  " + limit.meaning);
    }
}

}  // namespace

void AddLimits(CLI::App& app) {
    auto format = std::make_shared<std::string>("table");
    CLI::App* verb = app.add_subcommand("limits", "Show what a file may ask for at most");
    verb->description(kDescription);
    verb->add_option("--format", *format, "table or json")->check(CLI::IsMember({"table", "json"}));
    verb->callback([format] {
        Output output;
        *format == "json" ? WriteJson(output) : WriteTable(output);
    });
}

}  // namespace assembly::tool
