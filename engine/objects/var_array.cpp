#include "engine/objects/chunk_ids.h"
#include "engine/values/value_copier.h"
#include "frame/host/collections.h"
#include "frame/host/stream.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qn {

Counted<VarArray> VarArray::Create(int count) {
    auto array = Make<VarArray>();
    if (array && count > 0) array->values_.resize(static_cast<std::size_t>(count));
    return array;
}

VarArray::VarArray() = default;
VarArray::~VarArray() = default;

const Var& VarArray::Get(int index) const {
    static const Var& none = *new Var;  // outlives every other static object
    return index >= 0 && index < GetCount() ? values_[static_cast<std::size_t>(index)] : none;
}

void VarArray::Set(int index, const Var& value) {
    if (index < 0) return;
    Var held(value);  // may be an element, which growing moves
    At(index) = std::move(held);
}

Var& VarArray::At(int index) {
    static Var& scratch = *new Var;
    if (index < 0) return scratch = Var();
    if (index >= GetCount()) values_.resize(static_cast<std::size_t>(index) + 1);
    return values_[static_cast<std::size_t>(index)];
}

int VarArray::Add(const Var& value) {
    values_.push_back(value);
    return GetCount() - 1;
}

int VarArray::Find(const Var& value) const {
    const auto found = std::find(values_.begin(), values_.end(), value);
    return found == values_.end() ? -1 : static_cast<int>(found - values_.begin());
}

void VarArray::RemoveAt(int index, int count) {
    if (index < 0 || index >= GetCount() || count <= 0) return;
    const auto first = values_.begin() + index;
    const auto last = first + std::min(count, GetCount() - index);
    // Dropped when the array is whole again: their owners may come back to it.
    const std::vector<Var> gone(std::make_move_iterator(first), std::make_move_iterator(last));
    values_.erase(first, last);
}

void VarArray::Clear() {
    const auto gone = std::exchange(values_, {});
}

Counted<ReferenceSource> VarArray::Clone(unsigned mode) const {
    return ValueCopier(static_cast<int>(mode)).CopyArray(this);
}

ResultEnum VarArray::CopyFrom(const Interface* source, unsigned flags) {
    const auto* array = Cast<VarArray>(source);
    if (!array) return ResultEnum::kWrongClass;
    if (array == this) return ResultEnum::kSuccess;
    const auto copy = ValueCopier().CopyArray(array);
    if (!copy) return ResultEnum::kNothing;
    std::swap(values_, copy->values_);
    return CloneFrom(*array, flags);
}

ResultEnum VarArray::Save(Stream* stream, Context* context) {
    const ResultEnum base = ReferenceSource::Save(stream, context);
    if (base != ResultEnum::kSuccess || values_.empty()) return base;
    if (!stream->BeginChunk(chunk::kArrayValues)) return ResultEnum::kWriteFailed;
    bool written = stream->WriteInt(GetCount());
    for (std::size_t i = 0; written && i < values_.size(); ++i)
        written = values_[i].Save(stream, context);
    stream->EndChunk();
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum VarArray::HandleChunk(int id, Stream* stream, Context* context) {
    if (id != chunk::kArrayValues) return ReferenceSource::HandleChunk(id, stream, context);
    int count = 0;
    if (!stream->ReadInt(count) || count < 0 || static_cast<std::size_t>(count) > stream->Remaining()) {
        stream->Fail(L"an array claims more values than its chunk can hold");
        return ResultEnum::kNothing;
    }
    values_.reserve(values_.size() + static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        Var value;
        if (!value.Load(stream, context)) return ResultEnum::kNothing;
        values_.push_back(std::move(value));
    }
    return ResultEnum::kSuccess;
}

bool VarArray::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_vararray") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& VarArray::StaticClass() {
    static const ClassRecord& record = InternClass("qn::VarArray");
    return record;
}

void* VarArray::CastTo(const ClassRecord& wanted) {
    return CastThrough<VarArray, ReferenceSource>(this, wanted);
}

}  // namespace qn
