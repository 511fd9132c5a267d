#include "engine/stream/file_io.h"

#include "engine/stream/limits.h"
#include "engine/stream/safe_file.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qn {
namespace {

/// An open file, closed at the end.
class OpenFile {
public:
    OpenFile(const char* path, int flags) : handle_(open(path, flags | O_CLOEXEC)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (handle_ >= 0) close(handle_);
    }
    explicit operator bool() const { return handle_ >= 0; }
    int Get() const { return handle_; }

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
    SafeFile file(context);
    return file.Open(path.ToUtf8()) && file.Write(bytes) && file.Flush() && file.Commit();
}

}  // namespace qn
