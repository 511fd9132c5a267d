#include "product/effectivity_ranges.h"

#include "frame/host/stream.h"
#include "product/lenient_chunk.h"

namespace qn::k3::effectivity_impl {
namespace {

constexpr int kRangeChunk = 0x1000;  // in a list, one for each range

// Chunks of a range, in the order in which they are written; read in any order.
constexpr int kStartChunk = 0x1000;
constexpr int kEndChunk = 0x1001;
constexpr int kBothChunk = 0x1002;  // in place of the other two where they are equal
constexpr int kStringsChunk = 0x1003;

template <class Value>
bool SaveValue(Stream* stream, int id, const Value& value) {
    const LenientChunk chunk(stream, id);
    return stream->WriteData(&value, 1, sizeof value);
}

bool SaveStrings(const std::vector<String>& strings, Stream* stream) {
    if (strings.empty()) return true;
    const LenientChunk chunk(stream, kStringsChunk);
    bool written = stream->WriteInt(static_cast<int>(strings.size()));
    for (std::size_t i = 0; written && i < strings.size(); ++i)
        written = strings[i].Save(stream, 0);
    return written;
}

template <class Value>
bool SaveRange(const Range<Value>& range, Stream* stream) {
    const LenientChunk chunk(stream, kRangeChunk);
    const bool written = range.mStart == range.mEnd ? SaveValue(stream, kBothChunk, range.mStart)
                                                    : SaveValue(stream, kStartChunk, range.mStart) &&
                                                          SaveValue(stream, kEndChunk, range.mEnd);
    return written && SaveStrings(range.mStrings, stream);
}

template <class Value>
bool LoadValue(Stream* stream, Value& value) {
    Value read = 0;
    constexpr int size = sizeof read;
    if (stream->ReadData(&read, 1, size) != size) return false;
    value = read;
    return true;
}

bool LoadStrings(std::vector<String>& strings, Stream* stream) {
    int count = 0;
    if (!stream->ReadInt(count) || count < 0) return false;
    for (int i = 0; i < count; ++i) {
        String text;
        if (!text.Load(stream)) return false;
        strings.push_back(text);
    }
    return true;
}

template <class Value>
bool LoadField(Range<Value>& range, int id, Stream* stream) {
    switch (id) {
        case kStartChunk:
            return LoadValue(stream, range.mStart);
        case kEndChunk:
            return LoadValue(stream, range.mEnd);
        case kBothChunk:
            if (!LoadValue(stream, range.mStart)) return false;
            range.mEnd = range.mStart;
            return true;
        case kStringsChunk:
            return LoadStrings(range.mStrings, stream);
        default:
            return true;
    }
}

template <class Value>
bool LoadRange(Range<Value>& range, Stream* stream) {
    bool read = true;
    while (read && stream->NextChunk()) {
        read = LoadField(range, stream->GetChunkId(), stream);
        stream->EndChunk();
    }
    return read;
}

}  // namespace

template <class Value>
ResultEnum SaveRanges(const std::vector<Range<Value>>& ranges, Stream* stream) {
    for (const Range<Value>& range : ranges)
        if (!SaveRange(range, stream)) return ResultEnum::kWriteFailed;
    return ResultEnum::kSuccess;
}

template <class Value>
ResultEnum LoadRanges(std::vector<Range<Value>>& ranges, Stream* stream) {
    bool read = true;
    while (read && stream->NextChunk()) {
        if (stream->GetChunkId() == kRangeChunk) read = LoadRange(ranges.emplace_back(), stream);
        stream->EndChunk();
    }
    return read ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

template ResultEnum SaveRanges(const std::vector<DateRange>&, Stream*);
template ResultEnum SaveRanges(const std::vector<LineRange>&, Stream*);
template ResultEnum LoadRanges(std::vector<DateRange>&, Stream*);
template ResultEnum LoadRanges(std::vector<LineRange>&, Stream*);

}  // namespace qn::k3::effectivity_impl
