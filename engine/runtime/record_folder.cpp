#include "engine/runtime/record_folder.h"

#include "engine/runtime/byte_stream.h"

#include <algorithm>
#include <filesystem>

namespace qn {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> RecordFiles(const std::string& folder, std::string_view ending) {
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() == ending) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

std::vector<String> ReadRecordFolder(const std::string& folder, std::string_view ending,
                                     const RecordFunction& take) {
    std::vector<String> problems;
    for (const fs::path& file : RecordFiles(folder, ending)) {
        const auto stream = ByteStream::OpenFile(String::FromUtf8(file.string()));
        String reason = L"the file cannot be read";
        if (!stream || !take(stream->Rest(), reason))
            problems.push_back(String::FromUtf8(file.filename().string()) + L": " + reason);
    }
    return problems;
}

}  // namespace qn
