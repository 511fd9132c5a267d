#pragma once

#include "engine/stream/stream_writer.h"
#include "frame/host/collections.h"
#include "frame/host/stream.h"
#include "frame/host/string.h"

#include <vector>

namespace qn::k3 {

/// Writes one chunk: opens it on construction, closes it at scope end, and remembers whether every write went
/// well.
class ChunkWriter {
public:
    ChunkWriter(Stream* stream, int id)
        : stream_(stream), open_(stream->BeginChunk(static_cast<unsigned>(id))) {}
    ~ChunkWriter() {
        if (open_) stream_->EndChunk();
    }
    ChunkWriter(const ChunkWriter&) = delete;
    ChunkWriter& operator=(const ChunkWriter&) = delete;

    ChunkWriter& Text(const String& text) { return Note(open_ && text.Save(stream_)); }
    ChunkWriter& Int(int value) { return Note(open_ && stream_->WriteInt(value)); }
    ChunkWriter& Bytes(const void* data, std::size_t itemSize, std::size_t count) {
        return Note(open_ && stream_->WriteData(data, static_cast<int>(itemSize), static_cast<int>(count)));
    }
    ChunkWriter& Number(Interface* object, Context* context, bool weak) {
        return Note(open_ && stream_->WriteObjectNumber(object, context, weak));
    }
    bool Ok() const { return open_ && ok_; }

private:
    ChunkWriter& Note(bool written) {
        ok_ = ok_ && written;
        return *this;
    }
    Stream* stream_;
    bool open_;
    bool ok_ = true;
};

/// Writes the numbers of those entries that the file will have, as one chunk; nothing if there is none.
inline bool WriteNumbers(Stream* stream, Context* context, int id, const InterfaceArray* list, bool weak) {
    std::vector<Interface*> stored;
    for (int i = 0; list && i < list->GetCount(); ++i)
        if (IsStored(stream, list->Get(i), weak)) stored.push_back(list->Get(i));
    if (stored.empty()) return true;
    ChunkWriter chunk(stream, id);
    for (Interface* object : stored)
        if (!chunk.Number(object, context, weak).Ok()) return false;
    return true;
}

/// Calls `take(Counted<Interface>)` for each object number up to the end of the present chunk.
template <class Take>
void ReadNumbers(Stream* stream, Context* context, Take&& take) {
    std::size_t left = stream->Remaining();
    while (left > 0 && !stream->HasFailed()) {
        take(stream->ReadObjectNumber(context));
        const std::size_t now = stream->Remaining();
        if (now >= left) return;
        left = now;
    }
}

/// The rest of the present chunk as items of `T`; fails the stream if it is no whole number of them.
template <class T>
bool ReadBlock(Stream* stream, std::vector<T>& out, const wchar_t* what) {
    const std::size_t bytes = stream->Remaining();
    const std::size_t count = bytes / sizeof(T);
    if (bytes % sizeof(T) != 0 || count > 0x7fffffff)
        return stream->Fail(String(what) + L": the block has no whole items");
    out.resize(count);
    if (count == 0) return true;
    const int items = static_cast<int>(count);
    if (stream->ReadData(out.data(), static_cast<int>(sizeof(T)), items) == items) return true;
    return stream->Fail(String(what) + L": the block ends early");
}

}  // namespace qn::k3
