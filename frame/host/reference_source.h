#pragma once

#include "frame/host/counted.h"
#include "frame/host/extension.h"

namespace qn {

class ReferenceSource;

/// An event between objects.
struct Message {
    unsigned code = 0;
    Var value;
    Interface* sender = nullptr;  ///< borrowed
};

class ReferenceTarget : public Extension {
public:
    /// Both inert.
    virtual ResultEnum OnNotify(const Message& message);
    virtual ResultEnum OnNotify(ReferenceSource* source, unsigned code, unsigned argument);

    const char* GetInterfaceName() const override { return "k3_reftarget"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

/// What a stream can write and read back.
class SerializableI {
public:
    virtual ResultEnum Save(Stream* stream, Context* context) = 0;
    virtual ResultEnum Load(Stream* stream, Context* context) = 0;

protected:
    ~SerializableI() = default;
};

/// An object that can be stored, observed and cloned.
class ReferenceSource : public ReferenceTarget, public SerializableI {
public:
    /// Handles the host's own chunks (ids 0x01 to 0x0f) and skips unknown ones: kSuccess.
    virtual ResultEnum HandleChunk(int id, Stream* stream, Context* context);
    virtual void Clear();
    virtual bool IsShareable() const;
    virtual ResultEnum SaveToVar(Var& out, Context* context);
    virtual ResultEnum LoadFromVar(const Var& value, Context* context);
    /// A copy, or null where the class cannot be cloned.
    virtual Counted<ReferenceSource> Clone(unsigned mode) const;
    virtual void Notify(unsigned code, const Var& value);
    /// Writes parameters and metadata.
    ResultEnum Save(Stream* stream, Context* context) override;
    /// Calls `HandleChunk` for each chunk at this level; after a result below 1 it leaves the chunk, stops
    /// and gives that result.
    ResultEnum Load(Stream* stream, Context* context) override;

    /// kWrongClass unless the source is a `ReferenceSource`; else `CloneFrom`.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return "k3_refsource"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

protected:
    /// Copies parameters and metadata privately, ignores the flags, gives kSuccess.
    ResultEnum CloneFrom(const ReferenceSource& source, unsigned flags);
};

}  // namespace qn
