#include "engine/import/import_file.h"
#include "engine/import/importer_record.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace qn {
namespace {

namespace fs = std::filesystem;

/// What stands at the path instead of a file, or nothing if it is one.
const wchar_t* Obstacle(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) return L"no such file";
    if (fs::is_directory(status)) return L"is a folder, not a file";
    if (status.type() == fs::file_type::none) return L"cannot be reached";
    return fs::is_regular_file(status) ? nullptr : L"is no regular file";
}

}  // namespace

bool ProbeFile(const String& file, std::string& head, String& reason) {
    const fs::path path = file.ToUtf8();
    head.clear();
    if (const wchar_t* obstacle = Obstacle(path)) {
        reason = obstacle;
        return false;
    }
    errno = 0;
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        reason = L"cannot be opened: " + String::FromUtf8(std::strerror(errno));
        return false;
    }
    head.resize(kProbeSize);
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    return true;
}

}  // namespace qn
