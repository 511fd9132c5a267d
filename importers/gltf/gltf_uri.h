#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qn::gltf {

/// Whether the bytes stand in the address itself ("data:...").
bool IsDataUri(std::string_view uri);

/// The bytes of such an address, in base64 or percent-encoded. Throws GltfError.
std::vector<std::uint8_t> DecodeDataUri(std::string_view uri);

/// The file that a relative address means, seen from `folder`; always below that folder, links followed.
/// Throws GltfError for any other.
std::filesystem::path ResolveUri(std::string_view uri, const std::filesystem::path& folder);

}  // namespace qn::gltf
