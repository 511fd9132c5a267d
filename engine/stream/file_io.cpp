#include "engine/stream/file_io.h"

#include "engine/stream/limits.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qn {
namespace {

namespace fs = std::filesystem;

constexpr int kNameAttempts = 100;
constexpr mode_t kNewFileMode = 0666;  // less what the process's mask takes away
constexpr mode_t kPermissions = 07777;

/// An open file, closed at the end.
class OpenFile {
public:
    OpenFile(const char* path, int flags) : handle_(open(path, flags | O_CLOEXEC)) {}
    explicit OpenFile(int handle) : handle_(handle) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (handle_ >= 0) close(handle_);
    }
    explicit operator bool() const { return handle_ >= 0; }
    int Get() const { return handle_; }

    bool Write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = write(handle_, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }
    bool Read(std::string& bytes) const {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t got = read(handle_, bytes.data() + done, bytes.size() - done);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) return false;
            if (got == 0) break;
            done += static_cast<std::size_t>(got);
        }
        bytes.resize(done);
        return true;
    }

private:
    int handle_;
};

bool FailWith(Context& context, LoadFailure kind, const std::string& path, std::string_view what,
              std::string_view why) {
    context.Fail(kind, String::FromUtf8(fmt::format("{}: {}: {}", path, what, why)));
    return false;
}

bool FailBySystem(Context& context, const std::string& path, std::string_view what) {
    return FailWith(context, LoadFailure::kUnreadable, path, what, std::strerror(errno));
}

/// The file that a link leads to; the path itself if there is none yet.
std::string Resolve(const std::string& path) {
    std::error_code error;
    const auto resolved = fs::canonical(path, error);
    return error ? path : resolved.string();
}

std::string SiblingName(const std::string& path, int attempt) {
    const fs::path file(path);
    return (file.parent_path() / fmt::format(".{}.{}.{}.tmp", file.filename().string(), getpid(), attempt))
        .string();
}

/// Opens a new file beside `path`; its name goes to `name`.
int CreateSibling(const std::string& path, std::string& name) {
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        name = SiblingName(path, attempt);
        const int handle = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
        if (handle >= 0 || errno != EEXIST) return handle;
    }
    return -1;
}

bool Flush(const std::string& folder) {
    const OpenFile handle(folder.c_str(), O_RDONLY | O_DIRECTORY);
    // Some file systems cannot flush a folder; the file itself is on the disk by then.
    return handle && (fsync(handle.Get()) == 0 || errno == EINVAL);
}

}  // namespace

bool ReadWholeFile(const String& path, std::string& bytes, Context& context) {
    const std::string name = path.ToUtf8();
    const OpenFile file(name.c_str(), O_RDONLY | O_NONBLOCK);
    struct stat info {};
    if (!file || fstat(file.Get(), &info) != 0) return FailBySystem(context, name, "cannot be opened");
    if (!S_ISREG(info.st_mode))
        return FailWith(context, LoadFailure::kUnreadable, name, "cannot be opened", "it is no file");
    const auto size = static_cast<std::uint64_t>(info.st_size);
    if (size > scene_file_limits::kLargestFile)
        return FailWith(context, LoadFailure::kLimit, name, "is too large",
                        fmt::format("{} bytes, the limit is {}", size, scene_file_limits::kLargestFile));
    bytes.resize(size);
    return file.Read(bytes) || FailBySystem(context, name, "cannot be read");
}

bool WriteFileSafely(const String& path, std::string_view bytes, Context& context) {
    const std::string target = Resolve(path.ToUtf8());
    struct stat old {};
    const bool exists = stat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode))
        return FailWith(context, LoadFailure::kUnreadable, target, "cannot be written", "it is no file");

    std::string sibling;
    const int handle = CreateSibling(target, sibling);
    if (handle < 0) return FailBySystem(context, target, "cannot be written");
    const auto giveUp = [&] {
        FailBySystem(context, target, "cannot be written");
        unlink(sibling.c_str());
        return false;
    };
    const OpenFile file(handle);
    if (exists && fchmod(handle, old.st_mode & kPermissions) != 0) return giveUp();
    if (!file.Write(bytes) || fsync(handle) != 0) return giveUp();
    if (rename(sibling.c_str(), target.c_str()) != 0) return giveUp();
    const std::string folder = fs::path(target).parent_path().string();
    return Flush(folder.empty() ? "." : folder) ||
           FailBySystem(context, target, "its folder cannot be flushed");
}

}  // namespace qn
