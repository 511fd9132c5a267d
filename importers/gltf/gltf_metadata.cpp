#include "importers/gltf/gltf_metadata.h"

#include "frame/host/importer.h"

#include <unordered_map>

namespace qn::gltf {
namespace {

Var Wrap(const wchar_t* key, const Var& value) {
    Var metadata;
    metadata.At(kMetadataGroup).At(key) = value;
    return metadata;
}

Var Texts(const std::vector<std::string>& texts) {
    const auto array = VarArray::Create();
    for (const std::string& text : texts)
        array->Add(Var(String::FromUtf8(text)));
    return Var(array);
}

/// The scenes of a file, each with the places of its roots among all roots.
Var Scenes(const Model& model) {
    std::unordered_map<std::uint32_t, int> places;
    for (std::size_t i = 0; i < model.roots.size(); ++i)
        places.emplace(model.roots[i], static_cast<int>(i));
    const auto scenes = VarArray::Create();
    for (const SceneList& scene : model.scenes) {
        const auto roots = VarArray::Create();
        for (const std::uint32_t node : scene.nodes)
            roots->Add(Var(places.at(node)));
        Var entry;
        if (scene.name.length) entry.At(MetadataKey::kName) = Var(ToText(model, scene.name));
        entry.At(MetadataKey::kRoots) = Var(roots);
        if (const Var extras = model.ExtrasAt(scene.extras); extras.IsSet())
            entry.At(MetadataKey::kExtras) = extras;
        scenes->Add(entry);
    }
    return Var(scenes);
}

/// A lone scene that has all roots and says no more needs no mention.
bool NeedsScenes(const Model& model) {
    if (model.scenes.size() != 1) return !model.scenes.empty();
    const SceneList& scene = model.scenes.front();
    return scene.name.length > 0 || scene.extras != kNone || scene.nodes.size() != model.roots.size();
}

}  // namespace

Var MetadataOf(const Var& extras) {
    return extras.IsSet() ? Wrap(MetadataKey::kExtras, extras) : Var();
}

Var MetadataOf(const Model& model, const Camera& camera) {
    Var values;
    const auto set = [&](const wchar_t* key, double value) {
        if (value > 0) values.At(key) = Var(value);
    };
    values.At(L"Type") = Var(camera.isPerspective ? L"perspective" : L"orthographic");
    set(L"Y Field Of View", camera.yFov);
    set(L"Aspect Ratio", camera.aspect);
    set(L"X Magnification", camera.xMag);
    set(L"Y Magnification", camera.yMag);
    set(L"Near", camera.zNear);
    set(L"Far", camera.zFar);
    Var metadata = Wrap(MetadataKey::kCamera, values);
    if (const Var extras = model.ExtrasAt(camera.extras); extras.IsSet())
        metadata.At(kMetadataGroup).At(MetadataKey::kExtras) = extras;
    return metadata;
}

Var FileMetadata(const Model& model) {
    Var metadata;
    Var& file = metadata.At(kFileGroup);
    file.At(kFileContainer) = Var(true);
    file.At(kFileUpAxis) = Var(kFileUpAxisY);
    Var& group = metadata.At(kMetadataGroup);
    group.At(MetadataKey::kAsset) = model.asset;
    if (!model.extensionsUsed.empty()) group.At(MetadataKey::kExtensionsUsed) = Texts(model.extensionsUsed);
    if (model.documentExtras.IsSet()) group.At(MetadataKey::kExtras) = model.documentExtras;
    if (NeedsScenes(model)) group.At(MetadataKey::kScenes) = Scenes(model);
    if (model.scene != kNone && model.scenes.size() > 1)
        group.At(MetadataKey::kScene) = Var(static_cast<int>(model.scene));
    return metadata;
}

}  // namespace qn::gltf
