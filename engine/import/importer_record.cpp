#include "engine/import/importer_record.h"

#include "engine/runtime/record_fields.h"

#include <algorithm>
#include <sstream>

namespace qn {
namespace {

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return lower;
}

bool SetKey(std::string_view value, const std::string&, ImporterRecord& out) {
    out.key = value;
    return true;
}

/// The library stands beside its record, nowhere else.
bool SetModule(std::string_view value, const std::string& folder, ImporterRecord& out) {
    if (!IsPlainFileName(value)) return false;
    out.modulePath = folder + "/" + std::string(value);
    return true;
}

bool SetGuid(std::string_view value, const std::string&, ImporterRecord& out) {
    return Guid::Parse(String::FromUtf8(value), out.guid);
}

bool SetName(std::string_view value, const std::string&, ImporterRecord& out) {
    out.name = String::FromUtf8(value);
    return true;
}

bool SetEndings(std::string_view value, const std::string&, ImporterRecord& out) {
    std::istringstream words{std::string(value)};
    for (std::string word; words >> word;) {
        if (word.front() != '.') return false;
        out.endings.push_back(Lower(word));
    }
    return true;
}

bool AddMagic(std::string_view value, const std::string&, ImporterRecord& out) {
    out.magics.emplace_back(value);
    return true;
}

struct FieldRow {
    std::string_view name;
    bool (*set)(std::string_view value, const std::string& folder, ImporterRecord& out);
};
constexpr FieldRow kFields[] = {
    {"key", &SetKey},   {"module", &SetModule},   {"guid", &SetGuid},
    {"name", &SetName}, {"endings", &SetEndings}, {"magic", &AddMagic},
};

bool SetField(std::string_view name, std::string_view value, const std::string& folder, ImporterRecord& out) {
    const auto field = std::find_if(std::begin(kFields), std::end(kFields),
                                    [&](const FieldRow& row) { return row.name == name; });
    return field != std::end(kFields) && field->set(value, folder, out);
}

}  // namespace

bool ParseImporterRecord(std::string_view text, const std::string& folder, ImporterRecord& out,
                         String& reason) {
    ImporterRecord record;
    const auto take = [&](std::string_view name, std::string_view value) {
        return SetField(name, value, folder, record);
    };
    if (!ReadRecordFields(text, take, reason)) return false;
    if (record.key.empty() || record.modulePath.empty()) {
        reason = L"no key or no module";
        return false;
    }
    if (record.name.IsEmpty()) record.name = String::FromUtf8(record.key);
    out = std::move(record);
    return true;
}

bool MatchesContent(const ImporterRecord& record, std::string_view head) {
    head = head.substr(0, kProbeSize);
    return std::any_of(record.magics.begin(), record.magics.end(),
                       [&](const std::string& magic) { return head.find(magic) != std::string_view::npos; });
}

bool MatchesEnding(const ImporterRecord& record, std::string_view fileName) {
    const std::string lower = Lower(fileName);
    return std::any_of(record.endings.begin(), record.endings.end(), [&](const std::string& ending) {
        return lower.size() > ending.size() &&
               lower.compare(lower.size() - ending.size(), ending.size(), ending) == 0;
    });
}

}  // namespace qn
