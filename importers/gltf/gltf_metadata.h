#pragma once

#include "frame/host/collections.h"
#include "frame/host/var.h"
#include "importers/gltf/gltf_model.h"

namespace qn::gltf {

/// Metadata group for what a glTF file says besides its structure.
inline constexpr const wchar_t* kMetadataGroup = L"$QN.GLTF";

/// Keys inside the group. A key is there only if the file gives something for it.
namespace MetadataKey {
inline constexpr const wchar_t* kExtras = L"Extras";  ///< as the file has them
inline constexpr const wchar_t* kCamera = L"Camera";  ///< of viewports: a map
inline constexpr const wchar_t* kAsset = L"Asset";    ///< on the root, like all below: a map
inline constexpr const wchar_t* kExtensionsUsed = L"Extensions Used";
inline constexpr const wchar_t* kScene = L"Scene";    ///< number of the scene to show first
inline constexpr const wchar_t* kScenes = L"Scenes";  ///< array of maps: "Name", "Roots", "Extras"
inline constexpr const wchar_t* kName = L"Name";
inline constexpr const wchar_t* kRoots = L"Roots";  ///< array of places among the children of the root
}  // namespace MetadataKey

/// Text of the host.
inline String ToText(const Model& model, Text text) {
    return text.length ? String::FromUtf8(model.TextOf(text)) : String();
}

/// A map with the one group, or an empty value without extras.
Var MetadataOf(const Var& extras);
/// What a camera says.
Var MetadataOf(const Model& model, const Camera& camera);
/// What holds for the whole file, for the container around its roots.
Var FileMetadata(const Model& model);

}  // namespace qn::gltf
