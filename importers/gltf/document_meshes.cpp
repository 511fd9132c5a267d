#include "importers/gltf/document_reader.h"
#include "importers/gltf/gltf_limits.h"

namespace qn::gltf {

void DocumentReader::ReadMeshes(JsonValue& value) {
    static constexpr Row<Mesh> kRows[] = {
        {"name", [](auto& r, Mesh& m, auto& v) { m.name = r.ReadName(v); }},
        {"primitives",
         [](auto& r, Mesh& m, auto& v) {
             r.RefuseSecond(m.primitiveCount == 0);
             m.firstPrimitive = static_cast<std::uint32_t>(r.model_.primitives.size());
             r.json_.Elements(v, [&](std::uint64_t, JsonValue& primitive) { r.ReadPrimitive(m, primitive); });
         }},
        {"extras", [](auto& r, Mesh& m, auto& v) { m.extras = r.ReadExtras(v); }},
    };
    ReadList(value, model_.meshes, kRows, gltf_limits::kMostOthers);
}

void DocumentReader::ReadPrimitive(Mesh& mesh, JsonValue& value) {
    static constexpr Row<Primitive> kAttributes[] = {
        {"POSITION", [](auto& r, Primitive& p, auto& v) { p.positions = r.json_.Index(v); }},
        {"NORMAL", [](auto& r, Primitive& p, auto& v) { p.normals = r.json_.Index(v); }},
    };
    static constexpr Row<Primitive> kPackedAttributes[] = {
        {"POSITION", [](auto& r, Primitive& p, auto& v) { p.dracoPositions = r.json_.Index(v); }},
        {"NORMAL", [](auto& r, Primitive& p, auto& v) { p.dracoNormals = r.json_.Index(v); }},
    };
    static constexpr Row<Primitive> kDraco[] = {
        {"bufferView", [](auto& r, Primitive& p, auto& v) { p.dracoView = r.json_.Index(v); }},
        {"attributes", [](auto& r, Primitive& p, auto& v) { r.ReadObject(v, p, kPackedAttributes); }},
    };
    static constexpr Row<Primitive> kExtensions[] = {
        {"KHR_draco_mesh_compression", [](auto& r, Primitive& p, auto& v) { r.ReadObject(v, p, kDraco); }},
    };
    static constexpr Row<Primitive> kRows[] = {
        {"attributes", [](auto& r, Primitive& p, auto& v) { r.ReadObject(v, p, kAttributes); }},
        {"indices", [](auto& r, Primitive& p, auto& v) { p.indices = r.json_.Index(v); }},
        {"material", [](auto& r, Primitive& p, auto& v) { p.material = r.json_.Index(v); }},
        {"mode", [](auto& r, Primitive& p, auto& v) { p.mode = static_cast<int>(r.json_.UpTo(v, 6)); }},
        {"extensions", [](auto& r, Primitive& p, auto& v) { r.ReadObject(v, p, kExtensions); }},
    };
    if (model_.primitives.size() >= gltf_limits::kMostOthers) FailTooMany(gltf_limits::kMostOthers);
    ReadObject(value, model_.primitives.emplace_back(), kRows);
    ++mesh.primitiveCount;
}

void DocumentReader::ReadMaterials(JsonValue& value) {
    static constexpr Row<Material> kRoughness[] = {
        {"baseColorFactor",
         [](auto& r, Material& m, auto& v) {
             const std::uint32_t first = r.ReadNumbers(v, 4);
             for (std::size_t i = 0; i < 4; ++i)
                 m.colour[i] = static_cast<float>(r.model_.numbers[first + i]);
             r.model_.numbers.resize(first);
         }},
    };
    static constexpr Row<Material> kRows[] = {
        {"name", [](auto& r, Material& m, auto& v) { m.name = r.ReadName(v); }},
        {"pbrMetallicRoughness", [](auto& r, Material& m, auto& v) { r.ReadObject(v, m, kRoughness); }},
        {"alphaMode", [](auto& r, Material& m, auto& v) { m.isBlended = r.json_.String(v) == "BLEND"; }},
        {"extras", [](auto& r, Material& m, auto& v) { m.extras = r.ReadExtras(v); }},
    };
    ReadList(value, model_.materials, kRows, gltf_limits::kMostOthers);
}

}  // namespace qn::gltf
