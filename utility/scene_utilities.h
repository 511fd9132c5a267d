#pragma once

#include "frame/host/extension.h"

namespace qn {

namespace k3 {
class Node;
}

namespace utility {

inline constexpr const char* kSceneUtilitiesKey = "qn.utility.sceneutilities";

/// Small questions about a whole scene. Class key "qn.utility.sceneutilities".
class SceneUtilities : public Extension {
public:
    /// Whether the node or one below it is a mark of people who work together. False for null.
    virtual bool ContainsCollaborationObjects(k3::Node* node) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::utility::SceneUtilities");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<SceneUtilities, Extension>(this, wanted);
    }
};

}  // namespace utility
}  // namespace qn
