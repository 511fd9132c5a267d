#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace qn {

/// What a save did.
struct SaveReport {
    std::uint32_t objects = 0;  ///< written
    std::map<std::string, int>
        unwritable;  ///< class key to objects that became null, as nothing can write them
};

/// What a load did.
struct LoadReport {
    std::uint32_t objects = 0;  ///< made and read
    std::map<std::string, int>
        unknown;  ///< class key to objects that became null, as nothing makes their class
};

}  // namespace qn
