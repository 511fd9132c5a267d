#include "engine/stream/limits.h"
#include "exchange/limits.h"
#include "graph/limits.h"
#include "tool/named_files.h"
#include "tool/terminal.h"
#include "tool/verbs.h"

#include <cstdint>
#include <memory>
#include <string>

namespace assembly::tool {
namespace {

namespace scene = qn::scene_file_limits;
namespace exchange = qn::exchange_limits;

constexpr const char* kDescription =
    "Examples:\n"
    "  assembly limits                    what a file may ask for at most\n"
    "  assembly limits --format json      the same for scripts\n\n"
    "A file beyond one of these limits is refused with exit code 7 and a message that names it.";

struct Limit {
    const char* key;
    std::uint64_t value;
    const char* meaning;
};

constexpr Limit kLimits[] = {
    {"occurrences", static_cast<std::uint64_t>(qn::graph::kMaxOccurrences),
     "nodes that one generation makes"},
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
