#pragma once

#include "frame/host/stream.h"
#include "frame/host/string.h"

#include <string>
#include <string_view>
#include <vector>

namespace qn::test {

/// A stream that keeps nested chunks as bytes (id of 16 bits, length of 32 bits, payload), writes them, and
/// reads them again after `Rewind`. Knows no objects.
class NestedTape : public Stream {
public:
    /// BeginChunk answers false for this id, on the given call of it (counted from 1; 0: always).
    void Refuse(int id, int call = 0) { refused_ = id, refusedCall_ = call; }
    /// The write with this number fails, counted from 1.
    void FailWrite(int number) { failingWrite_ = number; }
    /// "100() 1000(1000(1002:8 1003:17))": ids in hex, payload sizes of chunks that are no lists.
    std::string Text(std::initializer_list<std::string_view> lists) const;
    const std::string& Bytes() const { return bytes_; }
    int OpenChunks() const { return static_cast<int>(open_.size()); }
    int Begun() const { return begun_; }
    int Ended() const { return ended_; }
    void Rewind();

    bool BeginChunk(unsigned id) override;
    void EndChunk() override;
    bool WriteData(const void* data, int itemSize, int count) override;
    bool WriteInt(int value) override { return WriteData(&value, 1, sizeof value); }
    bool WriteObjectChunk(Interface*, Context*, int) override { return false; }
    bool WriteObjectNumber(Interface*, Context*, bool) override { return false; }
    bool NextChunk() override;
    int GetChunkId() const override { return levels_.back().id; }
    int ReadData(void* data, int itemSize, int count) override;
    bool ReadInt(int& value) override { return ReadData(&value, 1, sizeof value) == sizeof value; }
    std::size_t Remaining() const override { return levels_.back().end - place_; }
    Counted<Interface> ReadObject(Context*) override { return {}; }
    Counted<Interface> ReadObjectNumber(Context*) override { return {}; }
    bool Fail(const String&) override { return false; }
    bool HasFailed() const override { return false; }

private:
    struct Level {
        int id;
        std::size_t end;
    };
    std::string bytes_;
    std::vector<std::size_t> open_;  // payloads of chunks open for writing
    std::vector<Level> levels_;      // while reading, the outermost is the tape itself
    std::size_t place_ = 0;
    bool reading_ = false;
    int refused_ = -1, refusedCall_ = 0, refusals_ = 0;
    int failingWrite_ = 0, writes_ = 0;
    int begun_ = 0, ended_ = 0;
};

/// A stream in which every chunk holds one object.
class OneObject final : public NestedTape {
public:
    Counted<Interface> ReadObject(Context*) override { return object; }
    Counted<Interface> object;
};

}  // namespace qn::test
