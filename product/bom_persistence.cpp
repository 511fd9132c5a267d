#include "frame/host/node.h"
#include "frame/host/scene_document.h"
#include "frame/host/stream.h"
#include "product/bom_impl.h"

namespace qn::k3 {
namespace {

// Chunks of a structure, in the order in which they are written.
constexpr int kRootChunk = 0x1000;
constexpr int kNodesChunk = 0x1001;
constexpr int kLayerChunk = 0x1006;  // one for each layer

}  // namespace

ResultEnum BomImpl::Save(Stream* stream, Context* context) {
    if (const ResultEnum base = Entity::Save(stream, context); base != ResultEnum::kSuccess) return base;
    bool written = !rootNode_ || stream->WriteObjectChunk(rootNode_.Get(), context, kRootChunk);
    if (written && nodes_) written = stream->WriteObjectChunk(nodes_.Get(), context, kNodesChunk);
    for (int i = 0; written && layers_ && i < layers_->GetCount(); ++i)
        if (Interface* layer = layers_->Get(i))
            written = stream->WriteObjectChunk(layer, context, kLayerChunk);
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum BomImpl::HandleChunk(int id, Stream* stream, Context* context) {
    if (id == kRootChunk) {
        if (const auto root = CountedCast<Node>(stream->ReadObject(context))) {
            rootNode_ = root;
            SetScene(root->GetScene());
        }
    } else if (id == kNodesChunk) {
        if (const auto nodes = CountedCast<VarArray>(stream->ReadObject(context))) nodes_ = nodes;
    } else if (id == kLayerChunk) {
        const auto layer = CountedCast<Layer>(stream->ReadObject(context));
        if (layer && !layers_) layers_ = InterfaceArray::CreateStrong();
        if (layer) layers_->Add(layer.Get());
    } else {
        return Entity::HandleChunk(id, stream, context);
    }
    return ResultEnum::kSuccess;
}

}  // namespace qn::k3
