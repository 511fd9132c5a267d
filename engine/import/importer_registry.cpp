#include "engine/import/importer_registry.h"

#include "engine/import/scene_importer.h"
#include "engine/runtime/record_folder.h"

#include <algorithm>

namespace qn {
namespace {

constexpr const char* kRecordEnding = ".importer";

template <class Test>
const ImporterRecord* FirstOf(const std::vector<const ImporterRecord*>& records, Test&& test) {
    const auto found = std::find_if(records.begin(), records.end(),
                                    [&](const ImporterRecord* record) { return test(*record); });
    return found == records.end() ? nullptr : *found;
}

ImporterRegistry BuiltInImporters() {
    ImporterRegistry registry;
    registry.AddBuiltIn(SceneImporterRecord());
    return registry;
}

}  // namespace

void ImporterRegistry::ReadFolder(const std::string& folder) {
    found_.clear();
    problems_ = ReadRecordFolder(folder, kRecordEnding, [&](std::string_view text, String& reason) {
        ImporterRecord record;
        if (!ParseImporterRecord(text, folder, record, reason)) return false;
        found_.push_back(std::move(record));
        return true;
    });
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
    static auto& process = *new ModuleFolderRecords<ImporterRegistry>(BuiltInImporters());
    return process.Current();
}

}  // namespace qn
