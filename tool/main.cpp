#include "tool/failure.h"
#include "tool/help.h"
#include "tool/terminal.h"
#include "tool/verbs.h"
#include "tool/version.h"

#include <locale.h>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>

namespace {

using assembly::tool::ExitCode;

/// What is wrong with the words of the call, and where help is.
std::string UsageMessage(const CLI::App* app, const CLI::Error& error) {
    std::string verb;
    for (const CLI::App* chosen : app->get_subcommands())
        verb = " " + chosen->get_name();
    return "assembly:" + (verb.empty() ? "" : verb + ":") + " " + error.what() + "\nTry: assembly" + verb +
           " --help\n";
}

/// CLI11 answers help and version with 0 and everything else with codes of its own.
int Answer(const CLI::App& app, const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? ToInt(ExitCode::kFine) : ToInt(ExitCode::kUsage);
}

int Report(ExitCode code, const char* text) {
    std::fflush(stdout);
    std::fprintf(stderr, "assembly: %s\n", text);
    return ToInt(code);
}

/// Findings and success mean little to someone who did not get them.
int WithOutput(int code) {
    const int error = assembly::tool::OutputError();
    if (error == 0 || code > ToInt(ExitCode::kFindings)) return code;
    return Report(ExitCode::kNotWritten,
                  (std::string("the output could not be written: ") + std::strerror(error)).c_str());
}

int Run(CLI::App& app, int argc, char** argv) {
    try {
        app.parse(argc, argv);
        return ToInt(ExitCode::kFine);
    } catch (const CLI::ParseError& error) {
        return Answer(app, error);
    } catch (const assembly::tool::Failure& failure) {
        return Report(failure.Code(), failure.what());
    } catch (const std::exception& error) {
        return Report(ExitCode::kDefect, error.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    ::setlocale(LC_CTYPE, "C.UTF-8");  // letters alone: how wide they are on a terminal
    CLI::App app("Reads CAD assemblies as definitions, uses and occurrences.", "assembly");
    app.set_version_flag("--version", assembly::tool::kVersion);
    app.require_subcommand(1);
    app.failure_message(&UsageMessage);
    app.footer(
        "\nassembly VERB --help shows examples of each verb.\n"
        "Exit codes: 0 fine, 1 findings, 2 usage, 3 input unreadable, 4 output not written, 5 a file is "
        "missing,\n"
        "6 conflicts, 7 a limit was exceeded, 8 cancelled, 70 a defect of this program.");
    assembly::tool::AddShow(app);
    assembly::tool::AddStats(app);
    assembly::tool::AddConvert(app);
    assembly::tool::AddCheck(app);
    assembly::tool::AddRepair(app);
    assembly::tool::AddDeps(app);
    assembly::tool::AddParts(app);
    assembly::tool::AddBom(app);
    assembly::tool::AddEffectivity(app);
    assembly::tool::AddOps(app);
    assembly::tool::AddRun(app);
    assembly::tool::AddModule(app);
    assembly::tool::AddLimits(app);
    const auto help = std::make_shared<assembly::tool::HelpFormatter>();
    app.formatter(help);
    for (CLI::App* verb : app.get_subcommands({}))
        if (!verb->get_subcommands({}).empty()) verb->formatter(help);
    return WithOutput(Run(app, argc, argv));
}
