#pragma once

#include <map>
#include <string>

namespace assembly::tool {

/// Finds files that a name may mean which no file has: names differ in the case of letters, or have "%20" for
/// a blank and the like. Reads each folder once.
class SimilarFiles {
public:
    /// The existing file that `path` comes nearest to in that sense; empty if there is none.
    std::string Find(const std::string& path);

private:
    using Names = std::map<std::string, std::string>;  ///< by what they have in common
    const Names& NamesIn(const std::string& folder);

    std::map<std::string, Names> folders_;
};

}  // namespace assembly::tool
