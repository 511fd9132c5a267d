#include "importers/gltf/buffer_store.h"

#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_uri.h"
#include "importers/gltf/meshopt_view.h"

#include <algorithm>

namespace qn::gltf {
namespace {

[[noreturn]] void FailOnLength(std::uint64_t claimed, std::uint64_t there) {
    throw GltfError("byteLength: the buffer claims " + std::to_string(claimed) + " bytes, " +
                    std::to_string(there) + " are there");
}

Bytes Slice(Bytes bytes, std::uint64_t offset, std::uint64_t length, const std::string& place) {
    if (offset > bytes.size() || length > bytes.size() - offset)
        FailAt(place, "expected a piece of the " + std::to_string(bytes.size()) +
                          " bytes of its buffer, found bytes " + std::to_string(offset) + " to " +
                          std::to_string(offset + length));
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
}

}  // namespace

BufferStore::BufferStore(const Model& model, const FileSource& file, const Container& container,
                         std::optional<std::filesystem::path> folder)
    : model_(model),
      file_(file),
      container_(container),
      folder_(std::move(folder)),
      buffers_(model.buffers.size()),
      unpacked_(model.views.size()) {
    allowance_.Grant(file.GetSize());
}

Bytes BufferStore::GetBuffer(std::uint32_t index) {
    Entry& entry = buffers_[index];
    if (entry.isRead) return entry.bytes;
    try {
        ReadBuffer(index, entry);
    } catch (const GltfError& error) {
        FailAt(PointerTo("buffers", index), error.what(), error.Kind());
    }
    entry.isRead = true;
    return entry.bytes;
}

void BufferStore::ReadBuffer(std::uint32_t index, Entry& out) {
    const Buffer& buffer = model_.buffers[index];
    if (buffer.hasUri && !IsDataUri(buffer.uri)) {
        out.bytes = GetOtherFile(buffer);
        return;
    }
    if (!buffer.hasUri) {
        if (index != 0) throw GltfError("expected an uri: only buffer 0 is the binary part of the file");
        ReadBinaryPart(buffer, out.own);
    } else {
        out.own = DecodeDataUri(buffer.uri);
        if (out.own.size() < buffer.length) FailOnLength(buffer.length, out.own.size());
    }
    out.bytes = out.own;
}

void BufferStore::ReadBinaryPart(const Buffer& buffer, std::vector<std::uint8_t>& out) {
    if (!container_.hasBinary) throw GltfError("has no uri, and the file has no binary part");
    if (buffer.length > container_.binaryLength) FailOnLength(buffer.length, container_.binaryLength);
    out.resize(static_cast<std::size_t>(buffer.length));
    file_.Read(container_.binaryOffset, out.data(), out.size());
}

Bytes BufferStore::GetOtherFile(const Buffer& buffer) {
    if (!folder_) throw GltfError("names another file, and none is opened here", LoadFailure::kMissing);
    const std::filesystem::path path = ResolveUri(buffer.uri, *folder_);
    try {
        auto known = others_.find(path);
        if (known == others_.end()) known = others_.emplace(path, ReadOtherFile(path)).first;
        if (buffer.length > known->second.size()) FailOnLength(buffer.length, known->second.size());
        return Bytes(known->second).first(static_cast<std::size_t>(buffer.length));
    } catch (const GltfError& error) {
        throw GltfError("the file \"" + buffer.uri + "\": " + error.what(), error.Kind());
    }
}

/// As much of the file as any buffer could ask for.
std::vector<std::uint8_t> BufferStore::ReadOtherFile(const std::filesystem::path& path) {
    const auto file = OpenFile(path);
    std::uint64_t length = 0;
    for (const Buffer& buffer : model_.buffers)
        length = std::max(length, buffer.length);
    length = std::min(length, file->GetSize());
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
    file->Read(0, bytes.data(), bytes.size());
    allowance_.Grant(length);
    return bytes;
}

Bytes BufferStore::GetView(std::uint32_t index) {
    const BufferView& view = model_.views[index];
    if (view.packedBuffer != kNone) return GetUnpacked(index);
    return Slice(GetBuffer(view.buffer), view.offset, view.length, PointerTo("bufferViews", index));
}

Bytes BufferStore::GetUnpacked(std::uint32_t index) {
    Entry& entry = unpacked_[index];
    if (entry.isRead) return entry.bytes;
    const BufferView& view = model_.views[index];
    const std::string place = PointerTo("bufferViews", index) + "/extensions/EXT_meshopt_compression";
    const Bytes packed = Slice(GetBuffer(view.packedBuffer), view.packedOffset, view.packedLength, place);
    try {
        entry.own = UnpackView(view, packed, allowance_);
        entry.bytes = entry.own;
    } catch (const GltfError& error) {
        FailAt(place, error.what(), error.Kind());
    }
    entry.isRead = true;
    return entry.bytes;
}

std::uint32_t BufferStore::StrideOf(std::uint32_t index) const {
    const BufferView& view = model_.views[index];
    return view.packedBuffer != kNone && view.packedMode == "ATTRIBUTES" ? view.packedStride : view.stride;
}

}  // namespace qn::gltf
