#include "engine/stream/safe_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qn {
namespace {

namespace fs = std::filesystem;

constexpr int kNameAttempts = 100;
constexpr int kMostLinks = 40;         // one after the other, as the system itself follows them
constexpr mode_t kNewFileMode = 0666;  // less what the process's mask takes away
constexpr mode_t kPermissions = 07777;

/// Replaces the path of a link by that of the file it leads to, whether or not that is there.
bool FollowLinks(std::string& path) {
    std::error_code error;
    fs::path file = path;
    for (int link = 0; link < kMostLinks; ++link) {
        if (!fs::is_symlink(fs::symlink_status(file, error))) {
            path = file.string();
            return true;
        }
        const fs::path next = fs::read_symlink(file, error);
        errno = error.value();
        if (error) return false;
        file = file.parent_path() / next;
    }
    errno = ELOOP;
    return false;
}

/// Short and the same for all files, for the target's own name may be as long as names can be.
std::string SiblingName(const std::string& path, int attempt) {
    return (fs::path(path).parent_path() / fmt::format(".assembly.{}.{}.tmp", getpid(), attempt)).string();
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

bool FlushFolder(const std::string& folder) {
    const int handle = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return false;
    // Some file systems cannot flush a folder; the file itself is on the disk by then.
    const bool isFlushed = fsync(handle) == 0 || errno == EINVAL;
    const int cause = errno;
    close(handle);
    errno = cause;
    return isFlushed;
}

/// Goes on after interruptions and short writes. `write` takes the bytes that are left.
template <class WriteSome>
bool WriteAll(std::string_view bytes, WriteSome&& writeSome) {
    while (!bytes.empty()) {
        const ssize_t written = writeSome(bytes);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace

SafeFile::~SafeFile() {
    if (handle_ >= 0) close(handle_);
    if (!sibling_.empty()) unlink(sibling_.c_str());
}

bool SafeFile::Fail(std::string_view what) {
    const std::string text = fmt::format("{}: {}: {}", path_, what, std::strerror(errno));
    context_.Fail(LoadFailure::kNotWritten, String::FromUtf8(text));
    return false;
}

bool SafeFile::Open(const std::string& path) {
    path_ = target_ = path;
    struct stat old {};
    const bool exists = stat(path.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        const std::string text = path + ": cannot be written: it is no file";
        context_.Fail(LoadFailure::kNotWritten, String::FromUtf8(text));
        return false;
    }
    if (!FollowLinks(target_)) return Fail("cannot be written");
    std::string sibling;
    handle_ = CreateSibling(target_, sibling);
    if (handle_ < 0) return Fail("cannot be written");
    sibling_ = sibling;
    return !exists || fchmod(handle_, old.st_mode & kPermissions) == 0 || Fail("cannot be written");
}

bool SafeFile::Write(std::string_view bytes) {
    return WriteAll(bytes, [&](std::string_view rest) { return write(handle_, rest.data(), rest.size()); }) ||
           Fail("cannot be written");
}

bool SafeFile::WriteAt(std::uint64_t offset, std::string_view bytes) {
    const auto end = static_cast<off_t>(offset + bytes.size());
    return WriteAll(bytes,
                    [&](std::string_view rest) {
                        return pwrite(handle_, rest.data(), rest.size(),
                                      end - static_cast<off_t>(rest.size()));
                    }) ||
           Fail("cannot be written");
}

bool SafeFile::Flush() {
    return fsync(handle_) == 0 || Fail("cannot be written");
}

bool SafeFile::Commit() {
    return Replace() && FlushPlace();
}

bool SafeFile::CommitBoth(SafeFile& first, SafeFile& second) {
    if (!first.SetOldAside()) return false;
    if (!first.Replace() || !second.Replace()) {
        first.PutOldBack();
        return false;
    }
    if (!first.old_.empty()) unlink(first.old_.c_str());
    return first.FlushPlace() && second.FlushPlace();
}

bool SafeFile::SetOldAside() {
    struct stat old {};
    if (lstat(target_.c_str(), &old) != 0) return errno == ENOENT || Fail("cannot be written");
    std::string name;
    const int handle = CreateSibling(target_, name);
    if (handle < 0) return Fail("cannot be written");
    close(handle);
    if (rename(target_.c_str(), name.c_str()) == 0) {
        old_ = std::move(name);
        return true;
    }
    Fail("cannot be written");
    unlink(name.c_str());
    return false;
}

void SafeFile::PutOldBack() {
    const bool isReplaced = sibling_.empty();
    if (!old_.empty())
        rename(old_.c_str(), target_.c_str());
    else if (isReplaced)
        unlink(target_.c_str());
}

bool SafeFile::Replace() {
    if (rename(sibling_.c_str(), target_.c_str()) != 0) return Fail("cannot be written");
    sibling_.clear();
    return true;
}

bool SafeFile::FlushPlace() {
    return FlushFolder(fs::path(target_).parent_path().string()) || Fail("its folder cannot be flushed");
}

}  // namespace qn
