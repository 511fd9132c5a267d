#include "tests/importers/step_data.h"

#include <cstdlib>

std::filesystem::path DataDir() {
    const char* chosen = std::getenv("ASSEMBLY_DATA_DIR");
    return chosen ? chosen : ASSEMBLY_DATA_DIR;
}

bool HasData() {
    return std::filesystem::exists(DataDir() / "manifest.json");
}
