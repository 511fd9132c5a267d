#include "frame/host/api.h"
#include "graph/node_content.h"
#include "tool/bom_table.h"
#include "tool/failure.h"
#include "tool/generate.h"
#include "tool/progress_option.h"
#include "tool/save_target.h"
#include "tool/show_json.h"
#include "tool/show_table.h"
#include "tool/verbs.h"

#include <algorithm>
#include <cstdio>
#include <cwctype>
#include <memory>
#include <utility>

namespace assembly::tool {
namespace {

using qn::k3::Bom;
using qn::k3::Scene;

struct Options {
    LoadRequest load;
    SaveTarget target;
    ShowOptions show;
    std::string name;
    bool empty = false;
    std::string format = "table";
    ProgressStyle progress = ProgressStyle::kAuto;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly bom list car.qn                                  the structures of a file\n"
    "  assembly bom create design car.stp -o car.qn              what the file shows becomes a structure\n"
    "  assembly bom create service car.qn --in-place             a second one, with copies of all nodes\n"
    "  assembly bom create spares --empty car.qn --in-place      a further one, with nothing in it\n"
    "  assembly bom activate service car.qn -o service.qn        shows that structure\n"
    "  assembly bom show service car.qn                          prints its occurrence tree\n\n"
    "Lists, adds and switches the top-level structures of a scene, one of which is shown. Structures go by "
    "name, or by "
    "number\n"
    "(\"#2\" is the second). All other verbs look at the structure that is shown.";

constexpr const char* kListExamples =
    "Examples:\n"
    "  assembly bom list car.qn                    \"*\" stands in front of the structure that is shown\n"
    "  assembly bom list --format json car.qn      the same for scripts\n\n"
    "Lists the structures of a file.";
constexpr const char* kCreateExamples =
    "Examples:\n"
    "  assembly bom create design car.stp -o car.qn\n"
    "  assembly bom create service car.qn --in-place\n"
    "  assembly bom create spares --empty car.qn --in-place\n\n"
    "Adds a structure to a file. The first one takes over what the file shows. A further one gets copies of "
    "it, each "
    "tied "
    "to its\n"
    "original by a link. With --empty it gets nothing; if it is the first, all that is shown is removed. A "
    "name is\n"
    "not blank, not taken, and no number as \"#2\".";
constexpr const char* kActivateExamples =
    "Examples:\n"
    "  assembly bom activate service car.qn -o service.qn\n"
    "  assembly bom activate \"#1\" car.qn --in-place\n\n"
    "Makes a structure the one that the scene shows. What was shown is kept.";
constexpr const char* kShowExamples =
    "Examples:\n"
    "  assembly bom show car.qn                    the structure that is shown\n"
    "  assembly bom show service car.qn            another one\n"
    "  assembly bom show --depth 2 service car.qn\n\n"
    "Prints the occurrence tree of a structure as \"assembly show\" does.";

void WriteList(const Options& options, Scene& scene) {
    Output output;
    const std::vector<BomRow> boms = BomsOf(scene);
    options.format == "json" ? WriteBomJson(output, boms) : WriteBomTable(output, boms);
    output.Flush();
    if (boms.empty())
        std::fprintf(stderr, "assembly: %s: the file has no structures\n", options.load.file.c_str());
}

/// Fails unless the file to write is named and may be written.
std::string TargetOf(const Options& options) {
    std::string path = PathOf(options.target, options.load.file);
    if (path.empty()) throw Failure(ExitCode::kUsage, "bom: say where to: -o FILE or --in-place");
    return path;
}

void ExpectDone(qn::ResultEnum result, const Options& options, const char* what) {
    if (qn::Succeeded(result)) return;
    throw Failure(ExitCode::kUnreadable, options.load.file + ": the structure could not be " + what +
                                             ": result " + std::to_string(ToInt(result)));
}

void List(const Options& options) {
    Session session(options.progress);
    WriteList(options, *session.Load(options.load));
}

/// Removing all that is shown is refused in place, and said aloud otherwise.
void CheckFirstEmpty(const Options& options, const Scene& scene) {
    if (!scene.GetFirstChild()) return;
    const std::string text =
        options.load.file + ": the first structure of a file removes all that is shown if it is empty";
    if (options.target.inPlace)
        throw Failure(ExitCode::kUsage, text + "; create one without --empty first, or write to -o FILE");
    std::fprintf(stderr, "assembly: %s\n", text.c_str());
}

/// Whether `FindBom` could take it for the number of a structure: "#" and digits.
bool LooksLikeNumber(const std::string& name) {
    return name.size() > 1 && name[0] == '#' && name.find_first_not_of("0123456789", 1) == std::string::npos;
}

bool IsBlank(const qn::String& name) {
    const std::wstring_view text = name.View();
    return std::all_of(text.begin(), text.end(),
                       [](wchar_t letter) { return std::iswspace(static_cast<std::wint_t>(letter)) != 0; });
}

void CheckName(const std::string& name) {
    const auto text = qn::String::FromUtf8(name);
    if (text.ToUtf8() != name)
        throw Failure(ExitCode::kUsage, "bom create: the name \"" + Printable(name) + "\" is no UTF-8 text");
    if (IsBlank(text))
        throw Failure(ExitCode::kUsage, "bom create: a structure needs a name that is not blank");
    if (LooksLikeNumber(name))
        throw Failure(ExitCode::kUsage, "bom create: \"" + name +
                                            "\" stands for a structure by its number and cannot be a name");
}

void ExpectNewName(const Options& options, const std::vector<BomRow>& boms) {
    for (const BomRow& row : boms)
        if (row.name == options.name)
            throw Failure(ExitCode::kUsage,
                          options.load.file + ": a structure is called \"" + options.name + "\" already");
}

/// The local id of an instance that no definition lists is not stored. Without it in memory, too, the file
/// stays the same when it is loaded and saved again.
void ForgetUnstoredIds(const Bom& bom) {
    const qn::Var nodes = bom.GetNodes();
    for (int i = 0; i < nodes.size(); ++i) {
        const auto* node = qn::Cast<qn::k3::Node>(nodes.ValueAt(i).ToInterface());
        auto* instance = node ? qn::graph::CarriedInstance(*node) : nullptr;
        if (instance && !instance->GetParentReference())
            instance->SetProperty(qn::graph::Prop::kLocalId, qn::Var());
    }
}

void Create(const Options& options) {
    CheckName(options.name);
    const std::string path = TargetOf(options);
    Session session(options.progress);
    const auto scene = session.Load(options.load);
    const std::vector<BomRow> boms = BomsOf(*scene);
    ExpectNewName(options, boms);
    if (boms.empty() && options.empty) CheckFirstEmpty(options, *scene);
    if (!boms.empty() && !options.empty) GenerateNodes(*scene, session.GetContext());
    const auto bom = qn::CreateAs<Bom>(qn::k3::kBomKey);
    if (!bom) throw Failure(ExitCode::kDefect, "the module makes no structures");
    bom->SetScene(scene.Get());
    ExpectDone(bom->Initialize(qn::Var(qn::String::FromUtf8(options.name)), options.empty), options, "made");
    ForgetUnstoredIds(*bom);
    SaveChanged(path, options.load.file, *scene, session);
    WriteList(options, *scene);
}

void Activate(const Options& options) {
    const std::string path = TargetOf(options);
    Session session(options.progress);
    const auto scene = session.Load(options.load);
    ExpectDone(FindBom(BomsOf(*scene), options.name, options.load.file).Activate(), options, "activated");
    SaveChanged(path, options.load.file, *scene, session);
    WriteList(options, *scene);
}

/// Shows it in memory; the file stays as it is. A single word is the file.
void Show(Options options) {
    if (options.load.file.empty()) std::swap(options.load.file, options.name);
    if (options.load.file.empty()) throw CLI::RequiredError("FILE");
    Session session(options.progress);
    const auto scene = session.Load(options.load);
    if (!options.name.empty())
        ExpectDone(FindBom(BomsOf(*scene), options.name, options.load.file).Activate(), options, "shown");
    const Structure structure = ReadStructure(*scene, session.GetContext());
    Output output;
    if (options.format == "json")
        WriteShowJson(output, structure, options.show);
    else if (options.show.definitions)
        WriteDefinitionTable(output, structure, options.show);
    else
        WriteOccurrenceTree(output, structure, options.show);
}

CLI::App* AddVerb(CLI::App& bom, const char* name, const char* meaning, const char* examples,
                  const std::shared_ptr<Options>& options) {
    CLI::App* verb = bom.add_subcommand(name, meaning);
    verb->description(examples);
    verb->add_option("--format", options->format, "table or json")->check(CLI::IsMember({"table", "json"}));
    AddProgressOption(*verb, options->progress);
    return verb;
}

void AddList(CLI::App& bom) {
    auto options = std::make_shared<Options>();
    options->load.structureOnly = options->load.graphOnly = true;
    CLI::App* verb = AddVerb(bom, "list", "List the structures of a file", kListExamples, options);
    verb->add_option("FILE", options->load.file, "Scene file")->required();
    verb->callback([options] { List(*options); });
}

void AddCreate(CLI::App& bom) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = AddVerb(bom, "create", "Add a structure to a file", kCreateExamples, options);
    verb->add_option("NAME", options->name, "Name of the new structure")->required();
    verb->add_option("FILE", options->load.file, "STEP, glTF or scene file")->required();
    verb->add_flag("--empty", options->empty, "Put nothing into it");
    AddSaveOptions(*verb, options->target);
    verb->callback([options] { Create(*options); });
}

void AddActivate(CLI::App& bom) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = AddVerb(bom, "activate", "Show another structure", kActivateExamples, options);
    verb->add_option("NAME", options->name, "Name or number of the structure")->required();
    verb->add_option("FILE", options->load.file, "Scene file")->required();
    AddSaveOptions(*verb, options->target);
    verb->callback([options] { Activate(*options); });
}

void AddShowBom(CLI::App& bom) {
    auto options = std::make_shared<Options>();
    options->load.structureOnly = options->load.graphOnly = true;
    CLI::App* verb = AddVerb(bom, "show", "Print the occurrence tree of a structure", kShowExamples, options);
    verb->add_option("NAME", options->name, "Name or number of the structure (the one that is shown)");
    verb->add_option("FILE", options->load.file, "STEP, glTF or scene file");
    verb->add_option("--depth", options->show.depth, "Levels of the tree to print (1: the roots alone)")
        ->check(CLI::Range(1u, OccurrenceWalk::kAllLevels));
    verb->add_flag("--definitions", options->show.definitions, "List the definitions in place of the tree");
    verb->add_flag("--ids", options->show.ids, "Print ids, too");
    verb->callback([options] { Show(*options); });
}

}  // namespace

void AddBom(CLI::App& app) {
    CLI::App* bom = app.add_subcommand("bom", "List, create, activate and show structures of a file");
    bom->description(kExamples);
    bom->require_subcommand(1);
    AddList(*bom);
    AddCreate(*bom);
    AddActivate(*bom);
    AddShowBom(*bom);
}

}  // namespace assembly::tool
