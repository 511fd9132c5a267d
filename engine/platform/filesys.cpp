#include "frame/host/filesys.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace qn {
namespace {

constexpr std::wstring_view kSlashes = L"/\\";
constexpr std::size_t kDriveLength = 2;

bool StartsWithDrive(std::wstring_view path) {
    return path.size() >= kDriveLength && path[1] == L':';
}

/// The first `length` characters, taken off the path.
std::wstring_view TakeOff(std::wstring_view& path, std::size_t length) {
    const std::wstring_view piece = path.substr(0, length);
    path.remove_prefix(length);
    return piece;
}

String IfItFits(std::wstring_view piece, int size) {
    return static_cast<int>(piece.size()) < size ? String(piece) : String();
}

/// How many characters stand in front of what comes after the last slash.
std::size_t FolderLength(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(kSlashes);
    return slash == std::wstring_view::npos ? 0 : slash + 1;
}

}  // namespace

PathPieces SplitPath(const String& path, const PathSizes& sizes) {
    std::wstring_view rest = path.View();
    PathPieces pieces;
    if (StartsWithDrive(rest)) pieces.drive = IfItFits(TakeOff(rest, kDriveLength), sizes.drive);
    pieces.folder = IfItFits(TakeOff(rest, FolderLength(rest)), sizes.folder);
    const std::size_t dot = rest.rfind(L'.');
    pieces.name = IfItFits(TakeOff(rest, dot == std::wstring_view::npos ? rest.size() : dot), sizes.name);
    pieces.ending = IfItFits(rest, sizes.ending);
    return pieces;
}

namespace filesys {

String GetPathFromFile(const String& file) {
    std::wstring_view folder = file.View().substr(0, FolderLength(file.View()));
    if (folder.size() > 1) folder.remove_suffix(1);  // the root folder is its slash
    return String(folder);
}

bool CreateFolder(const String& folder) {
    if (folder.IsEmpty()) return false;
    const std::filesystem::path path = folder.ToUtf8();
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return std::filesystem::is_directory(path, error);
}

}  // namespace filesys
}  // namespace qn
