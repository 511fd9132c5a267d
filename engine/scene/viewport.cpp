#include "engine/scene/chunk_ids.h"
#include "engine/scene/chunk_io.h"
#include "frame/host/layer.h"

namespace qn::k3 {

Viewport::Viewport(Scene* scene) : Entity(scene) {}
Viewport::~Viewport() = default;

ResultEnum Viewport::Save(Stream* stream, Context* context) {
    if (const ResultEnum base = Entity::Save(stream, context); base != ResultEnum::kSuccess) return base;
    bool written = true;
    if (kind_ != ViewKind::kOther)
        written = ChunkWriter(stream, ViewportChunk::kKind).Int(static_cast<int>(kind_)).Ok();
    if (Node* node = GetViewNode(); written && IsStored(stream, node, true))
        written = ChunkWriter(stream, ViewportChunk::kViewNode).Number(node, context, true).Ok();
    if (layer_ && written)
        written = ChunkWriter(stream, ViewportChunk::kLayer).Number(layer_.Get(), context, false).Ok();
    if (Entity* companion = GetCompanion(); written && IsStored(stream, companion, true))
        written = ChunkWriter(stream, ViewportChunk::kCompanion).Number(companion, context, true).Ok();
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum Viewport::HandleChunk(int id, Stream* stream, Context* context) {
    const auto object = [&] { return stream->ReadObjectNumber(context); };
    if (id == ViewportChunk::kKind) {
        int kind = 0;
        stream->ReadInt(kind);
        kind_ = kind >= 1 && kind <= 3 ? static_cast<ViewKind>(kind) : ViewKind::kOther;
    } else if (id == ViewportChunk::kViewNode) {
        SetViewNode(Cast<Node>(object().Get()));
    } else if (id == ViewportChunk::kLayer) {
        SetLayer(Cast<Layer>(object().Get()));
    } else if (id == ViewportChunk::kCompanion) {
        SetCompanion(Cast<Entity>(object().Get()));
    } else {
        return Entity::HandleChunk(id, stream, context);
    }
    return stream->HasFailed() ? ResultEnum::kNothing : ResultEnum::kSuccess;
}

bool Viewport::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_viewport") || Entity::IsTypeOf(name);
}

const ClassRecord& Viewport::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Viewport");
    return record;
}

void* Viewport::CastTo(const ClassRecord& wanted) {
    return CastThrough<Viewport, Entity>(this, wanted);
}

}  // namespace qn::k3
