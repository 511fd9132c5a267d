#pragma once

#include "frame/host/counted.h"

#include <cstddef>
#include <cstdint>

namespace qn {

class Context;
class String;

/// A tree of chunks: a 16-bit id and a payload each, nested. Every object is written once and named by
/// number. A stream either writes or reads; calls of the other kind fail.
class Stream : public Interface {
public:
    /// Opens a resource of a module (`handle` not null) or a file for reading; null if it is not there.
    static Counted<Stream> Create(void* handle, const wchar_t* name, int mode);

    /// Opens a chunk for writing below the present one. False if it cannot: then nothing is to be written or
    /// closed.
    virtual bool BeginChunk(unsigned id) = 0;
    /// Closes (writing) or leaves (reading, consumed or not) the present chunk.
    virtual void EndChunk() = 0;
    /// `count` items of `itemSize` bytes at the present position.
    virtual bool WriteData(const void* data, int itemSize, int count) = 0;
    virtual bool WriteInt(int value) = 0;
    /// Writes an object as a chunk with that id; null gives a chunk that reads as null.
    virtual bool WriteObjectChunk(Interface* object, Context* context, int id) = 0;
    /// Writes the object's number at the present position. `weak`: only if the object is written anyway.
    virtual bool WriteObjectNumber(Interface* object, Context* context, bool weak) = 0;

    /// Enters the next chunk of this level; false at its end.
    virtual bool NextChunk() = 0;
    virtual int GetChunkId() const = 0;
    /// Whole items read, never past the present chunk's end.
    virtual int ReadData(void* data, int itemSize, int count) = 0;
    virtual bool ReadInt(int& value) = 0;
    /// Bytes of the present chunk that are still to be read.
    virtual std::size_t Remaining() const = 0;
    /// The object of the present object chunk, or null.
    virtual Counted<Interface> ReadObject(Context* context) = 0;
    /// The object whose number stands at the present position, or null.
    virtual Counted<Interface> ReadObjectNumber(Context* context) = 0;
    /// Marks the stream as failed with a text that says what, where and what was expected; gives false.
    virtual bool Fail(const String& text) = 0;
    virtual bool HasFailed() const = 0;

    const char* GetInterfaceName() const override { return "k3_stream"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn
