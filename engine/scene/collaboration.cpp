#include "frame/host/collaboration.h"

namespace qn::collaboration {

bool CollaborationSprite::IsTypeOf(const char* name) const {
    return EqualKeys(name, "qn.collaboration.sprite") || Object3D::IsTypeOf(name);
}

const ClassRecord& CollaborationSprite::StaticClass() {
    static const ClassRecord& record = InternClass("qn::collaboration::CollaborationSprite");
    return record;
}

void* CollaborationSprite::CastTo(const ClassRecord& wanted) {
    return CastThrough<CollaborationSprite, Object3D>(this, wanted);
}

bool CollaborationMesh::IsTypeOf(const char* name) const {
    return EqualKeys(name, "qn.collaboration.mesh") || Object3D::IsTypeOf(name);
}

const ClassRecord& CollaborationMesh::StaticClass() {
    static const ClassRecord& record = InternClass("qn::collaboration::CollaborationMesh");
    return record;
}

void* CollaborationMesh::CastTo(const ClassRecord& wanted) {
    return CastThrough<CollaborationMesh, Object3D>(this, wanted);
}

}  // namespace qn::collaboration
