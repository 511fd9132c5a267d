#include "tool/similar_file.h"

#include <charconv>
#include <filesystem>

namespace assembly::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kEscapeLength = 3;  // "%20"

bool ReadEscape(std::string_view text, unsigned char& letter) {
    if (text.size() < kEscapeLength || text.front() != '%') return false;
    const char* const end = text.data() + kEscapeLength;
    return std::from_chars(text.data() + 1, end, letter, 16).ptr == end;
}

/// The same for names that are alike.
std::string Folded(std::string_view name) {
    std::string folded;
    for (std::size_t i = 0; i < name.size(); ++i) {
        auto letter = static_cast<unsigned char>(name[i]);
        if (ReadEscape(name.substr(i), letter)) i += kEscapeLength - 1;
        folded += static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter);
    }
    return folded;
}

}  // namespace

const SimilarFiles::Names& SimilarFiles::NamesIn(const std::string& folder) {
    const auto [entry, isNew] = folders_.try_emplace(folder);
    std::error_code error;
    fs::directory_iterator file(folder.empty() ? "." : folder, error);
    for (; isNew && !error && file != fs::directory_iterator(); file.increment(error)) {
        const std::string name = file->path().filename().string();
        std::string& known = entry->second[Folded(name)];
        if (known.empty() || name < known) known = name;  // whatever order the folder has
    }
    return entry->second;
}

std::string SimilarFiles::Find(const std::string& path) {
    fs::path found;
    for (const fs::path& part : fs::path(path)) {
        std::error_code ignored;
        const bool isThere = part.has_root_directory() || part == ".." || fs::exists(found / part, ignored);
        if (isThere) {
            found /= part;
            continue;
        }
        const Names& names = NamesIn(found.string());
        const auto name = names.find(Folded(part.string()));
        if (name == names.end()) return {};
        found /= name->second;
    }
    std::error_code ignored;
    return fs::exists(found, ignored) ? found.string() : std::string();
}

}  // namespace assembly::tool
