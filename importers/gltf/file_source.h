#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace qn::gltf {

/// Bytes that can be read from any place: a file, or a piece of memory.
class FileSource {
public:
    virtual ~FileSource() = default;
    virtual std::uint64_t GetSize() const = 0;
    /// Throws GltfError if fewer bytes are there.
    virtual void Read(std::uint64_t offset, void* bytes, std::size_t count) const = 0;
};

/// Throws GltfError: kUnreadable, or kMissing if nothing stands at the path.
std::unique_ptr<FileSource> OpenFile(const std::filesystem::path& path);

/// Does not copy: the bytes must live as long as the source.
std::unique_ptr<FileSource> SourceOf(std::string_view bytes);

}  // namespace qn::gltf
