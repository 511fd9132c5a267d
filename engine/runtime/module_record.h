#pragma once

#include "frame/host/string.h"

#include <string>
#include <string_view>
#include <vector>

namespace qn {

/// What the engine knows of a module of classes before it loads it.
struct ModuleRecord {
    std::string modulePath;            ///< of the shared library
    std::vector<std::string> classes;  ///< keys that it makes; they ignore ASCII case
};

/// Reads the text of a module record: one line "module = FILE", the library beside the record, and a line
/// "class = KEY" for each class. `folder` is that of the record. False, with the line or the reason, if it
/// cannot be used.
bool ParseModuleRecord(std::string_view text, const std::string& folder, ModuleRecord& out, String& reason);

/// The modules that the "*.module" files of a folder tell of. None is loaded for that.
class ModuleRecords {
public:
    /// Replaces what an earlier folder gave. Files are taken in the order of their names; one that cannot be
    /// used is passed over and told in `GetProblems`. A missing folder gives nothing.
    void ReadFolder(const std::string& folder);

    /// The first record that names the class, or null.
    const ModuleRecord* Find(const char* classKey) const;
    const std::vector<String>& GetProblems() const { return problems_; }

private:
    std::vector<ModuleRecord> records_;
    std::vector<String> problems_;
};

/// The records of the module folder in force.
const ModuleRecords& KnownModules();

}  // namespace qn
