#include "tests/support/nested_tape.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace qn::test {
namespace {

constexpr std::size_t kHeader = sizeof(std::uint16_t) + sizeof(std::uint32_t);

std::string Hex(int id) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%x", static_cast<unsigned>(id));
    return digits;
}

template <class T>
T ReadAt(const std::string& bytes, std::size_t place) {
    T value;
    std::memcpy(&value, bytes.data() + place, sizeof value);
    return value;
}

std::string TextOf(const std::string& bytes, std::size_t from, std::size_t end, const std::string& path,
                   const std::vector<std::string_view>& lists) {
    std::string text;
    while (from + kHeader <= end) {
        const int id = ReadAt<std::uint16_t>(bytes, from);
        const std::size_t size = ReadAt<std::uint32_t>(bytes, from + sizeof(std::uint16_t));
        const std::string name = Hex(id), inner = path.empty() ? name : path + "/" + name;
        const bool isList = std::find(lists.begin(), lists.end(), inner) != lists.end();
        from += kHeader;
        text += (text.empty() ? "" : " ") + name;
        text +=
            isList ? "(" + TextOf(bytes, from, from + size, inner, lists) + ")" : ":" + std::to_string(size);
        from += size;
    }
    return text;
}

}  // namespace

std::string NestedTape::Text(std::initializer_list<std::string_view> lists) const {
    return TextOf(bytes_, 0, bytes_.size(), "", lists);
}

void NestedTape::Rewind() {
    reading_ = true;
    place_ = 0;
    levels_ = {{0, bytes_.size()}};
}

bool NestedTape::BeginChunk(unsigned id) {
    if (static_cast<int>(id) == refused_ && (++refusals_ == refusedCall_ || refusedCall_ == 0)) return false;
    const auto stored = static_cast<std::uint16_t>(id);
    bytes_.append(reinterpret_cast<const char*>(&stored), sizeof stored);
    bytes_.append(sizeof(std::uint32_t), '\0');
    open_.push_back(bytes_.size());
    ++begun_;
    return true;
}

void NestedTape::EndChunk() {
    if (reading_) {
        place_ = levels_.back().end;
        levels_.pop_back();
        return;
    }
    ++ended_;
    const auto size = static_cast<std::uint32_t>(bytes_.size() - open_.back());
    std::memcpy(bytes_.data() + open_.back() - sizeof size, &size, sizeof size);
    open_.pop_back();
}

bool NestedTape::WriteData(const void* data, int itemSize, int count) {
    if (++writes_ == failingWrite_) return false;
    bytes_.append(static_cast<const char*>(data), static_cast<std::size_t>(itemSize * count));
    return true;
}

bool NestedTape::NextChunk() {
    if (Remaining() < kHeader) return false;
    const int id = ReadAt<std::uint16_t>(bytes_, place_);
    const std::size_t size = ReadAt<std::uint32_t>(bytes_, place_ + sizeof(std::uint16_t));
    place_ += kHeader;
    levels_.push_back({id, place_ + size});
    return true;
}

int NestedTape::ReadData(void* data, int itemSize, int count) {
    const int items = std::min(count, static_cast<int>(Remaining()) / itemSize);
    const auto size = static_cast<std::size_t>(items * itemSize);
    std::memcpy(data, bytes_.data() + place_, size);
    place_ += size;
    return items;
}

}  // namespace qn::test
