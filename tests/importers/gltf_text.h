#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qn::test {

/// A glTF text with the asset in front of these members, which need no comma before the first.
std::string GltfText(const std::string& members);

/// A binary glTF file of that text and those bytes.
std::string GlbFile(std::string text, std::string bytes);

std::string Base64(std::string_view bytes);

/// The bytes of numbers, one behind the other.
template <class T>
std::string BytesOf(const std::vector<T>& numbers) {
    return {reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(T)};
}

/// Members that give meshes 0 to `meshes` - 1 one triangle each from a data address: (0 0 0), (1 0 0), (0 1
/// 0).
std::string TriangleMeshes(int meshes);

}  // namespace qn::test
