#include "engine/import/importer_record.h"

#include <algorithm>
#include <sstream>

namespace qn {
namespace {

constexpr const char* kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

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
    if (value.find('/') != std::string_view::npos) return false;
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

bool SetField(std::string_view line, const std::string& folder, ImporterRecord& out) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return false;
    const std::string_view name = Trimmed(line.substr(0, equals));
    const std::string_view value = Trimmed(line.substr(equals + 1));
    const auto field = std::find_if(std::begin(kFields), std::end(kFields),
                                    [&](const FieldRow& row) { return row.name == name; });
    return field != std::end(kFields) && !value.empty() && field->set(value, folder, out);
}

}  // namespace

bool ParseImporterRecord(std::string_view text, const std::string& folder, ImporterRecord& out,
                         String& reason) {
    ImporterRecord record;
    int number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = Trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        ++number;
        if (line.empty() || line.front() == '#' || SetField(line, folder, record)) continue;
        reason.Format(L"line %d cannot be read", number);
        return false;
    }
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
