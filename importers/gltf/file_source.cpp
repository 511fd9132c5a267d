#include "importers/gltf/file_source.h"

#include "importers/gltf/gltf_error.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace qn::gltf {
namespace {

class OpenedFile final : public FileSource {
public:
    explicit OpenedFile(const std::filesystem::path& path)
        : handle_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (handle_ < 0) Fail("cannot be opened", errno);
        struct stat status {};
        if (::fstat(handle_, &status) == 0) size_ = static_cast<std::uint64_t>(status.st_size);
    }
    ~OpenedFile() override { ::close(handle_); }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    std::uint64_t GetSize() const override { return size_; }
    void Read(std::uint64_t offset, void* bytes, std::size_t count) const override {
        constexpr std::size_t kPiece = std::size_t{1} << 30;
        auto* to = static_cast<char*>(bytes);
        while (count > 0) {
            const ssize_t got = ::pread(handle_, to, std::min(count, kPiece), static_cast<off_t>(offset));
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) Fail("cannot be read", errno);
            if (got == 0)
                throw GltfError("the file became shorter while it was read", LoadFailure::kUnreadable);
            to += got, offset += static_cast<std::uint64_t>(got), count -= static_cast<std::size_t>(got);
        }
    }

private:
    [[noreturn]] static void Fail(const std::string& what, int error) {
        throw GltfError(what + ": " + std::generic_category().message(error), LoadFailure::kUnreadable);
    }

    int handle_;
    std::uint64_t size_ = 0;
};

class Memory final : public FileSource {
public:
    explicit Memory(std::string_view bytes) : bytes_(bytes) {}

    std::uint64_t GetSize() const override { return bytes_.size(); }
    void Read(std::uint64_t offset, void* bytes, std::size_t count) const override {
        if (offset > bytes_.size() || count > bytes_.size() - offset)
            throw GltfError("the file ends too early", LoadFailure::kUnreadable);
        if (count > 0) std::memcpy(bytes, bytes_.data() + offset, count);
    }

private:
    std::string_view bytes_;
};

}  // namespace

std::unique_ptr<FileSource> OpenFile(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        throw GltfError("there is no such file", LoadFailure::kMissing);
    if (!std::filesystem::is_regular_file(status))
        throw GltfError("is no regular file", LoadFailure::kUnreadable);
    return std::make_unique<OpenedFile>(path);
}

std::unique_ptr<FileSource> SourceOf(std::string_view bytes) {
    return std::make_unique<Memory>(bytes);
}

}  // namespace qn::gltf
