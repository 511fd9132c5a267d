#include "engine/stream/scene_file.h"

#include "engine/runtime/modules.h"
#include "engine/stream/file_io.h"
#include "engine/stream/object_file.h"

namespace qn {
namespace {

constexpr const char* kMemoryName = "memory";

/// Back to an empty scene, after part of the root's body went in.
void Empty(k3::Scene& scene) {
    while (k3::Node* child = scene.GetFirstChild())
        scene._RemoveChild(child, true);
    scene.SetLayers(nullptr);
    const auto viewports = scene.GetAllViewports();
    for (int i = viewports->GetCount(); i-- > 0;)
        scene.DeleteObject(viewports->Get(i), 0);
    scene.GetEntities()->Clear();
    scene.SetParams(nullptr);
    scene.SetMetadata(nullptr);
}

}  // namespace

std::string SaveSceneToBytes(k3::Scene& scene, Context& context, const SceneSaveOptions& options,
                             SaveReport* report) {
    return WriteObjects(scene, kMemoryName, context, options.expand, report);
}

bool SaveSceneFile(k3::Scene& scene, const String& path, Context& context, const SceneSaveOptions& options,
                   SaveReport* report) {
    const std::string bytes = WriteObjects(scene, path.ToUtf8(), context, options.expand, report);
    return !bytes.empty() && WriteFileSafely(path, bytes, context);
}

bool LoadSceneFromBytes(std::string_view bytes, const String& name, k3::Scene& into, Context& context,
                        LoadReport* report) {
    if (ReadObjects(bytes, name.ToUtf8(), context, &into, report)) return true;
    Empty(into);
    return false;
}

bool LoadSceneFile(const String& path, k3::Scene& into, Context& context, LoadReport* report) {
    std::string bytes;
    if (!ReadWholeFile(path, bytes, context) || !LoadSceneFromBytes(bytes, path, into, context, report))
        return false;
    if (context.GetOption(0, kUncheckedLoad, 0) == 0) RunPostLoadHooks(&into, false);
    return true;
}

}  // namespace qn
