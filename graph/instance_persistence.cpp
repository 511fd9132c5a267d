#include "frame/host/collections.h"
#include "frame/host/stream.h"
#include "graph/element_properties.h"
#include "graph/instance_impl.h"
#include "graph/reference.h"

namespace qn::graph {

namespace {

constexpr int kReferenceChunk = 0x1001;
constexpr int kSelectorsChunk = 0x1002;

}  // namespace

/// All chunks of an instance carry one object.
struct InstanceImpl::ChunkRow {
    int id;
    void (InstanceImpl::*read)(Interface* object);
};

const InstanceImpl::ChunkRow InstanceImpl::kChunks[] = {
    {kPropertiesChunk, &InstanceImpl::ReadProperties},
    {kReferenceChunk, &InstanceImpl::ReadReference},
    {kSelectorsChunk, &InstanceImpl::ReadSelectors},
};

ResultEnum InstanceImpl::HandleChunk(int id, Stream* stream, Context* context) {
    for (const ChunkRow& row : kChunks) {
        if (row.id != id) continue;
        (this->*row.read)(stream->ReadObject(context).Get());
        return ResultEnum::kSuccess;
    }
    return Instance::HandleChunk(id, stream, context);
}

void InstanceImpl::ReadProperties(Interface* object) {
    properties_ = Var(Cast<VarMap>(object), 1);
}

void InstanceImpl::ReadReference(Interface* object) {
    SetReference(Cast<Reference>(object));
}

void InstanceImpl::ReadSelectors(Interface* object) {
    selectors_ = Var(Cast<VarMap>(object), 1);
}

ResultEnum InstanceImpl::Save(Stream* stream, Context* context) {
    const ResultEnum base = Instance::Save(stream, context);
    if (base != ResultEnum::kSuccess) return base;
    SaveProperties(properties_, stream, context);
    if (reference_) stream->WriteObjectChunk(reference_.Get(), context, kReferenceChunk);
    if (selectors_.IsMap() && selectors_.size() != 0)
        stream->WriteObjectChunk(selectors_.ToMap(), context, kSelectorsChunk);
    return ResultEnum::kSuccess;
}

}  // namespace qn::graph
