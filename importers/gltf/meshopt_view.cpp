#include "importers/gltf/meshopt_view.h"

#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"

#include <meshoptimizer.h>

#include <algorithm>
#include <iterator>

namespace qn::gltf {
namespace {

using Decode = int (*)(void* out, std::size_t count, std::size_t stride, const unsigned char* packed,
                       std::size_t size);
struct Mode {
    std::string_view name;
    Decode decode;
    bool (*accepts)(const BufferView& view);
    std::uint64_t mostRatio;  ///< unpacked size to packed size
};

// The most that the codecs can reach. Attributes: a byte of group headers stands for four groups of 16 equal
// bytes. Triangles: a code byte for each triangle, at most 3 indices of 4 bytes. Indices: a byte for each.
constexpr std::uint64_t kAttributesRatio = 4 * 16, kTrianglesRatio = 3 * 4, kIndicesRatio = 4;
static_assert(std::max({kAttributesRatio, kTrianglesRatio, kIndicesRatio}) == gltf_limits::kLargestRatio);

constexpr std::uint32_t kWidestVertex = 256;

bool IsIndexSize(const BufferView& view) {
    return view.packedStride == 2 || view.packedStride == 4;
}

constexpr Mode kModes[] = {
    {"ATTRIBUTES",
     [](void* out, std::size_t count, std::size_t stride, const unsigned char* packed, std::size_t size) {
         return meshopt_decodeVertexBuffer(out, count, stride, packed, size);
     },
     [](const BufferView& view) {
         return view.packedStride > 0 && view.packedStride <= kWidestVertex && view.packedStride % 4 == 0;
     },
     kAttributesRatio},
    {"TRIANGLES",
     [](void* out, std::size_t count, std::size_t stride, const unsigned char* packed, std::size_t size) {
         return meshopt_decodeIndexBuffer(out, count, stride, packed, size);
     },
     [](const BufferView& view) { return IsIndexSize(view) && view.packedCount % 3 == 0; }, kTrianglesRatio},
    {"INDICES",
     [](void* out, std::size_t count, std::size_t stride, const unsigned char* packed, std::size_t size) {
         return meshopt_decodeIndexSequence(out, count, stride, packed, size);
     },
     &IsIndexSize, kIndicesRatio},
};

struct Filter {
    std::string_view name;
    void (*apply)(void* bytes, std::size_t count, std::size_t stride);
    std::uint32_t strides[2];  ///< that it knows; 0, 0: all
};
constexpr Filter kFilters[] = {
    {"", nullptr, {0, 0}},
    {"NONE", nullptr, {0, 0}},
    {"OCTAHEDRAL", &meshopt_decodeFilterOct, {4, 8}},
    {"QUATERNION", &meshopt_decodeFilterQuat, {8, 8}},
    {"EXPONENTIAL", &meshopt_decodeFilterExp, {0, 0}},
};

template <class Row, std::size_t N>
const Row& Find(const Row (&rows)[N], const std::string& name, const char* member) {
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.name == name; });
    if (found == std::end(rows)) FailAt(member, "\"" + name + "\" is not known");
    return *found;
}

}  // namespace

std::vector<std::uint8_t> UnpackView(const BufferView& view, std::span<const std::uint8_t> packed,
                                     Allowance& allowance) {
    const Mode& mode = Find(kModes, view.packedMode, "/mode");
    const Filter& filter = Find(kFilters, view.packedFilter, "/filter");
    if (!mode.accepts(view))
        throw GltfError("elements of " + std::to_string(view.packedStride) + " bytes, " +
                        std::to_string(view.packedCount) + " of them, do not fit the mode " +
                        view.packedMode);
    const bool fits = filter.strides[0] == 0 || view.packedStride == filter.strides[0] ||
                      view.packedStride == filter.strides[1];
    if (filter.apply && (!fits || mode.name != "ATTRIBUTES"))
        throw GltfError("elements of " + std::to_string(view.packedStride) + " bytes do not fit the filter " +
                        view.packedFilter);
    const std::uint64_t size = std::uint64_t{view.packedCount} * view.packedStride;
    const std::uint64_t most = std::min(packed.size() * mode.mostRatio, gltf_limits::kLargestBuffer);
    if (size > most)
        throw GltfError(std::to_string(packed.size()) + " bytes of the mode " + view.packedMode +
                            " unpack to at most " + std::to_string(most) + ", these claim " +
                            std::to_string(size),
                        LoadFailure::kLimit);
    allowance.Take(size, "");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    if (view.packedCount == 0) return bytes;
    if (mode.decode(bytes.data(), view.packedCount, view.packedStride, packed.data(), packed.size()) != 0)
        throw GltfError("the packed bytes are damaged");
    if (filter.apply) filter.apply(bytes.data(), view.packedCount, view.packedStride);
    return bytes;
}

}  // namespace qn::gltf
