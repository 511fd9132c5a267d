#include "engine/scene/merge_file.h"

#include "engine/runtime/byte_stream.h"
#include "engine/runtime/context_impl.h"
#include "engine/runtime/modules.h"
#include "engine/scene/scene_access.h"
#include "engine/stream/scene_file.h"

namespace qn {
namespace k3 {
namespace {

/// The top-level nodes that are no camera of a view: those stay what they are.
std::vector<Node*> ContentOf(Scene& file) {
    std::vector<Node*> content;
    for (Node* node = file.GetFirstChild(); node; node = node->GetNextSibling())
        if (!hack::IsModelViewOrStepViewCameraNode(node)) content.push_back(node);
    return content;
}

Node* MoveNodes(Scene& file, Scene& scene) {
    const std::vector<Node*> content = ContentOf(file);
    const Counted<Node> top = content.size() == 1 ? Counted<Node>(content.front()) : Make<Node>();
    if (!top) return nullptr;
    top->AttachTo(&scene);
    for (Node* node : content)
        if (node != top.Get()) node->AttachTo(top.Get());
    while (Node* camera = file.GetFirstChild())
        camera->AttachTo(&scene);
    return top.Get();
}

}  // namespace

Node* MergeSceneBytes(Scene& scene, std::string_view bytes, const String& name, Context& context) {
    const Counted<Scene> file = Make<Scene>();
    if (!file || !LoadSceneFromBytes(bytes, name, *file, context)) return nullptr;
    RunPostLoadHooks(file.Get(), true);
    scene.BeginUpdate();
    Node* top = MoveNodes(*file, scene);
    if (top) SceneAccess::MoveEntities(*file, scene);
    scene.EndUpdate();
    return top;
}

}  // namespace k3

k3::Node* FastMerge(k3::Scene* scene, Context* context, Stream* stream) {
    if (!scene || !stream) return nullptr;
    const Counted<Context> used = context ? Counted<Context>(context) : Counted<Context>(Make<ContextImpl>());
    return used ? k3::MergeSceneBytes(*scene, ReadToEnd(*stream), L"stream", *used) : nullptr;
}

}  // namespace qn
