#pragma once

#include "engine/scene/member_list.h"
#include "engine/scene/undo_recorder.h"
#include "frame/host/scene_document.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace qn::k3 {

struct Scene::Data {
    Counted<InterfaceArray> layers;     // made when first asked for
    Counted<InterfaceArray> viewports;  // null until the first one
    Counted<InterfaceArray> entities;   // made when first asked for
    std::unique_ptr<MemberList> selection;
    std::unique_ptr<SceneUndo> undo;
    float time = 0.0f;

    int updateDepth = 0;
    bool changeHeldBack = false;
    unsigned changeEvents = 0;
    std::vector<Weak<ReferenceTarget>> observers;

    Weak<Node> currentNode;
    std::vector<HostCallRecord> hostCalls;
    std::vector<NodeNotice> notices;
    std::unordered_set<const Node*> pointedInto;  // nodes with something below them that others point at
};

}  // namespace qn::k3
