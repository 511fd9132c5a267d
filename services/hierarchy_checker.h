#pragma once

#include "frame/host/extension.h"

namespace qn {

class Context;

namespace k3 {
class Scene;
}

namespace graph {

/// Decides whether the tie between a scene tree and its hierarchy is intact, and repairs what it can. All
/// results are true when nothing was wrong; the log may be null. Class key "qn.graph.hierarchychecker".
class HierarchyChecker : public Extension {
public:
    virtual bool ValidateHierarchy(k3::Scene* scene, Context* log) = 0;
    virtual bool ValidateLayers(k3::Scene* scene, Context* log) = 0;
    virtual bool RepairHierarchy(k3::Scene* scene, Context* log) = 0;
    virtual void RepairLayers(k3::Scene* scene, Context* log) = 0;
    virtual bool RepairTopLevelNodes(k3::Scene* scene, Context* log) = 0;
    virtual bool RepairLayersAndViewports(k3::Scene* scene, Context* log) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyChecker");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<HierarchyChecker, Extension>(this, wanted);
    }
};

}  // namespace graph
}  // namespace qn
