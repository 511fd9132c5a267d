#include "tests/importers/gltf_text.h"

namespace qn::test {
namespace {

std::string Word(std::size_t value) {
    return BytesOf<std::uint32_t>({static_cast<std::uint32_t>(value)});
}

void Pad(std::string& bytes, char filler) {
    while (bytes.size() % 4 != 0)
        bytes += filler;
}

}  // namespace

std::string GltfText(const std::string& members) {
    return R"({"asset":{"version":"2.0"})" + (members.empty() ? "" : "," + members) + "}";
}

std::string GlbFile(std::string text, std::string bytes) {
    Pad(text, ' ');
    Pad(bytes, '\0');
    const std::string chunks =
        Word(text.size()) + "JSON" + text + Word(bytes.size()) + std::string("BIN\0", 4) + bytes;
    return "glTF" + Word(2) + Word(12 + chunks.size()) + chunks;
}

std::string Base64(std::string_view bytes) {
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = 0; j < 3; ++j)
            group = group << 8 | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0u);
        for (std::size_t j = 0; j < 4; ++j)
            text += i + j > bytes.size() ? '=' : kLetters[group >> (18 - 6 * j) & 63];
    }
    return text;
}

std::string TriangleMeshes(int meshes) {
    const std::string bytes = BytesOf<float>({0, 0, 0, 1, 0, 0, 0, 1, 0});
    std::string text =
        R"("buffers":[{"byteLength":36,"uri":"data:application/octet-stream;base64,)" + Base64(bytes) +
        R"("}],"bufferViews":[{"buffer":0,"byteLength":36}],)"
        R"("accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],"meshes":[)";
    for (int i = 0; i < meshes; ++i)
        text += std::string(i ? "," : "") + R"({"name":"mesh )" + std::to_string(i) +
                R"(","primitives":[{"attributes":{"POSITION":0}}]})";
    return text + "]";
}

}  // namespace qn::test
