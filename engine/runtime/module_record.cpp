#include "engine/runtime/module_record.h"

#include "engine/runtime/record_fields.h"
#include "engine/runtime/record_folder.h"
#include "frame/host/interface.h"

#include <algorithm>

namespace qn {
namespace {

constexpr const char* kRecordEnding = ".module";

}  // namespace

bool ParseModuleRecord(std::string_view text, const std::string& folder, ModuleRecord& out, String& reason) {
    ModuleRecord record;
    const auto take = [&](std::string_view name, std::string_view value) {
        if (name == "class") {
            record.classes.emplace_back(value);
            return true;
        }
        if (name != "module" || !record.modulePath.empty() || !IsPlainFileName(value)) return false;
        record.modulePath = folder + "/" + std::string(value);
        return true;
    };
    if (!ReadRecordFields(text, take, reason)) return false;
    if (record.classes.empty() || record.modulePath.empty()) {
        reason = L"no class or no module";
        return false;
    }
    out = std::move(record);
    return true;
}

void ModuleRecords::ReadFolder(const std::string& folder) {
    records_.clear();
    problems_ = ReadRecordFolder(folder, kRecordEnding, [&](std::string_view text, String& reason) {
        ModuleRecord record;
        if (!ParseModuleRecord(text, folder, record, reason)) return false;
        records_.push_back(std::move(record));
        return true;
    });
}

const ModuleRecord* ModuleRecords::Find(const char* classKey) const {
    const auto makes = [&](const ModuleRecord& record) {
        return std::any_of(record.classes.begin(), record.classes.end(),
                           [&](const std::string& key) { return EqualKeys(key.c_str(), classKey); });
    };
    const auto found = std::find_if(records_.begin(), records_.end(), makes);
    return found == records_.end() ? nullptr : &*found;
}

const ModuleRecords& KnownModules() {
    static auto& process = *new ModuleFolderRecords<ModuleRecords>;
    return process.Current();
}

}  // namespace qn
