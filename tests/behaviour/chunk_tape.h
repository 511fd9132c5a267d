#pragma once

#include "frame/host/counted.h"
#include "frame/host/stream.h"
#include "frame/host/string.h"

#include <string>
#include <vector>

namespace qn::test {

/// A stream that keeps the chunks of one level apart, as one object writes or reads them: id, bytes, objects.
/// Maps and arrays are kept as they were when they were written. Chunks below a chunk count as its content.
class ChunkTape final : public Stream {
public:
    struct Chunk {
        int id = 0;
        bool isObject = false;  ///< written by WriteObjectChunk
        std::string bytes;
        std::vector<Counted<Interface>> objects;  ///< in the order of writing; null entries stay
    };

    /// A tape for reading with one object chunk, which is entered already.
    static Counted<ChunkTape> Of(int id, Interface* object);

    /// From now on BeginChunk answers false for this id.
    void Refuse(int id) { refused_ = id; }
    const std::vector<Chunk>& Chunks() const { return chunks_; }
    /// The ids from 0x1000 on, in the order of writing.
    std::vector<int> OwnIds() const;
    /// The first chunk of that id, or null.
    const Chunk* Find(int id) const;
    /// The first object of the first chunk of that id, borrowed, or null.
    Interface* ObjectAt(int id) const;
    /// Goes to the first chunk of that id for reading; false if there is none.
    bool Enter(int id);

    bool BeginChunk(unsigned id) override;
    void EndChunk() override;
    bool WriteData(const void* data, int itemSize, int count) override;
    bool WriteInt(int value) override;
    bool WriteObjectChunk(Interface* object, Context* context, int id) override;
    bool WriteObjectNumber(Interface* object, Context* context, bool weak) override;
    bool NextChunk() override;
    int GetChunkId() const override;
    int ReadData(void* data, int itemSize, int count) override;
    bool ReadInt(int& value) override;
    std::size_t Remaining() const override;
    Counted<Interface> ReadObject(Context* context) override;
    Counted<Interface> ReadObjectNumber(Context* context) override;
    bool Fail(const String& text) override;
    bool HasFailed() const override { return failed_; }

private:
    const Chunk* Present() const;
    std::vector<Chunk> chunks_;
    int depth_ = 0;  // of chunks open for writing
    int refused_ = -1;
    int place_ = -1;  // of the chunk that is read
    std::size_t byte_ = 0, object_ = 0;
    bool failed_ = false;
};

}  // namespace qn::test
