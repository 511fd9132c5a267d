#pragma once

#include "engine/stream/block.h"
#include "engine/stream/load_report.h"
#include "engine/stream/pointer_index.h"
#include "engine/stream/record_order.h"
#include "frame/host/context.h"
#include "frame/host/object_writer.h"
#include "frame/host/stream.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace qn {

/// Writes a graph of objects: each once, named by number. Bodies are written one after the other from a list
/// of work, never inside each other, so depth costs nothing. A map or array that a class hands to
/// `WriteObjectChunk` is written as it is at that moment, for classes change such a collection for the time
/// of the call.
class StreamWriter final : public Stream {
public:
    StreamWriter(std::string name, Context& context, bool expandGenerated);
    ~StreamWriter() override;

    /// The file with everything that `root` reaches; empty text after a failure, which is in the context.
    std::string Write(Interface& root);
    /// Whether nodes that a generator made are to be stored, too.
    bool ExpandsGenerated() const { return expandGenerated_; }
    /// Whether the object will not be in the file: nothing can write it, or `weak` values alone name it.
    bool LeavesOut(Interface& object, bool weak) const;
    const SaveReport& GetReport() const { return report_; }

    bool BeginChunk(unsigned id) override;
    void EndChunk() override;
    bool WriteData(const void* data, int itemSize, int count) override;
    bool WriteInt(int value) override;
    bool WriteObjectChunk(Interface* object, Context* context, int id) override;
    bool WriteObjectNumber(Interface* object, Context* context, bool weak) override;
    bool NextChunk() override { return false; }
    int GetChunkId() const override;
    int ReadData(void*, int, int) override { return 0; }
    bool ReadInt(int& value) override;
    std::size_t Remaining() const override { return 0; }
    Counted<Interface> ReadObject(Context*) override { return {}; }
    Counted<Interface> ReadObjectNumber(Context*) override { return {}; }
    bool Fail(const String& text) override;
    bool HasFailed() const override { return failed_; }

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    struct Record {
        std::size_t begin = 0;  // of the body in bytes_
        std::uint32_t length = 0;
        std::uint32_t classNumber = 0;
        bool saved = false;
    };
    struct StoredClass {
        std::string key;
        const ObjectWriter* writer;  // null: its objects save themselves
    };
    struct Link {
        std::size_t place;  // of a number: in the body while that is written, then in bytes_
        std::uint32_t target;
    };
    struct WeakLink {
        std::size_t place;
        Interface* target;
    };
    struct OpenChunk {
        std::size_t begin;  // of the payload
        int id;
    };
    /// A body that is being written.
    struct Body {
        std::uint32_t record = 0;
        std::string bytes;
        std::vector<Link> links;
        std::vector<WeakLink> weakLinks;
        std::vector<OpenChunk> chunks;
    };

    bool FailWith(LoadFailure kind, const std::string& cause);
    /// Reports how much is done, never less than before; false after a cancellation.
    bool GoesOn(double done);
    bool Append(const void* data, std::size_t size);
    std::uint32_t Register(Interface& object);
    std::uint32_t ClassNumberOf(const Interface& object);
    std::uint32_t AddClass(const char* key, const Interface& object);
    bool WriteBodies(Interface& root);
    /// Forgets everything but the weak links that lead nowhere; false if there is none, or if they are known.
    bool LearnLooseEnds();
    bool WriteBody(std::uint32_t record);
    ResultEnum SaveObject(std::uint32_t record);
    void KeepBody(Body& body);
    /// Writes the number of the object's record, which is made on demand; gives the record, kNoRecord for
    /// null.
    std::uint32_t WriteNumberOf(Interface* object);
    void PatchNumbers(const std::vector<std::uint32_t>& order);
    std::string Assemble(const std::vector<std::uint32_t>& order);
    /// Appends the bodies, packed in blocks, and their rows; false after a cancellation.
    bool PackBodies(const std::vector<std::uint32_t>& order, std::vector<scene_file::BlockRow>& rows,
                    std::string& blocks);

    const std::string name_;
    Context& context_;
    const bool expandGenerated_;
    bool failed_ = false;
    double done_ = 0;  // of all work, as reported
    SaveReport report_;

    std::deque<Body> open_;  // bodies in work, the outermost first; kept for their memory
    std::size_t openCount_ = 0;
    std::string bytes_;  // finished bodies
    std::vector<Record> records_;
    std::vector<Counted<Interface>> objects_;         // beside records_
    std::vector<Counted<Interface>> weakTargets_;     // so that no address is used twice
    std::unordered_set<const Interface*> looseEnds_;  // named by weak values alone
    PointerIndex recordOf_;
    scene_file::ReferenceGraph graph_;
    std::vector<std::size_t> places_;  // of the numbers, beside the graph's targets
    std::vector<WeakLink> weakLinks_;
    std::vector<StoredClass> classes_;
    std::unordered_map<std::string, std::uint32_t> classNumberOf_;
    std::unordered_map<const char*, std::uint32_t> classNumberOfText_;  // the same by the text's address
};

/// Whether a reader of what is written here will find the object. Classes that leave out what is not stored
/// are stored the same way again after a load.
bool IsStored(Stream* stream, Interface* object, bool weak);

}  // namespace qn
