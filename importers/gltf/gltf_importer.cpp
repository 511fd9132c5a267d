#include "importers/gltf/gltf_importer.h"

#include "frame/host/context.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene.h"
#include "importers/gltf/camera_views.h"
#include "importers/gltf/gltf_document.h"
#include "importers/gltf/gltf_error.h"
#include "importers/gltf/graph_builder.h"
#include "importers/gltf/mesh_reader.h"

namespace qn::gltf {
namespace {

constexpr int kWarningLevel = 2;
constexpr double kTextShare = 0.3, kStructureShare = 0.6;  // of the progress

bool IsStructureOnly(const Context& context) {
    const Var options = context.GetParamVar(qn::Param::kLoadOptions);
    const Var* value = options.IsMap() ? options.Lookup(LoadOption::kStructureOnly) : nullptr;
    return value && value->ToBool();
}

/// One file on its way into the scene.
class ImportRun {
public:
    ImportRun(const String& file, k3::Scene& scene, k3::Node& top, Context& context)
        : file_(file), path_(file.ToUtf8()), scene_(scene), top_(top), context_(context) {}

    /// False if the user stopped it. Throws GltfError.
    bool Run() {
        if (!context_.ReportProgress(0)) return false;
        const auto source = OpenFile(path_);
        const Document document = ReadDocument(*source);
        if (!context_.ReportProgress(kTextShare)) return false;
        BufferStore store(document.model, *source, document.container, path_.parent_path());
        const bool structureOnly = IsStructureOnly(context_);
        GraphBuilder builder(document.model, store, context_, structureOnly);
        if (!builder.Build(top_.GetName())) return false;
        Warn(builder.GetWarning());
        if (!context_.ReportProgress(kStructureShare)) return false;
        if (!structureOnly && !AddMeshes(document.model, store, builder)) return false;
        builder.AttachTo(top_);
        AddCameraViews(document.model, builder, scene_);
        context_.ReportProgress(1);
        return true;
    }

private:
    bool AddMeshes(const Model& model, BufferStore& store, const GraphBuilder& builder) {
        MeshReader reader(model, store, builder.GetScale());
        std::vector<Counted<k3::Mesh>> meshes(model.meshes.size());
        std::vector<bool> isRead(model.meshes.size());
        const auto& shown = builder.GetShown();
        for (std::size_t i = 0; i < shown.size(); ++i) {
            const std::uint32_t mesh = shown[i].mesh;
            if (!isRead[mesh]) meshes[mesh] = reader.Read(mesh);
            isRead[mesh] = true;
            if (meshes[mesh]) shown[i].definition->SetTarget(Var(meshes[mesh]));
            const double share = static_cast<double>(i + 1) / static_cast<double>(shown.size());
            if (!context_.ReportProgress(kStructureShare + (1 - kStructureShare) * share)) return false;
        }
        if (const std::size_t skipped = reader.GetSkippedCount())
            Warn(std::to_string(skipped) + " primitives are points or lines and were left out");
        return true;
    }

    void Warn(const std::string& text) {
        if (!text.empty())
            context_.ReportMessage(MessageInfo(kWarningLevel), file_ + L": " + String::FromUtf8(text));
    }

    String file_;
    std::filesystem::path path_;
    k3::Scene& scene_;
    k3::Node& top_;
    Context& context_;
};

}  // namespace

ResultEnum GltfImporter::Import(const String& file, k3::Scene* scene, k3::Node* top, Context* context) {
    if (!scene || !top || !context) return ResultEnum::kNothing;
    try {
        return ImportRun(file, *scene, *top, *context).Run() ? ResultEnum::kSuccess : ResultEnum::kNothing;
    } catch (const GltfError& error) {
        context->Fail(error.Kind(), file + L": " + String::FromUtf8(error.what()));
        return ResultEnum::kNothing;
    }
}

}  // namespace qn::gltf
