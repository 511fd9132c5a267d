#include "engine/objects/chunk_ids.h"
#include "engine/objects/var_map_index.h"
#include "engine/stream/stream_writer.h"
#include "engine/values/value_copier.h"
#include "engine/values/var_access.h"
#include "frame/host/stream.h"

#include <algorithm>
#include <utility>

namespace qn {

Counted<VarMap> VarMap::Create() {
    return Make<VarMap>();
}
VarMap::VarMap() = default;
VarMap::~VarMap() = default;

int VarMap::Find(const Var& key) const {
    const auto same = [&](int row) {
        return VarAccess::SameKey(rows_[static_cast<std::size_t>(row)].key, key);
    };
    if (index_) return index_->Find(Index::Fold(VarAccess::KeyHash(key)), same);
    const int count = static_cast<int>(rows_.size());
    for (int row = 0; row < count; ++row)
        if (same(row)) return row;
    return -1;
}

const Var* VarMap::Lookup(const Var& key) const {
    return const_cast<VarMap*>(this)->Lookup(key);
}

Var* VarMap::Lookup(const Var& key) {
    if (holes_) Compact();
    const int row = Find(key);
    return row < 0 ? nullptr : &rows_[static_cast<std::size_t>(row)].value;
}

const Var* VarMap::LookupText(std::wstring_view key) const {
    if (holes_) Compact();
    const auto same = [&](int row) {
        const Var& present = rows_[static_cast<std::size_t>(row)].key;
        return present.IsText() && VarAccess::SameText(VarAccess::Text(present), key);
    };
    int row = 0;
    if (index_) {
        row = index_->Find(Index::Fold(HashOfText(key)), same);
    } else {
        while (row < static_cast<int>(rows_.size()) && !same(row))
            ++row;
        if (row == static_cast<int>(rows_.size())) row = -1;
    }
    return row < 0 ? nullptr : &rows_[static_cast<std::size_t>(row)].value;
}

const Var* VarMap::Lookup(int key) const {
    return Lookup(Var(key));
}
Var* VarMap::Lookup(int key) {
    return Lookup(Var(key));
}

Var& VarMap::At(const Var& key) {
    Var* present = Lookup(key);
    return present ? *present : Append(key);
}

Var& VarMap::At(int key) {
    return At(Var(key));
}

Var& VarMap::Append(const Var& key) {
    rows_.push_back(Row{key, Var()});
    const std::size_t count = rows_.size();
    if (index_) {
        index_->Insert(Index::Fold(VarAccess::KeyHash(rows_.back().key)), static_cast<int>(count) - 1);
    } else if (count > Index::kPlainRows) {
        index_ = std::make_unique<Index>();
        for (std::size_t row = 0; row < count; ++row)
            index_->Insert(Index::Fold(VarAccess::KeyHash(rows_[row].key)), static_cast<int>(row));
    }
    return rows_.back().value;
}

bool VarMap::Remove(const Var& key) {
    const int found = Find(key);
    if (found < 0) return false;
    const auto row = static_cast<std::size_t>(found);
    if (index_) index_->Erase(Index::Fold(VarAccess::KeyHash(key)), found);
    const Row gone = std::exchange(rows_[row], Row());  // dropped when the map is whole again
    if (row + 1 == rows_.size()) {
        rows_.pop_back();
    } else if (index_) {
        index_->holes.push_back(found);
        ++holes_;
    } else {
        rows_.erase(rows_.begin() + found);
    }
    return true;
}

void VarMap::Compact() const {
    std::vector<int>& holes = index_->holes;
    std::sort(holes.begin(), holes.end());
    std::vector<int> renamed(rows_.size());
    std::size_t kept = 0, hole = 0;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        if (hole < holes.size() && holes[hole] == static_cast<int>(row)) {
            ++hole;
            continue;
        }
        if (kept != row) rows_[kept] = std::move(rows_[row]);
        renamed[row] = static_cast<int>(kept++);
    }
    rows_.resize(kept);
    index_->Rename(renamed);
    holes.clear();
    holes_ = 0;
}

void VarMap::Clear() {
    const auto index = std::exchange(index_, nullptr);
    const auto gone = std::exchange(rows_, {});
    holes_ = 0;
}

void VarMap::Reserve(int count) {
    if (count > 0) rows_.reserve(static_cast<std::size_t>(count));
}

void VarMap::CopyRowsFrom(const VarMap& source) {
    if (source.holes_) source.Compact();
    rows_ = source.rows_;
    holes_ = 0;
    index_ = source.index_ ? std::make_unique<Index>(*source.index_) : nullptr;
}

Counted<ReferenceSource> VarMap::Clone(unsigned mode) const {
    return ValueCopier(static_cast<int>(mode)).CopyMap(this);
}

ResultEnum VarMap::CopyFrom(const Interface* source, unsigned flags) {
    const auto* map = Cast<VarMap>(source);
    if (!map) return ResultEnum::kWrongClass;
    if (map == this) return ResultEnum::kSuccess;
    const auto copy = ValueCopier().CopyMap(map);
    if (!copy) return ResultEnum::kNothing;
    std::swap(rows_, copy->rows_);
    std::swap(index_, copy->index_);
    std::swap(holes_, copy->holes_);
    return CloneFrom(*map, flags);
}

// A row whose key is an object that is not stored is left out: it could not be told from others.
ResultEnum VarMap::Save(Stream* stream, Context* context) {
    const ResultEnum base = ReferenceSource::Save(stream, context);
    if (base != ResultEnum::kSuccess) return base;
    const auto isStored = [stream](const Row& row) {
        return !row.key.HoldsInterface() || IsStored(stream, row.key.ToInterface(), row.key.IsWeak());
    };
    if (holes_) Compact();
    const auto stored = std::count_if(rows_.begin(), rows_.end(), isStored);
    if (stored == 0) return base;
    if (!stream->BeginChunk(chunk::kMapRows)) return ResultEnum::kWriteFailed;
    bool written = stream->WriteInt(static_cast<int>(stored));
    for (std::size_t i = 0; written && i < rows_.size(); ++i)
        if (isStored(rows_[i]))
            written = rows_[i].key.Save(stream, context) && rows_[i].value.Save(stream, context);
    stream->EndChunk();
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum VarMap::HandleChunk(int id, Stream* stream, Context* context) {
    if (id != chunk::kMapRows) return ReferenceSource::HandleChunk(id, stream, context);
    constexpr std::size_t kLeastRow = 2;  // bytes: two tags
    int count = 0;
    if (!stream->ReadInt(count) || count < 0 ||
        static_cast<std::size_t>(count) > stream->Remaining() / kLeastRow) {
        stream->Fail(L"a map claims more rows than its chunk can hold");
        return ResultEnum::kNothing;
    }
    Reserve(count);
    for (int i = 0; i < count; ++i) {
        Var key, value;
        if (!key.Load(stream, context) || !value.Load(stream, context)) return ResultEnum::kNothing;
        At(key) = std::move(value);
    }
    return ResultEnum::kSuccess;
}

bool VarMap::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_varmap") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& VarMap::StaticClass() {
    static const ClassRecord& record = InternClass("qn::VarMap");
    return record;
}

void* VarMap::CastTo(const ClassRecord& wanted) {
    return CastThrough<VarMap, ReferenceSource>(this, wanted);
}

}  // namespace qn
