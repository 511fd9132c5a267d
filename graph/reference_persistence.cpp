#include "frame/host/object3d.h"
#include "frame/host/stream.h"
#include "graph/element_properties.h"
#include "graph/reference_impl.h"

namespace qn::graph {

namespace {

constexpr int kTargetChunk = 0x1001;
constexpr int kChildrenChunk = 0x1002;
constexpr int kSelectorsChunk = 0x1003;  // written, and left to the base when it is read
constexpr int kInstructionsChunk = 0x1004;
constexpr int kTargetObjectChunk = 0x1005;
constexpr int kHandleObjectChunk = 0x1006;

}  // namespace

struct ReferenceImpl::ChunkRow {
    int id;
    void (ReferenceImpl::*read)(Stream* stream, Context* context);
};

const ReferenceImpl::ChunkRow ReferenceImpl::kChunks[] = {
    {kPropertiesChunk, &ReferenceImpl::ReadProperties},
    {kTargetChunk, &ReferenceImpl::ReadTarget},
    {kChildrenChunk, &ReferenceImpl::ReadChildren},
    {kInstructionsChunk, &ReferenceImpl::ReadInstructions},
    {kTargetObjectChunk, &ReferenceImpl::ReadTargetObject},
    {kHandleObjectChunk, &ReferenceImpl::ReadHandleObject},
};

ResultEnum ReferenceImpl::HandleChunk(int id, Stream* stream, Context* context) {
    for (const ChunkRow& row : kChunks) {
        if (row.id != id) continue;
        (this->*row.read)(stream, context);
        return ResultEnum::kSuccess;
    }
    return Reference::HandleChunk(id, stream, context);
}

void ReferenceImpl::ReadProperties(Stream* stream, Context* context) {
    properties_ = Var(CountedCast<VarMap>(stream->ReadObject(context)));
}

void ReferenceImpl::ReadTarget(Stream* stream, Context* context) {
    target_.Load(stream, context);
}

/// Neither looks for doubles nor tells the children who holds them.
void ReferenceImpl::ReadChildren(Stream* stream, Context* context) {
    const auto list = CountedCast<VarArray>(stream->ReadObject(context));
    for (int i = 0; list && i < list->GetCount(); ++i)
        if (auto* child = Cast<Instance>(list->Get(i))) children_.Append(child);
}

void ReferenceImpl::ReadInstructions(Stream* stream, Context* context) {
    instructions_ = CountedCast<VarArray>(stream->ReadObject(context));
}

void ReferenceImpl::ReadTargetObject(Stream* stream, Context* context) {
    const auto object = CountedCast<k3::Object3D>(stream->ReadObject(context));
    if (!object) return;
    if (auto* present = Cast<k3::Object3D>(target_))
        present->AttachHandleObject(object.Get());
    else
        target_ = Var(object);
}

void ReferenceImpl::ReadHandleObject(Stream* stream, Context* context) {
    const auto object = CountedCast<k3::Object3D>(stream->ReadObject(context));
    if (!object) return;
    if (auto* present = Cast<k3::Object3D>(target_)) object->AttachHandleObject(present);
    target_ = Var(object);
}

ResultEnum ReferenceImpl::Save(Stream* stream, Context* context) {
    const ResultEnum base = Reference::Save(stream, context);
    if (base != ResultEnum::kSuccess) return base;
    SaveProperties(properties_, stream, context);
    SaveTarget(stream, context);
    SaveChildren(stream, context);
    if (selectors_.IsMap() && selectors_.size() != 0)
        stream->WriteObjectChunk(selectors_.ToMap(), context, kSelectorsChunk);
    if (GetInstructionCount() != 0)
        stream->WriteObjectChunk(instructions_.Get(), context, kInstructionsChunk);
    return ResultEnum::kSuccess;
}

void ReferenceImpl::SaveTarget(Stream* stream, Context* context) const {
    if (target_.IsEmpty()) return;
    if (auto* object = Cast<k3::Object3D>(target_)) {
        k3::SaveObjectHandleSafeForm(context, stream, object, kTargetObjectChunk, kHandleObjectChunk);
    } else if (stream->BeginChunk(kTargetChunk)) {
        target_.Save(stream, context);
        stream->EndChunk();
    }
}

void ReferenceImpl::SaveChildren(Stream* stream, Context* context) const {
    if (children_.GetCount() == 0) return;
    const auto list = VarArray::Create();
    if (!list) return;
    list->Reserve(children_.GetCount());
    for (int i = 0; i < children_.GetCount(); ++i)
        list->Add(Var(children_.Get(i), 1));
    stream->WriteObjectChunk(list.Get(), context, kChildrenChunk);
}

}  // namespace qn::graph
