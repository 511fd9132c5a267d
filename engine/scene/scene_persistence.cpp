#include "engine/scene/chunk_ids.h"
#include "engine/scene/chunk_io.h"
#include "engine/scene/scene_access.h"
#include "engine/scene/scene_data.h"
#include "graph/node_list_owner.h"

namespace qn::k3 {
namespace {

template <class T>
void ReadArray(Stream* stream, Context* context, InterfaceArray& array) {
    ReadNumbers(stream, context, [&](const Counted<Interface>& object) {
        if (Cast<T>(object.Get())) array.Add(object.Get());
    });
}

void Bind(Scene& scene, Interface* object) {
    if (auto* entity = Cast<Entity>(object)) entity->SetScene(&scene);
}

void BindAll(Scene& scene, const InterfaceArray* array) {
    for (int i = 0; array && i < array->GetCount(); ++i)
        Bind(scene, array->Get(i));
}

/// Takes the nodes of a structure that is not shown out of the global list.
void Unlist(const Interface* bom) {
    const auto* owner = Cast<graph::NodeListOwner>(bom);
    const Var nodes = owner ? owner->GetNodes() : Var();
    for (int i = 0; nodes.IsArray() && i < nodes.size(); ++i)
        if (auto* node = Cast<Node>(nodes.ValueAt(i)))
            if (!node->GetScene()) node->Visit(0, &__RemoveFromGlobalList, 0);
}

}  // namespace

ResultEnum Scene::Save(Stream* stream, Context* context) {
    SceneAccess::FindPointedInto(*this);
    if (const ResultEnum base = Node::Save(stream, context); base != ResultEnum::kSuccess) return base;
    bool written = true;
    if (data_->time != 0.0f)
        written = ChunkWriter(stream, SceneChunk::kTime).Bytes(&data_->time, sizeof(float), 1).Ok();
    written = written && WriteNumbers(stream, context, SceneChunk::kLayers, data_->layers.Get(), false) &&
              WriteNumbers(stream, context, SceneChunk::kViewports, data_->viewports.Get(), false) &&
              WriteNumbers(stream, context, SceneChunk::kEntities, data_->entities.Get(), false);
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum Scene::HandleChunk(int id, Stream* stream, Context* context) {
    if (id == SceneChunk::kTime) {
        stream->ReadData(&data_->time, sizeof(float), 1);
    } else if (id == SceneChunk::kLayers) {
        ReadArray<Layer>(stream, context, *GetLayers());
    } else if (id == SceneChunk::kViewports) {
        if (!data_->viewports) data_->viewports = InterfaceArray::CreateStrong();
        ReadArray<Viewport>(stream, context, *data_->viewports);
    } else if (id == SceneChunk::kEntities) {
        ReadArray<Entity>(stream, context, *GetEntities());
    } else {
        return Node::HandleChunk(id, stream, context);
    }
    return stream->HasFailed() ? ResultEnum::kNothing : ResultEnum::kSuccess;
}

ResultEnum Scene::Load(Stream* stream, Context* context) {
    const ResultEnum result = Node::Load(stream, context);
    BindAll(*this, data_->layers.Get());
    BindAll(*this, data_->viewports.Get());
    BindAll(*this, data_->entities.Get());
    const BomHelper boms(this);
    Bind(*this, boms.GetCurrentBom());
    const VarArray* all = boms.GetBoms();
    for (int i = 0; all && i < all->GetCount(); ++i) {
        Bind(*this, all->Get(i).ToInterface());
        Unlist(all->Get(i).ToInterface());
    }
    const InterfaceArray* viewports = data_->viewports.Get();
    for (int i = 0; viewports && i < viewports->GetCount(); ++i)
        if (const auto* viewport = Cast<Viewport>(viewports->Get(i))) Bind(*this, viewport->GetLayer());
    return result;
}

}  // namespace qn::k3
