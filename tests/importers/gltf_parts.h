#pragma once

#include "frame/host/context.h"
#include "frame/host/object3d.h"
#include "importers/gltf/mesh_reader.h"
#include "tests/importers/gltf_text.h"

#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace qn::test {

/// A file with one mesh, as it is read.
struct MeshRead {
    Counted<k3::Mesh> mesh;
    std::size_t skipped = 0;
    std::string error;
    LoadFailure kind = LoadFailure::kNone;
};

inline constexpr std::uint64_t kAnyMemory = std::numeric_limits<std::uint64_t>::max();

/// In millimetres. With `memory` so many bytes are left of what the file may take.
MeshRead ReadMesh(const std::string& file, std::optional<std::filesystem::path> folder = {},
                  std::uint64_t memory = kAnyMemory);

/// Bytes, views and accessors of a file, in the order in which they are added.
class GltfParts {
public:
    /// A view of those bytes; `more` are further members.
    int View(const std::string& bytes, const std::string& more = "") {
        while (bytes_.size() % 4)
            bytes_ += '\0';
        views_ += (views_.empty() ? "" : ",") + std::string(R"({"buffer":0,"byteOffset":)") +
                  std::to_string(bytes_.size()) + R"(,"byteLength":)" + std::to_string(bytes.size()) + more +
                  "}";
        bytes_ += bytes;
        return viewCount_++;
    }
    int Accessor(const std::string& members) {
        accessors_ += (accessors_.empty() ? "{" : ",{") + members + "}";
        return accessorCount_++;
    }
    int Accessor(int view, int type, std::size_t count, const char* shape, const std::string& more = "") {
        return Accessor(R"("bufferView":)" + std::to_string(view) + R"(,"componentType":)" +
                        std::to_string(type) + R"(,"count":)" + std::to_string(count) + R"(,"type":")" +
                        shape + "\"" + more);
    }
    int Positions(const std::vector<float>& numbers) {
        return Accessor(View(BytesOf(numbers)), 5126, numbers.size() / 3, "VEC3");
    }
    int Corners(const std::vector<std::uint16_t>& numbers) {
        return Accessor(View(BytesOf(numbers)), 5123, numbers.size(), "SCALAR");
    }
    /// A binary file whose only mesh has those primitives.
    std::string File(const std::string& primitives, const std::string& more = "") const {
        return GlbFile(GltfText(R"("buffers":[{"byteLength":)" + std::to_string(bytes_.size()) +
                                R"(}],"bufferViews":[)" + views_ + R"(],"accessors":[)" + accessors_ +
                                R"(],"meshes":[{"primitives":[)" + primitives + "]}]" + more),
                       bytes_);
    }

private:
    std::string bytes_, views_, accessors_;
    int viewCount_ = 0, accessorCount_ = 0;
};

}  // namespace qn::test
