#include "engine/runtime/context_impl.h"
#include "frame/host/api.h"
#include "frame/host/params.h"
#include "tool/failure.h"
#include "tool/generate.h"
#include "tool/operation_arguments.h"
#include "tool/ops_formats.h"
#include "tool/save_target.h"
#include "tool/session.h"
#include "tool/verbs.h"

#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>

namespace assembly::tool {
namespace {

struct Options {
    std::vector<std::string> words;  ///< the operation's name, then its arguments
    std::string output;
    std::string format = "table";
    std::uint64_t seed = 0;  ///< 0: ids are random
    bool inPlace = false;
    bool help = false;
};

/// What one call left.
struct Outcome {
    int result = 0;
    qn::LoadFailure failure = qn::LoadFailure::kNone;  ///< of the call itself
    std::size_t firstMessage = 0;                      ///< of the context: those of the call itself
    std::string saved;                                 ///< the file that was written, or nothing
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly run validate_scene_hierarchy bracket.qn\n"
    "  assembly run generate_bs_ids bracket.stp generate_node_bs_id=true prefix_string=s1: suffix_string= "
    "-o out.qn\n"
    "  assembly run 12 bracket.qn --in-place              the same operation by its id\n"
    "  assembly run generate_bs_ids --help                what an operation does and wants\n\n"
    "Runs an operation that the module describes (assembly ops) on a file: loads it with its nodes, checks "
    "the\narguments, and saves the scene where -o or --in-place says so, if the operation answered 1.";

constexpr const char* kInvokeKey = "qn.graph.hierarchyoperation.invoke";
constexpr const char* kSceneEnding = ".qn";
constexpr int kDone = 1;

/// Some operations answer 1 though a file that they were to read is not there: the context knows.
bool IsDone(const Outcome& outcome) {
    return outcome.result == kDone && outcome.failure == qn::LoadFailure::kNone;
}

/// Where the scene goes; empty if it is not saved.
std::string TargetOf(const Options& options, const Operation& operation, const std::string& sceneFile) {
    if (!options.inPlace && options.output.empty()) return {};
    if (options.inPlace && !options.output.empty())
        throw Failure(ExitCode::kUsage, "run: -o and --in-place exclude each other");
    if (!operation.FindScene())
        throw Failure(ExitCode::kUsage, "run " + operation.name + ": works on no scene, so none is saved");
    const std::filesystem::path target = options.inPlace ? sceneFile : options.output;
    if (target.extension() != kSceneEnding)
        throw Failure(ExitCode::kUsage, target.string() + ": a scene file ends in " + kSceneEnding);
    std::error_code ignored;
    if (target.has_parent_path() && !std::filesystem::is_directory(target.parent_path(), ignored))
        throw Failure(ExitCode::kNotWritten, target.string() + ": its folder does not exist");
    return target.string();
}

qn::Counted<qn::Params> ParamsOf(const Operation& operation, const OperationArguments& arguments,
                                 qn::k3::Scene* scene) {
    auto params = qn::Params::Create();
    if (const OperationParameter* parameter = operation.FindScene())
        params->SetParamObject(parameter->id, scene);
    for (const auto& [id, value] : arguments.values)
        params->SetParamVar(id, value);
    return params;
}

int Invoke(const Operation& operation, qn::Params& params, qn::Context& context) {
    const auto object = qn::CreateAs<qn::Extension>(kInvokeKey);
    if (!object) throw Failure(ExitCode::kDefect, "the module's operations cannot be made");
    return object->Invoke(operation.id, &params, &context);
}

Outcome RunOperation(Session& session, const Options& options, const Operation& operation,
                     const OperationArguments& arguments) {
    const std::string target = TargetOf(options, operation, arguments.sceneFile);
    auto& context = static_cast<qn::ContextImpl&>(session.GetContext());
    if (options.seed != 0) qn::SeedGuids(options.seed);  // a repair while loading makes ids, too
    qn::Counted<qn::k3::Scene> scene;
    if (operation.FindScene()) {
        LoadRequest load;
        load.file = arguments.sceneFile;
        scene = session.Load(load);
        GenerateNodes(*scene, context);
    }
    Outcome outcome;
    outcome.firstMessage = context.GetMessages().size();
    const bool failedBefore = context.GetFailure() != qn::LoadFailure::kNone;
    outcome.result = Invoke(operation, *ParamsOf(operation, arguments, scene.Get()), context);
    if (context.IsCancelled()) throw Failure(ExitCode::kCancelled, "run " + operation.name + ": cancelled");
    if (!failedBefore) outcome.failure = context.GetFailure();
    if (!IsDone(outcome) || target.empty()) return outcome;
    SaveChanged(target, arguments.sceneFile, *scene, session);
    outcome.saved = target;
    return outcome;
}

void PrintMessages(const qn::ContextImpl& context, const Outcome& outcome) {
    for (std::size_t i = outcome.firstMessage; i < context.GetMessages().size(); ++i)
        std::fprintf(stderr, "assembly: %s\n", context.GetMessages()[i].text.Utf8CStr());
}

void WriteJson(Output& output, const Operation& operation, const Outcome& outcome,
               const qn::ContextImpl& context) {
    output.Write("{\"operation\": " + Quoted(operation.name) + ", \"id\": " + std::to_string(operation.id) +
                 ", \"result\": " + std::to_string(outcome.result) + ", \"saved\": " +
                 (outcome.saved.empty() ? "null" : Quoted(outcome.saved)) + ", \"messages\": [");
    const auto& messages = context.GetMessages();
    for (std::size_t i = outcome.firstMessage; i < messages.size(); ++i)
        output.Write((i == outcome.firstMessage ? "" : ", ") +
                     ("{\"level\": " + std::to_string(messages[i].level)) +
                     ", \"text\": " + Quoted(messages[i].text.ToUtf8()) + "}");
    output.Line("]}");
}

void WriteText(Output& output, const Operation& operation, const Outcome& outcome) {
    const bool unsaved = IsDone(outcome) && operation.FindScene() && outcome.saved.empty();
    output.Line(operation.name + ": " + std::to_string(outcome.result) +
                (outcome.saved.empty() ? "" : ", saved as " + outcome.saved) +
                (unsaved ? ", the scene was not saved" : ""));
}

ExitCode CodeOf(const Outcome& outcome) {
    if (outcome.failure != qn::LoadFailure::kNone) return tool::CodeOf(outcome.failure);
    return outcome.result < 0 ? ExitCode::kNotWritten : ExitCode::kFindings;
}

/// The exit code of what the operation answered and met, by way of a failure unless it is fine.
void CheckResult(const Operation& operation, const Outcome& outcome) {
    if (IsDone(outcome)) return;
    const bool failed = outcome.failure != qn::LoadFailure::kNone;
    throw Failure(CodeOf(outcome), operation.name + (failed ? " failed, its answer is " : " answered ") +
                                       std::to_string(outcome.result));
}

void RunNamed(const Options& options) {
    Session session;
    const OperationList list = DescribeOperations();
    const Operation& operation = FindOperation(list, options.words.front());
    Output output;
    if (options.help) return WriteOperationHelp(output, operation);
    const std::vector<std::string> words(options.words.begin() + 1, options.words.end());
    const Outcome outcome = RunOperation(session, options, operation, ReadArguments(operation, words));
    const auto& context = static_cast<const qn::ContextImpl&>(session.GetContext());
    PrintMessages(context, outcome);
    if (options.format == "json")
        WriteJson(output, operation, outcome, context);
    else
        WriteText(output, operation, outcome);
    output.Flush();
    CheckResult(operation, outcome);
}

}  // namespace

void AddRun(CLI::App& app) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("run", "Run one of the module's operations on a file");
    verb->description(kExamples);
    // Help is a flag like others: behind a name it is the operation's own.
    verb->set_help_flag();
    verb->add_flag("-h,--help", options->help, "Print this help, or that of an operation");
    verb->add_option("NAME", options->words, "Operation by name or id, then FILE and key=value ...");
    verb->add_option("-o,--output", options->output, "Scene file to write (.qn)");
    verb->add_flag("--in-place", options->inPlace, "Write the scene back to FILE (.qn)");
    verb->add_option("--seed", options->seed, "New ids come from this number, so that they repeat")
        ->check(CLI::Range(std::uint64_t{1}, std::numeric_limits<std::uint64_t>::max()))
        ->check(CLI::NonNegativeNumber);  // the range alone takes -1 for the largest number
    verb->add_option("--format", options->format, "table or json")->check(CLI::IsMember({"table", "json"}));
    verb->callback([options, verb] {
        if (options->words.empty() && !options->help) throw CLI::RequiredError("NAME");
        if (options->words.empty()) throw CLI::CallForHelp();
        RunNamed(*options);
    });
}

}  // namespace assembly::tool
