#include "exporters/gltf/gltf_export.h"

#include "exporters/gltf/buffer_owner.h"
#include "exporters/gltf/buffer_writer.h"
#include "exporters/gltf/document_writer.h"
#include "exporters/gltf/export_model.h"
#include "exporters/gltf/mesh_plan.h"
#include "exporters/gltf/sink.h"

#include <array>
#include <filesystem>
#include <limits>

namespace qn::gltf_export {
namespace {

constexpr std::uint32_t kMagic = 0x46546c67, kVersion = 2;
constexpr std::uint32_t kJsonChunk = 0x4e4f534a, kBinaryChunk = 0x004e4942;
constexpr std::uint64_t kHeaderBytes = 12, kChunkHeadBytes = 8;
constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

template <std::size_t kCount>
std::string_view BytesOf(const std::array<std::uint32_t, kCount>& words) {
    return {reinterpret_cast<const char*>(words.data()), sizeof(words)};
}

void Require(bool isDone) {
    if (!isDone) throw ExportFailure(Outcome::kNotWritten, std::string());  // the context knows why
}

/// What the binary container adds to the text and the buffer, the text's padding apart.
void CheckSize(const MeshPlan& plan, const Options& options) {
    if (plan.BufferBytes() >
        options.mostBytes - std::min(options.mostBytes, kHeaderBytes + 2 * kChunkHeadBytes))
        throw ExportFailure(Outcome::kLimit, "the meshes take " + std::to_string(plan.BufferBytes()) +
                                                 " bytes, and a .glb holds " +
                                                 std::to_string(options.mostBytes) +
                                                 "; a .gltf keeps its buffer in a file of its own");
}

class Export {
public:
    Export(const ExportModel& model, const MeshPlan& plan, const std::string& path, Context& context)
        : model_(model), plan_(plan), path_(path), context_(context) {}

    void WriteBinary(std::uint64_t mostBytes) {
        SafeFile file(context_);
        Require(file.Open(path_));
        Sink sink(file, mostBytes);
        const std::array<std::uint32_t, 5> head{kMagic, kVersion, 0, 0, kJsonChunk};
        sink.Write(BytesOf(head));
        WriteDocument(model_, plan_, std::string(), sink, context_);
        while (sink.Count() % 4 != 0)
            sink.Text() += ' ';
        const std::uint64_t textBytes = sink.Count() - sizeof(head);
        if (plan_.BufferBytes() > 0) {
            const std::array<std::uint32_t, 2> bufferHead{static_cast<std::uint32_t>(plan_.BufferBytes()),
                                                          kBinaryChunk};
            sink.Write(BytesOf(bufferHead));
            WriteBuffer(plan_, sink);
        }
        sink.Flush();
        const std::array<std::uint32_t, 2> sizes{static_cast<std::uint32_t>(sink.Count()),
                                                 static_cast<std::uint32_t>(textBytes)};
        Require(file.WriteAt(2 * sizeof(std::uint32_t), BytesOf(sizes)) && file.Flush() && file.Commit());
    }

    void WriteText() {
        const bool hasBuffer = plan_.BufferBytes() > 0;
        SafeFile text(context_), buffer(context_);
        Require(text.Open(path_));
        const std::filesystem::path bufferPath =
            std::filesystem::path(path_).parent_path() / BufferNameOf(path_);
        if (hasBuffer) {
            KeepForeignBuffer(bufferPath);
            Require(buffer.Open(bufferPath.string()));
            Sink sink(buffer, kUnlimited);
            WriteBuffer(plan_, sink);
            sink.Flush();
            Require(buffer.Flush());
        }
        Sink sink(text, kUnlimited);
        WriteDocument(model_, plan_, UriOf(BufferNameOf(path_)), sink, context_);
        sink.Flush();
        Require(text.Flush() && (hasBuffer ? SafeFile::CommitBoth(buffer, text) : text.Commit()));
    }

private:
    /// A buffer that no document of this name knows belongs to another one.
    void KeepForeignBuffer(const std::filesystem::path& buffer) const {
        std::error_code error;
        if (std::filesystem::exists(buffer, error) && !NamesBuffer(path_, buffer.filename().string()))
            throw ExportFailure(Outcome::kNotWritten, buffer.filename().string() +
                                                          " stands there already and belongs to another file;"
                                                          " choose another name");
    }

    const ExportModel& model_;
    const MeshPlan& plan_;
    const std::string& path_;
    Context& context_;
};

}  // namespace

std::string BufferNameOf(const std::string& path) {
    return std::filesystem::path(path).filename().replace_extension(".bin").string();
}

Result WriteGltf(const Assembly& assembly, const std::string& path, const Options& options,
                 Context& context) {
    Result result;
    try {
        ExportModel model = ReadModel(assembly, options);
        const MeshPlan plan = options.structureOnly ? MeshPlan() : MeshPlan(model);
        Export run(model, plan, path, context);
        if (options.isBinary) {
            CheckSize(plan, options);
            run.WriteBinary(options.mostBytes);
        } else {
            run.WriteText();
        }
        result.warnings = std::move(model.warnings);
    } catch (const ExportFailure& failure) {
        result.outcome = failure.What();
        result.error = failure.what();
    } catch (const std::bad_alloc&) {
        result.outcome = Outcome::kLimit;
        result.error = "there is not enough memory";
    }
    return result;
}

}  // namespace qn::gltf_export
