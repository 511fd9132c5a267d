#include "frame/host/layer.h"

#include "engine/scene/chunk_ids.h"
#include "engine/scene/chunk_io.h"
#include "engine/scene/layer_members.h"
#include "engine/scene/scene_access.h"

namespace qn::k3 {

Layer::Layer(Scene* scene) : Entity(scene) {}
Layer::~Layer() = default;

PointerArray* Layer::GetMembers() const {
    return members_ ? members_->list.Array() : nullptr;
}

void Layer::BeforeChange() {
    SceneAccess::BeforeMembersChange(GetScene(), this);
}

void Layer::AddNode(Node* node) {
    if (!node || (members_ && members_->list.Has(node))) return;
    BeforeChange();
    if (!members_) members_ = std::make_unique<Members>();
    members_->list.Add(node);
}

/// A member that is no node stays listed, too: finding those is up to whoever checks the scene.
void Layer::KeepStored(Interface* member) {
    if (auto* node = Cast<Node>(member)) return AddNode(node);
    if (!member) return;
    if (!members_) members_ = std::make_unique<Members>();
    members_->list.AddStranger(member);
}

void Layer::RemoveNode(Node* node) {
    if (!node || !members_ || !members_->list.Has(node)) return;
    BeforeChange();
    members_->list.Remove(node);
}

void Layer::DeleteAll() {
    if (!members_) return;
    BeforeChange();
    members_->list.Clear();
}

ResultEnum Layer::Save(Stream* stream, Context* context) {
    if (const ResultEnum base = Entity::Save(stream, context); base != ResultEnum::kSuccess) return base;
    if (displayName_.NonEmpty() && !ChunkWriter(stream, LayerChunk::kDisplayName).Text(displayName_).Ok())
        return ResultEnum::kWriteFailed;
    return WriteNumbers(stream, context, LayerChunk::kMembers, GetMembers(), true) ? ResultEnum::kSuccess
                                                                                   : ResultEnum::kWriteFailed;
}

ResultEnum Layer::HandleChunk(int id, Stream* stream, Context* context) {
    if (id == LayerChunk::kDisplayName) {
        displayName_.Load(stream);
    } else if (id == LayerChunk::kMembers) {
        ReadNumbers(stream, context, [this](const Counted<Interface>& member) { KeepStored(member.Get()); });
    } else {
        return Entity::HandleChunk(id, stream, context);
    }
    return stream->HasFailed() ? ResultEnum::kNothing : ResultEnum::kSuccess;
}

bool Layer::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_layer") || Entity::IsTypeOf(name);
}

const ClassRecord& Layer::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Layer");
    return record;
}

void* Layer::CastTo(const ClassRecord& wanted) {
    return CastThrough<Layer, Entity>(this, wanted);
}

}  // namespace qn::k3
