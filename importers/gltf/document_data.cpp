#include "importers/gltf/document_reader.h"
#include "importers/gltf/gltf_limits.h"

#include <algorithm>
#include <iterator>

namespace qn::gltf {
namespace {

constexpr std::uint64_t kWidestStride = 0xffff;

struct ElementType {
    std::string_view name;
    std::uint32_t components;
};
constexpr ElementType kElementTypes[] = {{"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4},
                                         {"MAT2", 4},   {"MAT3", 9}, {"MAT4", 16}};

/// A place or a length in a buffer.
std::uint64_t ReadByte(JsonReader& json, JsonValue& value) {
    return json.UpTo(value, gltf_limits::kLargestBuffer, LoadFailure::kLimit);
}

}  // namespace

void DocumentReader::ReadBuffers(JsonValue& value) {
    static constexpr Row<Buffer> kPacked[] = {
        {"fallback", [](auto& r, Buffer& b, auto& v) { b.isFallback = r.json_.Bool(v); }},
    };
    static constexpr Row<Buffer> kExtensions[] = {
        {"EXT_meshopt_compression", [](auto& r, Buffer& b, auto& v) { r.ReadObject(v, b, kPacked); }},
    };
    static constexpr Row<Buffer> kRows[] = {
        {"uri", [](auto& r, Buffer& b, auto& v) { b.uri = r.json_.String(v), b.hasUri = true; }},
        {"byteLength", [](auto& r, Buffer& b, auto& v) { b.length = ReadByte(r.json_, v); }},
        {"extensions", [](auto& r, Buffer& b, auto& v) { r.ReadObject(v, b, kExtensions); }},
    };
    ReadList(value, model_.buffers, kRows, gltf_limits::kMostOthers);
}

void DocumentReader::ReadViews(JsonValue& value) {
    static constexpr Row<BufferView> kPacked[] = {
        {"buffer", [](auto& r, BufferView& b, auto& v) { b.packedBuffer = r.json_.Index(v); }},
        {"byteOffset", [](auto& r, BufferView& b, auto& v) { b.packedOffset = ReadByte(r.json_, v); }},
        {"byteLength", [](auto& r, BufferView& b, auto& v) { b.packedLength = ReadByte(r.json_, v); }},
        {"byteStride",
         [](auto& r, BufferView& b, auto& v) {
             b.packedStride = static_cast<std::uint32_t>(r.json_.UpTo(v, kWidestStride));
         }},
        {"count", [](auto& r, BufferView& b, auto& v) { b.packedCount = r.json_.Index(v); }},
        {"mode", [](auto& r, BufferView& b, auto& v) { b.packedMode = r.json_.String(v); }},
        {"filter", [](auto& r, BufferView& b, auto& v) { b.packedFilter = r.json_.String(v); }},
    };
    static constexpr Row<BufferView> kExtensions[] = {
        {"EXT_meshopt_compression", [](auto& r, BufferView& b, auto& v) { r.ReadObject(v, b, kPacked); }},
    };
    static constexpr Row<BufferView> kRows[] = {
        {"buffer", [](auto& r, BufferView& b, auto& v) { b.buffer = r.json_.Index(v); }},
        {"byteOffset", [](auto& r, BufferView& b, auto& v) { b.offset = ReadByte(r.json_, v); }},
        {"byteLength", [](auto& r, BufferView& b, auto& v) { b.length = ReadByte(r.json_, v); }},
        {"byteStride",
         [](auto& r, BufferView& b, auto& v) {
             b.stride = static_cast<std::uint32_t>(r.json_.UpTo(v, kWidestStride));
         }},
        {"extensions", [](auto& r, BufferView& b, auto& v) { r.ReadObject(v, b, kExtensions); }},
    };
    ReadList(value, model_.views, kRows, gltf_limits::kMostOthers);
}

void DocumentReader::ReadAccessors(JsonValue& value) {
    static constexpr Row<Sparse> kSparseIndices[] = {
        {"bufferView", [](auto& r, Sparse& s, auto& v) { s.indexView = r.json_.Index(v); }},
        {"byteOffset", [](auto& r, Sparse& s, auto& v) { s.indexOffset = ReadByte(r.json_, v); }},
        {"componentType",
         [](auto& r, Sparse& s, auto& v) { s.indexType = static_cast<int>(r.json_.UpTo(v, 0xffff)); }},
    };
    static constexpr Row<Sparse> kSparseValues[] = {
        {"bufferView", [](auto& r, Sparse& s, auto& v) { s.valueView = r.json_.Index(v); }},
        {"byteOffset", [](auto& r, Sparse& s, auto& v) { s.valueOffset = ReadByte(r.json_, v); }},
    };
    static constexpr Row<Sparse> kSparse[] = {
        {"count", [](auto& r, Sparse& s, auto& v) { s.count = r.json_.Index(v); }},
        {"indices", [](auto& r, Sparse& s, auto& v) { r.ReadObject(v, s, kSparseIndices); }},
        {"values", [](auto& r, Sparse& s, auto& v) { r.ReadObject(v, s, kSparseValues); }},
    };
    static constexpr Row<Accessor> kRows[] = {
        {"bufferView", [](auto& r, Accessor& a, auto& v) { a.view = r.json_.Index(v); }},
        {"byteOffset", [](auto& r, Accessor& a, auto& v) { a.offset = ReadByte(r.json_, v); }},
        {"componentType",
         [](auto& r, Accessor& a, auto& v) { a.componentType = static_cast<int>(r.json_.UpTo(v, 0xffff)); }},
        {"count", [](auto& r, Accessor& a, auto& v) { a.count = r.json_.Index(v); }},
        {"normalized", [](auto& r, Accessor& a, auto& v) { a.normalized = r.json_.Bool(v); }},
        {"type",
         [](auto& r, Accessor& a, auto& v) {
             const std::string_view type = r.json_.String(v);
             const auto* known = std::find_if(std::begin(kElementTypes), std::end(kElementTypes),
                                              [&](const ElementType& row) { return row.name == type; });
             if (known == std::end(kElementTypes))
                 r.json_.Fail("expected SCALAR, VEC2 to VEC4 or MAT2 to MAT4, found \"" + std::string(type) +
                              "\"");
             a.components = known->components;
         }},
        {"sparse", [](auto& r, Accessor& a, auto& v) { r.ReadObject(v, a.sparse, kSparse); }},
    };
    ReadList(value, model_.accessors, kRows, gltf_limits::kMostOthers);
}

}  // namespace qn::gltf
