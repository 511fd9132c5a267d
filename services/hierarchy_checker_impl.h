#pragma once

#include "graph/graph.h"
#include "services/hierarchy_checker.h"

namespace qn::graph {

/// The class behind "qn.graph.hierarchychecker". Keeps nothing between calls; a null scene is sound.
class HierarchyCheckerImpl final : public HierarchyChecker {
public:
    /// Stops at the first top-level node that is broken.
    bool ValidateHierarchy(k3::Scene* scene, Context* log) override;
    /// The answer is that of the last layer looked at: sound layers of views make up for broken ones of the
    /// scene. True without a log, unseen.
    bool ValidateLayers(k3::Scene* scene, Context* log) override;
    bool RepairHierarchy(k3::Scene* scene, Context* log) override;
    /// The scene's own layers, not those of views. Nothing happens without a log.
    void RepairLayers(k3::Scene* scene, Context* log) override;
    /// Cuts the hierarchy off every broken top-level node; what was broken stays as plain nodes.
    bool RepairTopLevelNodes(k3::Scene* scene, Context* log) override;
    /// True, with nothing removed, without a log.
    bool RepairLayersAndViewports(k3::Scene* scene, Context* log) override;

    /// kWrongClass unless the source is a validator; there is nothing to copy.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kHierarchyChecker; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyCheckerImpl");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<HierarchyCheckerImpl, HierarchyChecker>(this, wanted);
    }
};

}  // namespace qn::graph
