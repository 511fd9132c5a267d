#pragma once

#include "frame/host/stream.h"
#include "frame/host/string.h"

#include <memory>
#include <string>
#include <string_view>

namespace qn {

/// Plain bytes for reading: a resource or a whole file. It has no chunks and no objects, and refuses to
/// write.
class ByteStream final : public Stream {
public:
    explicit ByteStream(std::shared_ptr<const std::string> bytes);
    static Counted<ByteStream> FromBytes(std::string bytes);
    /// The whole of a regular file; null if it is not there, no file, or cannot be read.
    static Counted<ByteStream> OpenFile(const String& path);

    /// What is still to be read; valid while the stream lives.
    std::string_view Rest() const;
    const String& GetFailureText() const { return failureText_; }

    bool BeginChunk(unsigned id) override;
    void EndChunk() override;
    bool WriteData(const void* data, int itemSize, int count) override;
    bool WriteInt(int value) override;
    bool WriteObjectChunk(Interface* object, Context* context, int id) override;
    bool WriteObjectNumber(Interface* object, Context* context, bool weak) override;
    bool NextChunk() override;
    int GetChunkId() const override;
    int ReadData(void* data, int itemSize, int count) override;
    /// Four bytes, the lowest first.
    bool ReadInt(int& value) override;
    std::size_t Remaining() const override { return Rest().size(); }
    Counted<Interface> ReadObject(Context* context) override;
    Counted<Interface> ReadObjectNumber(Context* context) override;
    bool Fail(const String& text) override;
    bool HasFailed() const override { return failed_; }

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    std::shared_ptr<const std::string> bytes_;
    std::size_t position_ = 0;
    String failureText_;
    bool failed_ = false;
};

/// All that is left in the stream, read to its end (or to the end of its present chunk).
std::string ReadToEnd(Stream& stream);

}  // namespace qn
