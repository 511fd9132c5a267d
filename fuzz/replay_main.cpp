// Runs a fuzz target over stored inputs, so that the ordinary test run keeps what fuzzing found.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

/// All regular files at or below the given paths, in the order of their names.
std::set<fs::path> FilesBelow(int count, char** paths) {
    std::set<fs::path> files;
    for (int i = 0; i < count; ++i) {
        if (fs::is_regular_file(paths[i])) files.insert(paths[i]);
        if (!fs::is_directory(paths[i])) continue;
        for (const auto& entry : fs::recursive_directory_iterator(paths[i]))
            if (entry.is_regular_file()) files.insert(entry.path());
    }
    return files;
}

std::vector<std::uint8_t> ReadAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

int main(int argc, char** argv) {
    const auto files = FilesBelow(argc - 1, argv + 1);
    for (const auto& file : files) {
        std::fprintf(stderr, "%s\n", file.filename().c_str());  // the last line names the culprit
        const auto bytes = ReadAll(file);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::fprintf(stderr, "%zu inputs replayed\n", files.size());
    return files.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
