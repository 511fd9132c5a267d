#include "tool/dates.h"

#include <chrono>
#include <cstdio>

namespace assembly::tool {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t kDay = 86'400;

/// Whether the text has a digit for each '0' of the pattern and the same character elsewhere.
bool Matches(std::string_view text, std::string_view pattern) {
    if (text.size() != pattern.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (pattern[i] == '0' ? !isDigit : text[i] != pattern[i]) return false;
    }
    return true;
}

unsigned NumberAt(std::string_view text, std::size_t from, std::size_t digits) {
    unsigned number = 0;
    for (const char digit : text.substr(from, digits))
        number = number * 10 + static_cast<unsigned>(digit - '0');
    return number;
}

std::optional<std::int64_t> DayOf(std::string_view text) {
    const year_month_day day{std::chrono::year(static_cast<int>(NumberAt(text, 0, 4))),
                             std::chrono::month(NumberAt(text, 5, 2)),
                             std::chrono::day(NumberAt(text, 8, 2))};
    if (!day.ok()) return {};
    return std::int64_t{sys_days(day).time_since_epoch().count()} * kDay;
}

}  // namespace

std::optional<std::int64_t> ParseDate(std::string_view text) {
    if (Matches(text, "0000-00-00")) return DayOf(text);
    if (!Matches(text, "0000-00-00T00:00:00Z")) return {};
    const std::optional<std::int64_t> day = DayOf(text.substr(0, 10));
    const unsigned hour = NumberAt(text, 11, 2), minute = NumberAt(text, 14, 2),
                   second = NumberAt(text, 17, 2);
    if (!day || hour > 23 || minute > 59 || second > 59) return {};
    return *day + hour * 3600 + minute * 60 + second;
}

std::string DateText(std::int64_t seconds) {
    static const std::int64_t first = *ParseDate("0000-01-01"), last = *ParseDate("9999-12-31T23:59:59Z");
    if (seconds < first || seconds > last) return std::to_string(seconds);
    const std::int64_t days = (seconds - (seconds < 0 ? kDay - 1 : 0)) / kDay, rest = seconds - days * kDay;
    const year_month_day day{sys_days(std::chrono::days(days))};
    char text[32];
    std::snprintf(text, sizeof text, rest ? "%04d-%02u-%02uT%02d:%02d:%02dZ" : "%04d-%02u-%02u",
                  int(day.year()), unsigned(day.month()), unsigned(day.day()), int(rest / 3600),
                  int(rest / 60 % 60), int(rest % 60));
    return text;
}

}  // namespace assembly::tool
