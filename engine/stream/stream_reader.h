#pragma once

#include "engine/scene/ancestor_hints.h"
#include "engine/stream/chunk_cursor.h"
#include "engine/stream/container.h"
#include "engine/stream/load_report.h"
#include "engine/stream/object_factory.h"
#include "frame/host/context.h"
#include "frame/host/stream.h"

#include <string>
#include <string_view>
#include <vector>

namespace qn {

/// Reads the objects of one scene file: makes all of them, then reads their bodies in file order, so that
/// each object is complete when another one asks for it, but for rings. Counts all objects until it ends.
class StreamReader final : public Stream {
public:
    /// `name` stands in front of messages; `file` and `context` are borrowed. Checksums are passed over in
    /// fuzzing alone.
    StreamReader(std::string name, std::string_view file, Context& context, bool verifyChecksums = true);
    ~StreamReader() override;

    /// Takes this object for the root in place of a new one. Fails if the file's root is of another class.
    void SetRoot(Interface& root) { givenRoot_ = Counted<Interface>(&root); }
    /// False after a failure, which is in the context; the objects are then taken apart.
    bool Read();
    /// The root, null before and after a failed `Read`.
    Interface* GetRoot() const;
    const LoadReport& GetReport() const { return report_; }
    /// Of the nodes of this load.
    k3::AncestorHints& GetAncestors() { return ancestors_; }

    bool BeginChunk(unsigned) override { return false; }
    void EndChunk() override;
    bool WriteData(const void*, int, int) override { return false; }
    bool WriteInt(int) override { return false; }
    bool WriteObjectChunk(Interface*, Context*, int) override { return false; }
    bool WriteObjectNumber(Interface*, Context*, bool) override { return false; }
    bool NextChunk() override;
    int GetChunkId() const override { return cursor_.GetId(); }
    int ReadData(void* data, int itemSize, int count) override;
    bool ReadInt(int& value) override;
    std::size_t Remaining() const override { return failed_ ? 0 : cursor_.Remaining(); }
    Counted<Interface> ReadObject(Context* context) override { return ReadObjectNumber(context); }
    Counted<Interface> ReadObjectNumber(Context* context) override;
    bool Fail(const String& text) override;
    bool HasFailed() const override { return failed_; }

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    bool FailAt(LoadFailure kind, std::uint64_t offset, const std::string& cause);
    /// At the present place of the present body.
    bool FailHere(LoadFailure kind, const std::string& cause);
    bool MakeObjects();
    bool MakeObject(std::size_t object, ObjectFactory& factory);
    bool ReadBodies();
    bool ReadBody(std::size_t object, std::string_view body);
    ResultEnum LoadObject(std::size_t object);
    bool OpenNextBlock();
    bool GoesOn(std::size_t object);
    void TakeApart();

    const std::string name_;
    const std::string_view file_;
    Context& context_;
    const bool verifyChecksums_;
    const bool inertGenerators_;
    bool failed_ = false;
    LoadReport report_;
    k3::AncestorHints ancestors_;
    Counted<Interface> givenRoot_;
    scene_file::Container container_;
    std::vector<ObjectFactory> factories_;     // by class
    std::vector<Counted<Interface>> objects_;  // by number - 1; null where the class is unknown

    // The body that is being read.
    std::size_t object_ = 0;
    std::size_t nextBlock_ = 0;
    std::string unpacked_;
    std::string_view content_;      // of the present block
    std::size_t contentPlace_ = 0;  // where the next body begins
    std::size_t bodyPlace_ = 0;     // where the present one began
    bool inBody_ = false;
    ChunkCursor cursor_;
};

}  // namespace qn
