#include "tool/save_target.h"

#include "tool/failure.h"
#include "tool/kept_names.h"

#include <filesystem>

namespace assembly::tool {
namespace {

constexpr const char* kSceneEnding = ".qn";

}  // namespace

void AddSaveOptions(CLI::App& verb, SaveTarget& target) {
    CLI::Option* const output = verb.add_option("-o,--output", target.output, "Scene file to write (.qn)");
    verb.add_flag("--in-place", target.inPlace, "Write the scene back to FILE (.qn)")->excludes(output);
}

std::string PathOf(const SaveTarget& target, const std::string& input) {
    const std::filesystem::path path = target.inPlace ? input : target.output;
    if (path.empty()) return {};
    if (path.extension() != kSceneEnding)
        throw Failure(ExitCode::kUsage, path.string() + ": a scene file ends in " + kSceneEnding);
    std::error_code ignored;
    if (path.has_parent_path() && !std::filesystem::is_directory(path.parent_path(), ignored))
        throw Failure(ExitCode::kNotWritten, path.string() + ": its folder does not exist");
    return path.string();
}

void SaveChanged(const std::string& path, const std::string& input, qn::k3::Scene& scene, Session& session) {
    MoveNames(KeptNamesOf(scene, input), path);
    SaveTo(path, scene, session);
}

void SaveTo(const std::string& path, qn::k3::Scene& scene, Session& session,
            const qn::SceneSaveOptions& options) {
    qn::Context& context = session.GetContext();
    if (qn::SaveSceneFile(scene, qn::String::FromUtf8(path), context, options)) return;
    throw Failure(CodeOfSave(context.GetFailure()), session.FailureText(path, "could not be written"));
}

}  // namespace assembly::tool
