#include "importers/step/step_importer.h"

#include "frame/host/context.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene.h"
#include "importers/step/step_geometry.h"
#include "importers/step/step_graph_builder.h"
#include "importers/step/step_metadata.h"
#include "importers/step/step_structure.h"

#include <algorithm>

namespace qn::step {
namespace {

constexpr int kWarningLevel = 2;
/// So many warnings of a file are told one by one; the rest is counted.
constexpr std::size_t kMostWarnings = 20;
/// Share of the progress that the structure takes if geometry follows.
constexpr double kStructureShare = 0.1;

struct Options {
    bool structureOnly = false;
    Tessellation tessellation;
};

Options OptionsOf(const Context& context) {
    Options options;
    const Var map = context.GetParamVar(qn::Param::kLoadOptions);
    if (!map.IsMap()) return options;
    if (const Var* value = map.Lookup(LoadOption::kStructureOnly)) options.structureOnly = value->ToBool();
    if (const Var* value = map.Lookup(LoadOption::kTolerance)) value->copy_to(options.tessellation.tolerance);
    double angle = 0;
    if (const Var* value = map.Lookup(LoadOption::kAngle); value && value->copy_to(angle) && angle > 0)
        options.tessellation.angle = angle;
    return options;
}

LoadFailure FailureOf(Cause cause) {
    switch (cause) {
        case Cause::kUnreadable:
            return LoadFailure::kUnreadable;
        case Cause::kMemory:
        case Cause::kLimit:
            return LoadFailure::kLimit;
        case Cause::kDefect:
            return LoadFailure::kDefect;
        case Cause::kNone:
        case Cause::kCancelled:
        case Cause::kMalformed:
            break;
    }
    return LoadFailure::kMalformed;
}

void Warn(Context& context, const String& file, const std::vector<std::string>& warnings) {
    const std::size_t shown = std::min(warnings.size(), kMostWarnings);
    for (std::size_t i = 0; i < shown; ++i)
        context.ReportMessage(MessageInfo(kWarningLevel), file + L": " + ToText(warnings[i]));
    if (shown == warnings.size()) return;
    const std::string rest = std::to_string(warnings.size() - shown) + " more warnings";
    context.ReportMessage(MessageInfo(kWarningLevel), file + L": " + ToText(rest));
}

/// One file on its way into the scene.
class ImportRun {
public:
    ImportRun(const String& file, k3::Node& top, Context& context)
        : file_(file), path_(file.ToUtf8()), top_(top), context_(context), options_(OptionsOf(context)) {}

    ResultEnum Run() {
        StructureResult read = ReadStructure(path_, [&] { return context_.ReportProgress(0); });
        if (read.cause == Cause::kCancelled) return ResultEnum::kNothing;
        if (!read.Ok()) return Fail(FailureOf(read.cause), read.error);
        Warn(context_, file_, read.model.warnings);
        if (!context_.ReportProgress(options_.structureOnly ? 0.5 : kStructureShare))
            return ResultEnum::kNothing;
        if (options_.structureOnly) read.file.reset();
        GraphBuilder builder(read.model);
        if (!builder.Build(top_.GetName()))
            return Fail(LoadFailure::kDefect, path_.string() + ": the classes of the graph cannot be made");
        if (!options_.structureOnly && !AddGeometry(read, builder)) return ResultEnum::kNothing;
        if (!builder.AttachTo(top_))
            return Fail(LoadFailure::kDefect, path_.string() + ": the hierarchy generator cannot be made");
        context_.ReportProgress(1);
        return ResultEnum::kSuccess;
    }

private:
    ResultEnum Fail(LoadFailure kind, const std::string& text) {
        context_.Fail(kind, ToText(text));
        return ResultEnum::kNothing;
    }

    bool AddGeometry(const StructureResult& read, GraphBuilder& builder) {
        const auto take = [&](std::size_t definition, MeshData mesh) {
            builder.SetMesh(definition, std::move(mesh));
        };
        const auto progress = [&](double fraction) {
            return context_.ReportProgress(kStructureShare + (1 - kStructureShare) * fraction);
        };
        const GeometryResult result = ReadGeometry(read, options_.tessellation, take, progress);
        Warn(context_, file_, result.warnings);
        if (!result.error.empty()) Fail(FailureOf(result.cause), result.error);
        return result.Ok();
    }

    String file_;
    std::filesystem::path path_;
    k3::Node& top_;
    Context& context_;
    Options options_;
};

}  // namespace

ResultEnum StepImporter::Import(const String& file, k3::Scene*, k3::Node* top, Context* context) {
    if (!top || !context) return ResultEnum::kNothing;
    return ImportRun(file, *top, *context).Run();
}

}  // namespace qn::step
