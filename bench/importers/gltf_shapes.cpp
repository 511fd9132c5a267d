#include "bench/importers/gltf_shapes.h"

#include <algorithm>
#include <vector>

namespace qn::bench {
namespace {

constexpr std::int64_t kMeshes = 100, kGroupSize = 100;

/// One triangle, shared by all meshes.
constexpr const char* kGeometry =
    R"("buffers":[{"byteLength":36,"uri":"data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA"}],)"
    R"("bufferViews":[{"buffer":0,"byteLength":36}],)"
    R"("accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]}],)";

std::string Meshes() {
    std::string text = "\"meshes\":[";
    for (std::int64_t i = 0; i < kMeshes; ++i)
        text += std::string(i ? "," : "") + R"({"name":"part )" + std::to_string(i) +
                R"(","primitives":[{"attributes":{"POSITION":0}}]})";
    return text + "],";
}

void AddLeaf(std::string& text, std::int64_t number, bool isNamed) {
    const std::string value = std::to_string(number);
    text += "{";
    if (isNamed) text += R"("name":"bolt M8x40 )" + value + R"(","rotation":[0,0,0.70710678,0.70710678],)";
    text += R"("mesh":)" + std::to_string(number % kMeshes) + R"(,"translation":[)" + value + ".25," +
            std::to_string(number % 1000) + ".5,-0.125]}";
}

void AddGroup(std::string& text, std::int64_t number, std::int64_t first, std::int64_t last, bool isNamed) {
    text += "{";
    if (isNamed) text += R"("name":"group )" + std::to_string(number) + "\",";
    text += "\"children\":[";
    for (std::int64_t child = first; child < last; ++child)
        text += (child > first ? "," : "") + std::to_string(child);
    text += "]}";
}

std::string Roots(const std::vector<std::int64_t>& roots) {
    std::string text = R"("scene":0,"scenes":[{"nodes":[)";
    for (std::size_t i = 0; i < roots.size(); ++i)
        text += (i ? "," : "") + std::to_string(roots[i]);
    return text + "]}],";
}

}  // namespace

const char* NameOf(GltfShape shape) {
    switch (shape) {
        case GltfShape::kFlat:
            return "flat";
        case GltfShape::kTwoLevels:
            return "two levels";
        case GltfShape::kNamed:
            return "two levels named";
    }
    return "";
}

std::string GltfText(std::int64_t nodes, GltfShape shape) {
    const bool isNamed = shape == GltfShape::kNamed;
    std::string list = "\"nodes\":[";
    std::vector<std::int64_t> roots;
    std::int64_t written = 0, group = 0;
    while (written < nodes) {
        if (written) list += ",";
        if (shape == GltfShape::kFlat) {
            roots.push_back(written);
            AddLeaf(list, written++, false);
            continue;
        }
        const std::int64_t last = std::min(written + kGroupSize, nodes - 1);
        const std::int64_t first = written;
        for (; written < last; ++written) {
            AddLeaf(list, written, isNamed);
            list += ",";
        }
        roots.push_back(written);
        AddGroup(list, group++, first, written++, isNamed);
    }
    return R"({"asset":{"version":"2.0"},)" + std::string(kGeometry) + Meshes() + Roots(roots) + list + "]}";
}

}  // namespace qn::bench
