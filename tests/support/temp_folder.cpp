#include "tests/support/temp_folder.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <stdlib.h>

namespace qn::test {

TempFolder::TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "assembly-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

String TempFolder::File(std::string_view name) const {
    return String::FromUtf8((path_ / name).string());
}

String TempFolder::Write(std::string_view name, std::string_view bytes) const {
    std::ofstream(path_ / name, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return File(name);
}

std::string ReadBytes(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace qn::test
