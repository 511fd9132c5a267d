#include "engine/stream/chunk_cursor.h"

#include "engine/stream/format.h"
#include "engine/stream/limits.h"

#include <algorithm>

#include <fmt/format.h>

namespace qn {

using namespace scene_file;

void ChunkCursor::Start(std::string_view body) {
    body_ = body;
    place_ = 0;
    levels_.clear();
}

ChunkCursor::Step ChunkCursor::Enter() {
    const std::size_t left = Remaining();
    if (left == 0) return Step::kEnd;
    if (left < kChunkHeaderSize) return Step::kCutHeader;
    const auto id = GetAt<std::uint16_t>(body_.data() + place_);
    const auto length = GetAt<std::uint32_t>(body_.data() + place_ + sizeof id);
    if (length > left - kChunkHeaderSize) return Step::kTooLong;
    if (levels_.size() >= scene_file_limits::kDeepestChunk) return Step::kTooDeep;
    place_ += kChunkHeaderSize;
    levels_.push_back({place_ + length, id});
    return Step::kEntered;
}

void ChunkCursor::Leave() {
    if (levels_.empty()) return;
    place_ = levels_.back().end;
    levels_.pop_back();
}

std::string_view ChunkCursor::Take(std::size_t size) {
    const auto taken = body_.substr(place_, std::min(size, Remaining()));
    place_ += taken.size();
    return taken;
}

std::string ChunkCursor::GetPath() const {
    std::string path;
    for (const Level& level : levels_)
        path += fmt::format("{}{:#x}", path.empty() ? "" : "/", level.id);
    return path;
}

}  // namespace qn
