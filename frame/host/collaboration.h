#pragma once

#include "frame/host/object3d.h"

namespace qn::collaboration {

/// A flat mark that people who work together leave in a scene. Class key "qn.collaboration.sprite".
class CollaborationSprite final : public k3::Object3D {
public:
    const char* GetInterfaceName() const override { return "qn.collaboration.sprite"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

/// A solid mark of the same kind. Class key "qn.collaboration.mesh".
class CollaborationMesh final : public k3::Object3D {
public:
    const char* GetInterfaceName() const override { return "qn.collaboration.mesh"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn::collaboration
