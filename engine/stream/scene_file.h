#pragma once

#include "engine/stream/load_report.h"
#include "frame/host/context.h"
#include "frame/host/scene_document.h"

#include <string>
#include <string_view>

namespace qn {

/// Option of a load: the modules do not hear of the scene, so that it comes as it is stored.
inline constexpr const char* kUncheckedLoad = "unchecked_load";

struct SceneSaveOptions {
    /// Stores the nodes that generators made, too. Without it they are stored only where they carry more than
    /// what they are generated from.
    bool expand = false;
};

/// Writes the scene to a file. False with the cause in the context; the old file is then as it was.
bool SaveSceneFile(k3::Scene& scene, const String& path, Context& context,
                   const SceneSaveOptions& options = {}, SaveReport* report = nullptr);
/// Reads a scene file into an empty scene and lets the modules check and repair it, unless the context has
/// `kUncheckedLoad`. After a failure the scene is empty again, and the cause is in the context.
bool LoadSceneFile(const String& path, k3::Scene& into, Context& context, LoadReport* report = nullptr);

/// The same in memory; empty after a failure.
std::string SaveSceneToBytes(k3::Scene& scene, Context& context, const SceneSaveOptions& options = {},
                             SaveReport* report = nullptr);
/// The same from memory, but the modules do not hear of it. `name` stands in front of messages.
bool LoadSceneFromBytes(std::string_view bytes, const String& name, k3::Scene& into, Context& context,
                        LoadReport* report = nullptr);

}  // namespace qn
