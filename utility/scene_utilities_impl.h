#pragma once

#include "utility/scene_utilities.h"

namespace qn::utility {

/// The class behind "qn.utility.sceneutilities".
class SceneUtilitiesImpl final : public SceneUtilities {
public:
    /// Visits parents first, siblings in order, and nothing after the first find.
    bool ContainsCollaborationObjects(k3::Node* node) override;

    /// kWrongClass unless the source answers such questions, too; there is nothing to copy.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return kSceneUtilitiesKey; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::utility::SceneUtilitiesImpl");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<SceneUtilitiesImpl, SceneUtilities>(this, wanted);
    }
};

}  // namespace qn::utility
