#include "engine/import/importer_registry.h"

#include "engine/import/scene_importer.h"
#include "engine/runtime/byte_stream.h"
#include "engine/runtime/module_folder.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace qn {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRecordEnding = ".importer";

std::vector<fs::path> RecordFiles(const std::string& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() == kRecordEnding) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

template <class Test>
const ImporterRecord* FirstOf(const std::vector<const ImporterRecord*>& records, Test&& test) {
    const auto found = std::find_if(records.begin(), records.end(),
                                    [&](const ImporterRecord* record) { return test(*record); });
    return found == records.end() ? nullptr : *found;
}

/// The registry of the process, and the folder that it was read from.
struct ProcessImporters {
    ProcessImporters() { registry.AddBuiltIn(SceneImporterRecord()); }
    ImporterRegistry registry;
    std::optional<std::string> folder;
};

}  // namespace

void ImporterRegistry::ReadFolder(const std::string& folder) {
    found_.clear();
    problems_.clear();
    for (const fs::path& file : RecordFiles(folder)) {
        const auto stream = ByteStream::OpenFile(String::FromUtf8(file.string()));
        ImporterRecord record;
        String reason = L"the file cannot be read";
        if (stream && ParseImporterRecord(stream->Rest(), folder, record, reason)) {
            found_.push_back(std::move(record));
        } else {
            problems_.push_back(String::FromUtf8(file.filename().string()) + L": " + reason);
        }
    }
}

std::vector<const ImporterRecord*> ImporterRegistry::GetRecords() const {
    std::vector<const ImporterRecord*> records;
    for (const ImporterRecord& record : builtIn_)
        records.push_back(&record);
    for (const ImporterRecord& record : found_)
        records.push_back(&record);
    return records;
}

const ImporterRecord* ImporterRegistry::Choose(const Guid& guid, std::string_view head,
                                               std::string_view fileName) const {
    const auto records = GetRecords();
    const auto hasId = [&](const ImporterRecord& record) { return !guid.IsZero() && record.guid == guid; };
    const auto byContent = [&](const ImporterRecord& record) { return MatchesContent(record, head); };
    const auto byEnding = [&](const ImporterRecord& record) { return MatchesEnding(record, fileName); };
    if (const auto* chosen = FirstOf(records, hasId)) return chosen;
    const auto byBoth = [&](const ImporterRecord& record) { return byContent(record) && byEnding(record); };
    if (const auto* chosen = FirstOf(records, byBoth)) return chosen;
    if (const auto* chosen = FirstOf(records, byContent)) return chosen;
    return FirstOf(records, byEnding);
}

String ImporterRegistry::Describe() const {
    String text;
    for (const ImporterRecord* record : GetRecords()) {
        if (text.NonEmpty()) text.Add(L", ");
        text.Add(record->name + L" (");
        for (const std::string& ending : record->endings) {
            if (&ending != &record->endings.front()) text.Add(L" ");
            text.Add(String::FromUtf8(ending));
        }
        text.Add(L")");
    }
    return text;
}

const ImporterRegistry& Importers() {
    static auto& process = *new ProcessImporters;
    const std::string folder = ModuleFolder().ToUtf8();
    if (process.folder != folder) {
        process.registry.ReadFolder(folder);
        process.folder = folder;
    }
    return process.registry;
}

}  // namespace qn
