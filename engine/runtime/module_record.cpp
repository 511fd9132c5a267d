#include "engine/runtime/module_record.h"

#include "engine/runtime/byte_stream.h"
#include "engine/runtime/module_folder.h"
#include "engine/runtime/record_fields.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace qn {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRecordEnding = ".module";

std::vector<fs::path> RecordFiles(const std::string& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() == kRecordEnding) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// The records of the process, and the folder that they were read from.
struct ProcessRecords {
    ModuleRecords records;
    std::optional<std::string> folder;
};

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
    problems_.clear();
    for (const fs::path& file : RecordFiles(folder)) {
        const auto stream = ByteStream::OpenFile(String::FromUtf8(file.string()));
        ModuleRecord record;
        String reason = L"the file cannot be read";
        if (stream && ParseModuleRecord(stream->Rest(), folder, record, reason)) {
            records_.push_back(std::move(record));
        } else {
            problems_.push_back(String::FromUtf8(file.filename().string()) + L": " + reason);
        }
    }
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
    static auto& process = *new ProcessRecords;
    const std::string folder = ModuleFolder().ToUtf8();
    if (process.folder != folder) {
        process.records.ReadFolder(folder);
        process.folder = folder;
    }
    return process.records;
}

}  // namespace qn
