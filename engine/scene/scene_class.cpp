#include "frame/host/scene_document.h"

#include "frame/host/collections.h"
#include "frame/host/parameter_ids.h"

namespace qn::k3 {

const ClassRecord& SceneImpl::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::SceneImpl");
    return record;
}

void* SceneImpl::CastTo(const ClassRecord& wanted) {
    return &wanted == &StaticClass() ? this : nullptr;
}

bool Scene::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_scene") || Node::IsTypeOf(name);
}

const ClassRecord& Scene::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Scene");
    return record;
}

void* Scene::CastTo(const ClassRecord& wanted) {
    return CastThrough<Scene, Node, SceneImpl>(this, wanted);
}

Interface* BomHelper::GetCurrentBom() const {
    return scene_ ? scene_->GetParamObject(Param::kCurrentBom) : nullptr;
}

VarArray* BomHelper::GetBoms() const {
    return scene_ ? Cast<VarArray>(scene_->GetParamObject(Param::kBoms)) : nullptr;
}

}  // namespace qn::k3

namespace qn {

bool TolvaExt::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_tolvaext") || Extension::IsTypeOf(name);
}

const ClassRecord& TolvaExt::StaticClass() {
    static const ClassRecord& record = InternClass("qn::TolvaExt");
    return record;
}

void* TolvaExt::CastTo(const ClassRecord& wanted) {
    return CastThrough<TolvaExt, Extension>(this, wanted);
}

}  // namespace qn
