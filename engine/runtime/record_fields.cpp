#include "engine/runtime/record_fields.h"

#include <algorithm>

namespace qn {
namespace {

constexpr const char* kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool TakeLine(std::string_view line, const RecordFieldFunction& take) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return false;
    const std::string_view name = Trimmed(line.substr(0, equals));
    const std::string_view value = Trimmed(line.substr(equals + 1));
    return !name.empty() && !value.empty() && take(name, value);
}

}  // namespace

bool ReadRecordFields(std::string_view text, const RecordFieldFunction& take, String& reason) {
    int number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = Trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        ++number;
        if (line.empty() || line.front() == '#' || TakeLine(line, take)) continue;
        reason.Format(L"line %d cannot be read", number);
        return false;
    }
    return true;
}

bool IsPlainFileName(std::string_view name) {
    return !name.empty() && name.find('/') == std::string_view::npos;
}

}  // namespace qn
