#pragma once

#include "engine/runtime/module_folder.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qn {

/// Takes the text of one record; false, with the reason, if it cannot be used.
using RecordFunction = std::function<bool(std::string_view text, String& reason)>;

/// Hands the text of every file of the folder with that ending to `take`, in the order of their names. Gives
/// a line for each file that could not be used: its name and why. A missing folder gives nothing.
std::vector<String> ReadRecordFolder(const std::string& folder, std::string_view ending,
                                     const RecordFunction& take);

/// What the records of the module folder tell, read again when another folder is in force. `Records` has a
/// member `ReadFolder`, which replaces what an earlier folder gave.
template <class Records>
class ModuleFolderRecords {
public:
    explicit ModuleFolderRecords(Records start = {}) : records_(std::move(start)) {}

    const Records& Current() {
        const std::string folder = ModuleFolder().ToUtf8();
        if (folder_ != folder) {
            records_.ReadFolder(folder);
            folder_ = folder;
        }
        return records_;
    }

private:
    Records records_;
    std::optional<std::string> folder_;
};

}  // namespace qn
