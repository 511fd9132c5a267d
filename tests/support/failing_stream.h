#pragma once

#include "frame/host/stream.h"
#include "frame/host/string.h"

#include <string>
#include <vector>

namespace qn::test {

/// A stream for writing that keeps a log of the calls, without bytes, and fails when told to:
/// "begin 1000", "int 5", "data 12", "object 1001 qn.graph.reference" ("null" for null), "number ...", "end".
class FailingStream final : public Stream {
public:
    /// Which kind of call fails; counted from 1 within its kind. Nothing fails without one of these.
    void FailBeginChunk(int call) { failingBegin_ = call; }
    void FailWrite(int call) { failingWrite_ = call; }
    void FailObject(int call) { failingObject_ = call; }

    const std::vector<std::string>& Log() const { return log_; }
    /// Chunks that were begun and not ended.
    int OpenChunks() const { return static_cast<int>(open_.size()); }

    bool BeginChunk(unsigned id) override;
    void EndChunk() override;
    bool WriteData(const void* data, int itemSize, int count) override;
    bool WriteInt(int value) override;
    bool WriteObjectChunk(Interface* object, Context* context, int id) override;
    bool WriteObjectNumber(Interface* object, Context* context, bool weak) override;
    bool NextChunk() override { return false; }
    int GetChunkId() const override { return open_.empty() ? 0 : open_.back(); }
    int ReadData(void*, int, int) override { return 0; }
    bool ReadInt(int&) override { return false; }
    std::size_t Remaining() const override { return 0; }
    Counted<Interface> ReadObject(Context*) override { return {}; }
    Counted<Interface> ReadObjectNumber(Context*) override { return {}; }
    bool Fail(const String& text) override;
    bool HasFailed() const override { return failed_; }

private:
    bool Note(int& calls, int failing, const std::string& line);
    std::vector<std::string> log_;
    std::vector<int> open_;
    int begins_ = 0, writes_ = 0, objects_ = 0;
    int failingBegin_ = 0, failingWrite_ = 0, failingObject_ = 0;
    bool failed_ = false;
};

}  // namespace qn::test
