#include "engine/stream/format.h"
#include "engine/stream/limits.h"
#include "engine/stream/stream_writer.h"
#include "frame/host/collections.h"

#include <limits>

#include <fmt/format.h>

// What a class calls while it saves itself: the payload of the body that is open.

namespace qn {
namespace {

namespace limits = scene_file_limits;
using namespace scene_file;

constexpr std::uint32_t kNoRecord = PointerIndex::kNone;
constexpr std::size_t kDeepestBody = 4;  // collections written at once inside each other

bool IsCollection(Interface* object) {
    return Cast<VarMap>(object) || Cast<VarArray>(object);
}

}  // namespace

bool StreamWriter::Append(const void* data, std::size_t size) {
    if (failed_ || openCount_ == 0) return false;
    std::string& bytes = open_[openCount_ - 1].bytes;
    if (size > limits::kLargestBody - bytes.size())
        return FailWith(LoadFailure::kLimit,
                        fmt::format("an object of more than {} bytes", limits::kLargestBody));
    bytes.append(static_cast<const char*>(data), size);
    return true;
}

bool StreamWriter::BeginChunk(unsigned id) {
    if (failed_ || openCount_ == 0) return false;
    if (id > std::numeric_limits<std::uint16_t>::max())
        return FailWith(LoadFailure::kDefect, fmt::format("chunk id {:#x} has more than 16 bits", id));
    if (open_[openCount_ - 1].chunks.size() >= limits::kDeepestChunk)
        return FailWith(LoadFailure::kLimit,
                        fmt::format("chunks nested more than {} deep", limits::kDeepestChunk));
    std::string header;
    Put(header, static_cast<std::uint16_t>(id));
    Put(header, std::uint32_t{0});  // the length, known at the end
    if (!Append(header.data(), header.size())) return false;
    Body& body = open_[openCount_ - 1];
    body.chunks.push_back({body.bytes.size(), static_cast<int>(id)});
    return true;
}

void StreamWriter::EndChunk() {
    if (openCount_ == 0 || open_[openCount_ - 1].chunks.empty()) return;
    Body& body = open_[openCount_ - 1];
    const std::size_t begin = body.chunks.back().begin;
    PutAt(body.bytes.data() + begin - sizeof(std::uint32_t),
          static_cast<std::uint32_t>(body.bytes.size() - begin));
    body.chunks.pop_back();
}

bool StreamWriter::WriteData(const void* data, int itemSize, int count) {
    if (itemSize < 0 || count < 0) return FailWith(LoadFailure::kDefect, "a negative size");
    if (itemSize == 0 || count == 0) return !failed_ && openCount_ != 0;
    return Append(data, static_cast<std::size_t>(itemSize) * static_cast<std::size_t>(count));
}

bool StreamWriter::WriteInt(int value) {
    return Append(&value, sizeof value);
}

std::uint32_t StreamWriter::WriteNumberOf(Interface* object) {
    const std::uint32_t target = object ? Register(*object) : kNoRecord;
    Body& body = open_[openCount_ - 1];
    if (target != kNoRecord) body.links.push_back({body.bytes.size(), target});
    const std::uint32_t unset = 0;
    Append(&unset, sizeof unset);
    return target;
}

bool StreamWriter::WriteObjectChunk(Interface* object, Context*, int id) {
    if (!BeginChunk(static_cast<unsigned>(id))) return false;
    const std::uint32_t record = WriteNumberOf(object);
    EndChunk();
    if (failed_ || record == kNoRecord || records_[record].saved) return !failed_;
    return !IsCollection(object) || openCount_ >= kDeepestBody || WriteBody(record);
}

bool StreamWriter::WriteObjectNumber(Interface* object, Context*, bool weak) {
    if (failed_ || openCount_ == 0) return false;
    if (!weak || !object) {
        WriteNumberOf(object);
        return !failed_;
    }
    Body& body = open_[openCount_ - 1];
    body.weakLinks.push_back({body.bytes.size(), object});
    weakTargets_.emplace_back(object);
    const std::uint32_t unset = 0;
    return Append(&unset, sizeof unset);
}

int StreamWriter::GetChunkId() const {
    if (openCount_ == 0 || open_[openCount_ - 1].chunks.empty()) return 0;
    return open_[openCount_ - 1].chunks.back().id;
}

bool StreamWriter::ReadInt(int& value) {
    value = 0;
    return false;
}

}  // namespace qn
