#include "tests/support/data_dir.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <limits>

namespace qn::test {

namespace fs = std::filesystem;

fs::path DataDir() {
    const char* chosen = std::getenv("ASSEMBLY_DATA_DIR");
    return chosen && *chosen ? chosen : ASSEMBLY_DATA_DIR;
}

namespace {

#if defined(ASSEMBLY_SANITIZERS)
constexpr std::uintmax_t kLargestQuickFile = 1'000'000;
#else
constexpr std::uintmax_t kLargestQuickFile = std::numeric_limits<std::uintmax_t>::max();
#endif

}  // namespace

bool HasData() {
    return fs::is_directory(DataDir() / "expected");
}

std::vector<fs::path> DataFiles(const std::vector<std::string>& endings) {
    std::vector<fs::path> files;
    if (!HasData()) return files;
    for (const auto& entry : fs::recursive_directory_iterator(DataDir())) {
        const std::string ending = entry.path().extension().string();
        if (std::find(endings.begin(), endings.end(), ending) != endings.end()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<fs::path> QuickDataFiles(const std::vector<std::string>& endings) {
    std::vector<fs::path> files = DataFiles(endings);
    std::erase_if(files, [](const fs::path& file) { return fs::file_size(file) > kLargestQuickFile; });
    return files;
}

nlohmann::json LoadExpected(const std::string& fileName) {
    std::ifstream in(DataDir() / "expected" / (fileName + ".json"));
    return in ? nlohmann::json::parse(in) : nlohmann::json();
}

std::string TestNameOf(const fs::path& file) {
    std::string name;
    for (const char letter : file.filename().string()) {
        name += std::isalnum(static_cast<unsigned char>(letter)) ? letter : '_';
    }
    return name;
}

}  // namespace qn::test
