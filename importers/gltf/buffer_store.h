#pragma once

#include "importers/gltf/allowance.h"
#include "importers/gltf/file_source.h"
#include "importers/gltf/gltf_container.h"
#include "importers/gltf/gltf_model.h"

#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace qn::gltf {

using Bytes = std::span<const std::uint8_t>;

/// The bytes behind buffers and views, read (and unpacked) when first asked for, each once; also a file that
/// several buffers name. Model, file and container must outlive it. All throw GltfError.
class BufferStore {
public:
    /// Without a folder no other file is opened.
    BufferStore(const Model& model, const FileSource& file, const Container& container,
                std::optional<std::filesystem::path> folder);

    /// At least as long as the file claims.
    Bytes GetBuffer(std::uint32_t index);
    Bytes GetView(std::uint32_t index);
    /// Bytes between the elements' starts in the view; 0: they stand close together.
    std::uint32_t StrideOf(std::uint32_t view) const;
    /// What may be made of the bytes.
    Allowance& GetAllowance() { return allowance_; }

private:
    struct Entry {
        std::vector<std::uint8_t> own;
        Bytes bytes;
        bool isRead = false;
    };
    void ReadBuffer(std::uint32_t index, Entry& out);
    void ReadBinaryPart(const Buffer& buffer, std::vector<std::uint8_t>& out);
    Bytes GetOtherFile(const Buffer& buffer);
    std::vector<std::uint8_t> ReadOtherFile(const std::filesystem::path& path);
    Bytes GetUnpacked(std::uint32_t index);

    const Model& model_;
    const FileSource& file_;
    const Container& container_;
    std::optional<std::filesystem::path> folder_;
    std::vector<Entry> buffers_;
    std::vector<Entry> unpacked_;  // by view
    std::map<std::filesystem::path, std::vector<std::uint8_t>> others_;
    Allowance allowance_;
};

}  // namespace qn::gltf
