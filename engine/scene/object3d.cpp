#include "frame/host/object3d.h"

#include "engine/scene/chunk_ids.h"
#include "engine/scene/chunk_io.h"

namespace qn::k3 {

bool SaveObjectHandleSafeForm(Context* context, Stream* stream, Object3D* object, unsigned short firstId,
                              unsigned short secondId) {
    Object3D* partner = object ? object->GetHandleObject() : nullptr;
    if (!partner) return stream->WriteObjectChunk(object, context, firstId);
    return stream->WriteObjectChunk(partner, context, firstId) &&
           stream->WriteObjectChunk(object, context, secondId);
}

bool Object3D::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_object3d") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& Object3D::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Object3D");
    return record;
}

void* Object3D::CastTo(const ClassRecord& wanted) {
    return CastThrough<Object3D, ReferenceSource>(this, wanted);
}

bool Generic::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_generic") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& Generic::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Generic");
    return record;
}

void* Generic::CastTo(const ClassRecord& wanted) {
    return CastThrough<Generic, ReferenceSource>(this, wanted);
}

const ClassRecord& Renderable::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Renderable");
    return record;
}

void* Renderable::CastTo(const ClassRecord& wanted) {
    return CastThrough<Renderable, Object3D>(this, wanted);
}

ResultEnum MaterialSubstitution::Save(Stream* stream, Context* context) {
    if (const ResultEnum base = Object3D::Save(stream, context); base != ResultEnum::kSuccess) return base;
    if (object_ && !stream->WriteObjectChunk(object_.Get(), context, SubstitutionChunk::kObject))
        return ResultEnum::kWriteFailed;
    return ResultEnum::kSuccess;
}

ResultEnum MaterialSubstitution::HandleChunk(int id, Stream* stream, Context* context) {
    if (id != SubstitutionChunk::kObject) return Object3D::HandleChunk(id, stream, context);
    SetSubstituted(Cast<Object3D>(stream->ReadObject(context).Get()));
    return stream->HasFailed() ? ResultEnum::kNothing : ResultEnum::kSuccess;
}

bool MaterialSubstitution::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_materialsubstitution") || Object3D::IsTypeOf(name);
}

const ClassRecord& MaterialSubstitution::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::MaterialSubstitution");
    return record;
}

void* MaterialSubstitution::CastTo(const ClassRecord& wanted) {
    return CastThrough<MaterialSubstitution, Object3D>(this, wanted);
}

}  // namespace qn::k3
