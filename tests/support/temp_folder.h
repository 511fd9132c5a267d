#pragma once

#include "frame/host/string.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace qn::test {

/// A folder of its own, gone with everything in it when this dies.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    /// The path of a file in it, whether or not it is there.
    String File(std::string_view name) const;
    /// Writes a file and gives its path.
    String Write(std::string_view name, std::string_view bytes) const;

private:
    std::filesystem::path path_;
};

/// The bytes of a file; the empty text if it cannot be read.
std::string ReadBytes(const std::filesystem::path& file);

}  // namespace qn::test
