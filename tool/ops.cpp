#include "tool/operation_arguments.h"
#include "tool/ops_formats.h"
#include "tool/session.h"
#include "tool/verbs.h"

#include <map>
#include <memory>

namespace assembly::tool {
namespace {

struct Options {
    std::string operation;
    std::string format = "table";
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly ops                                   the operations that the module describes\n"
    "  assembly ops validate_scene_layers             one of them, with its arguments\n"
    "  assembly ops --format schema                   a JSON Schema of calls, for scripts and services\n\n"
    "Prints the module's own description of what can be done to a scene; assembly run NAME does it.";

using FormatWriter = void (*)(Output& output, const OperationList& list);
const std::map<std::string, FormatWriter> kFormats = {{"table", &WriteOperationTable},
                                                      {"json", &WriteOperationJson},
                                                      {"xml", &WriteOperationXml},
                                                      {"schema", &WriteOperationSchema}};

void Run(const Options& options) {
    Session session;
    OperationList list = DescribeOperations();
    if (!options.operation.empty()) {
        const Operation chosen = FindOperation(list, options.operation);
        list.operations = {chosen};
    }
    Output output;
    kFormats.at(options.format)(output, list);
}

}  // namespace

void AddOps(CLI::App& app) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("ops", "List the operations that the module describes");
    verb->description(kExamples);
    verb->add_option("NAME", options->operation, "One operation, by name or id");
    verb->add_option("--format", options->format, "table, json, xml or schema")
        ->check(CLI::IsMember({"table", "json", "xml", "schema"}));
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
