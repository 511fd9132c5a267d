#include "frame/host/entity.h"

#include "engine/scene/chunk_ids.h"
#include "engine/scene/chunk_io.h"
#include "frame/host/scene_document.h"

namespace qn::k3 {

Entity::Entity(Scene* scene, int type) : scene_(scene), type_(type) {}
Entity::~Entity() = default;

Scene* Entity::GetScene() const {
    return scene_.Get();
}
void Entity::SetScene(Scene* scene) {
    scene_ = Weak<Scene>(scene);
}

InterfaceArray* Entity::GetDependants() {
    if (!dependants_) dependants_ = InterfaceArray::CreateWeak();
    return dependants_.Get();
}

void Entity::Clear() {
    name_.Clear();
    dependants_.Reset();
    ReferenceSource::Clear();
}

ResultEnum Entity::Load(Stream* stream, Context* context) {
    return ReferenceSource::Load(stream, context);
}

ResultEnum Entity::Save(Stream* stream, Context* context) {
    if (const ResultEnum base = ReferenceSource::Save(stream, context); base != ResultEnum::kSuccess)
        return base;
    bool written = true;
    if (name_.NonEmpty()) written = ChunkWriter(stream, EntityChunk::kName).Text(name_).Ok();
    if (type_ != kTypeEntity && written) written = ChunkWriter(stream, EntityChunk::kType).Int(type_).Ok();
    written = written && WriteNumbers(stream, context, EntityChunk::kDependants, dependants_.Get(), true);
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum Entity::HandleChunk(int id, Stream* stream, Context* context) {
    if (id == EntityChunk::kName) {
        name_.Load(stream);
    } else if (id == EntityChunk::kType) {
        stream->ReadInt(type_);
    } else if (id == EntityChunk::kDependants) {
        ReadNumbers(stream, context, [this](const Counted<Interface>& object) {
            if (object) GetDependants()->Add(object.Get());
        });
    } else {
        return ReferenceSource::HandleChunk(id, stream, context);
    }
    return stream->HasFailed() ? ResultEnum::kNothing : ResultEnum::kSuccess;
}

ResultEnum Entity::CopyFrom(const Interface* source, unsigned flags) {
    const auto* other = Cast<Entity>(source);
    return other ? CloneFrom(*other, flags) : ResultEnum::kWrongClass;
}

ResultEnum Entity::CloneFrom(const Entity& source, unsigned flags) {
    name_ = source.name_;
    return ReferenceSource::CloneFrom(source, flags);
}

bool Entity::IsTypeOf(const char* name) const {
    return EqualKeys(name, "qn.k3.entity") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& Entity::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Entity");
    return record;
}

void* Entity::CastTo(const ClassRecord& wanted) {
    return CastThrough<Entity, ReferenceSource>(this, wanted);
}

}  // namespace qn::k3
