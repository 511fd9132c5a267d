#include "tests/behaviour/chunk_tape.h"

#include "frame/host/collections.h"

#include <algorithm>
#include <cstring>

namespace qn::test {
namespace {

constexpr int kFirstOwnChunk = 0x1000;
constexpr unsigned kDeepCopy = 1;

/// Collections are changed after they were handed over; everything else is kept as itself.
Counted<Interface> AsWritten(Interface* object) {
    if (const auto* map = Cast<VarMap>(object)) return map->Clone(kDeepCopy);
    if (const auto* array = Cast<VarArray>(object)) return array->Clone(kDeepCopy);
    return Counted<Interface>(object);
}

}  // namespace

Counted<ChunkTape> ChunkTape::Of(int id, Interface* object) {
    auto tape = Make<ChunkTape>();
    tape->chunks_.push_back({id, true, {}, {Counted<Interface>(object)}});
    tape->NextChunk();
    return tape;
}

std::vector<int> ChunkTape::OwnIds() const {
    std::vector<int> ids;
    for (const Chunk& chunk : chunks_) {
        if (chunk.id >= kFirstOwnChunk) ids.push_back(chunk.id);
    }
    return ids;
}

const ChunkTape::Chunk* ChunkTape::Find(int id) const {
    const auto found =
        std::find_if(chunks_.begin(), chunks_.end(), [&](const Chunk& c) { return c.id == id; });
    return found == chunks_.end() ? nullptr : &*found;
}

Interface* ChunkTape::ObjectAt(int id) const {
    const Chunk* chunk = Find(id);
    return chunk && !chunk->objects.empty() ? chunk->objects.front().Get() : nullptr;
}

bool ChunkTape::Enter(int id) {
    place_ = -1;
    while (NextChunk()) {
        if (GetChunkId() == id) return true;
    }
    return false;
}

bool ChunkTape::BeginChunk(unsigned id) {
    if (static_cast<int>(id) == refused_) return false;
    if (depth_++ == 0) chunks_.push_back({static_cast<int>(id), false, {}, {}});
    return true;
}

void ChunkTape::EndChunk() {
    if (depth_ > 0) --depth_;
}

bool ChunkTape::WriteData(const void* data, int itemSize, int count) {
    if (depth_ == 0) return Fail(L"data outside of a chunk");
    chunks_.back().bytes.append(static_cast<const char*>(data), static_cast<std::size_t>(itemSize) * count);
    return true;
}

bool ChunkTape::WriteInt(int value) {
    return WriteData(&value, sizeof value, 1);
}

bool ChunkTape::WriteObjectChunk(Interface* object, Context*, int id) {
    if (depth_ == 0) chunks_.push_back({id, true, {}, {}});
    chunks_.back().objects.push_back(AsWritten(object));
    return true;
}

bool ChunkTape::WriteObjectNumber(Interface* object, Context*, bool) {
    if (depth_ == 0) return Fail(L"an object outside of a chunk");
    chunks_.back().objects.emplace_back(object);
    return true;
}

bool ChunkTape::NextChunk() {
    byte_ = object_ = 0;
    return ++place_ < static_cast<int>(chunks_.size());
}

int ChunkTape::GetChunkId() const {
    return Present() ? Present()->id : 0;
}

int ChunkTape::ReadData(void* data, int itemSize, int count) {
    const auto size = static_cast<std::size_t>(itemSize);
    const std::size_t whole = size == 0 ? 0 : std::min(static_cast<std::size_t>(count), Remaining() / size);
    if (whole > 0) std::memcpy(data, Present()->bytes.data() + byte_, whole * size);
    byte_ += whole * size;
    return static_cast<int>(whole);
}

bool ChunkTape::ReadInt(int& value) {
    return ReadData(&value, sizeof value, 1) == 1;
}

std::size_t ChunkTape::Remaining() const {
    return Present() ? Present()->bytes.size() - byte_ : 0;
}

Counted<Interface> ChunkTape::ReadObject(Context*) {
    if (!Present() || object_ >= Present()->objects.size()) return {};
    return Present()->objects[object_++];
}

Counted<Interface> ChunkTape::ReadObjectNumber(Context* context) {
    return ReadObject(context);
}

bool ChunkTape::Fail(const String&) {
    failed_ = true;
    return false;
}

const ChunkTape::Chunk* ChunkTape::Present() const {
    const bool inside = place_ >= 0 && place_ < static_cast<int>(chunks_.size());
    return inside ? &chunks_[static_cast<std::size_t>(place_)] : nullptr;
}

}  // namespace qn::test
