#pragma once

#include <string>
#include <vector>

namespace qn::test {

/// A definition of an assembly that stands for a file.
struct FilePart {
    std::string definition;
    std::string file;  ///< as it is named
    int uses = 1;
    std::string serverId = {};
};

/// The bytes of a scene file whose root, of that name, uses definitions that name files. Without parts it is
/// a part itself. `serverId` is that of the
/// root, `rootFile` the file that the root names itself. Expects that the keys of the
/// graph are registered.
std::string FileAssembly(const std::string& root, const std::vector<FilePart>& parts,
                         const std::string& serverId = {}, const std::string& rootFile = {});

}  // namespace qn::test
