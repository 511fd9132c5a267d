#pragma once

#include "engine/import/external_name.h"

#include <optional>
#include <string>
#include <string_view>

namespace qn {

/// Names of files, written anew for another file that says the same. All texts are UTF-8.
class MovedNames {
public:
    /// Names in the file `from` are to stand in the file `to`; neither has to exist, their folders have to.
    MovedNames(const std::string& from, const std::string& to);

    /// False if both files lie in one folder: every name stays as it is.
    bool AreChanged() const { return oldFolder_ != newFolder_; }
    /// The name that leads from the new file to where `name` leads from the old one, with the links on the
    /// way. A name that hangs on no folder (absolute, empty, unusable) stays as it is. Nothing if no name
    /// says it, for instance because a folder on the way has a backslash in its name.
    std::optional<std::string> Move(std::string_view name) const;
    /// Whether a name of the old file leads to this path, which has its links resolved.
    bool LeadsTo(std::string_view name, const std::string& path) const;
    /// Whether the text of a name leads out of the folder of the file that has it.
    static bool LeadsOut(std::string_view name);

private:
    std::string oldFolder_, newFolder_;  // links resolved
    ExternalFolder fromOld_, fromNew_;
};

}  // namespace qn
