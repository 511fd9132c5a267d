#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace qn::test {

/// The folder of the real files: the environment variable ASSEMBLY_DATA_DIR, else the build's default. It may
/// be missing.
std::filesystem::path DataDir();
/// Whether the folder is there. Tests that need it skip with `kNoData` otherwise.
bool HasData();
inline constexpr const char* kNoData = "the folder of real files is not there (ASSEMBLY_DATA_DIR)";

/// All files below the folder with one of these endings (as ".stp"), sorted.
std::vector<std::filesystem::path> DataFiles(const std::vector<std::string>& endings);
/// The same; under sanitizers those of up to a megabyte alone. For roads that take minutes there for the
/// larger ones, which go the same ways.
std::vector<std::filesystem::path> QuickDataFiles(const std::vector<std::string>& endings);

/// What an independent reader found in the file of that name; null if there is nothing.
nlohmann::json LoadExpected(const std::string& fileName);

/// A name for a parameterised test: letters, digits and "_" of the file's name.
std::string TestNameOf(const std::filesystem::path& file);

}  // namespace qn::test
