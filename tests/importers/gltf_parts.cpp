#include "tests/importers/gltf_parts.h"

#include "importers/gltf/gltf_document.h"
#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"

namespace qn::test {

using namespace qn::gltf;

MeshRead ReadMesh(const std::string& file, std::optional<std::filesystem::path> folder,
                  std::uint64_t memory) {
    MeshRead read;
    try {
        const auto source = SourceOf(file);
        const Document document = ReadDocument(*source);
        BufferStore store(document.model, *source, document.container, std::move(folder));
        const std::uint64_t most = gltf_limits::kFreeMemory + gltf_limits::kMemoryRatio * file.size();
        if (memory != kAnyMemory) store.GetAllowance().Take(most - memory, "");
        MeshReader reader(document.model, store, 1000);
        read.mesh = reader.Read(0);
        read.skipped = reader.GetSkippedCount();
    } catch (const GltfError& error) {
        read.error = error.what();
        read.kind = error.Kind();
    }
    return read;
}

}  // namespace qn::test
