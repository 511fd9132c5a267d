#include "utility/scene_utilities_impl.h"

#include "frame/host/collaboration.h"
#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "graph/node_walk.h"

namespace qn::utility {
namespace {

constexpr const wchar_t* kMarkKeys[] = {L"QN.Collaboration.OBJECT", L"$QN.Collaboration.OBJECT"};

bool ShowsCollaborationObject(const k3::Node& node) {
    k3::Object3D* const object = node.GetObject();
    return Cast<collaboration::CollaborationSprite>(object) || Cast<collaboration::CollaborationMesh>(object);
}

/// The first key with a true value decides, also against the object.
bool IsCollaborationNode(const k3::Node& node) {
    const Var metadata(node.GetMetadata(false), 1);
    if (metadata.ToBool()) {
        for (const wchar_t* const key : kMarkKeys) {
            const Var* const mark = metadata.Lookup(key);
            if (mark && mark->ToBool()) return mark->IsMap();
        }
    }
    return ShowsCollaborationObject(node);
}

}  // namespace

bool SceneUtilitiesImpl::ContainsCollaborationObjects(k3::Node* node) {
    for (k3::Node* visited = node; visited; visited = graph::NextInSubtree(visited, *node))
        if (IsCollaborationNode(*visited)) return true;
    return false;
}

ResultEnum SceneUtilitiesImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* const utilities = Cast<SceneUtilities>(source);
    return utilities ? CloneFrom(*utilities, flags) : ResultEnum::kWrongClass;
}

bool SceneUtilitiesImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, kSceneUtilitiesKey) || SceneUtilities::IsTypeOf(name);
}

}  // namespace qn::utility
