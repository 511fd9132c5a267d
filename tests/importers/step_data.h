#pragma once

#include <filesystem>

/// The folder of real files: the environment variable ASSEMBLY_DATA_DIR, else that of the build.
std::filesystem::path DataDir();

/// Whether that folder is there.
bool HasData();
