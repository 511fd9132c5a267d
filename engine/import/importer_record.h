#pragma once

#include "frame/host/guid.h"
#include "frame/host/string.h"

#include <string>
#include <string_view>
#include <vector>

namespace qn {

/// What the engine knows of a format before it loads the importer. `endings` and `magics` may be empty.
struct ImporterRecord {
    std::string key;                   ///< class key of the importer
    std::string modulePath;            ///< of the shared library; empty for an importer of the engine itself
    Guid guid;                         ///< zero: cannot be chosen by id
    String name;                       ///< for users, as "STEP"
    std::vector<std::string> endings;  ///< lower case, with the dot
    std::vector<std::string>
        magics;  ///< texts, one of which stands in the first bytes of each file of the format
};

/// How many bytes of a file are looked at to know its format.
inline constexpr std::size_t kProbeSize = 1024;

/// Reads the text of an importer record ("key = value" lines, "#" starts a comment line, "magic" may be
/// repeated). `folder` is that of the record. False, with the line and the reason, if it cannot be used.
bool ParseImporterRecord(std::string_view text, const std::string& folder, ImporterRecord& out,
                         String& reason);

/// Whether one of the record's texts stands in `head`, the first bytes of a file.
bool MatchesContent(const ImporterRecord& record, std::string_view head);
/// Whether the file name ends as the record says, without regard to ASCII case.
bool MatchesEnding(const ImporterRecord& record, std::string_view fileName);

}  // namespace qn
