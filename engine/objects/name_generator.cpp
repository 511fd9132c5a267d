#include "frame/host/name_generator.h"

#include <charconv>
#include <iterator>
#include <limits>

namespace qn::qfxml {

std::wstring NameGenerator::GetNext(const std::wstring& family) {
    static const std::wstring kNoPrefix;
    const std::wstring& prefix = prefixes_.empty() ? kNoPrefix : prefixes_.back();
    auto counter = counters_.find(std::tie(prefix, family));
    if (counter == counters_.end()) counter = counters_.try_emplace({prefix, family}).first;

    char digits[std::numeric_limits<unsigned long long>::digits10 + 1];
    char* const end = std::to_chars(digits, std::end(digits), ++counter->second).ptr;
    std::wstring id = prefix.empty() ? family : prefix + delimiter_ + family;
    return id.append(std::begin(digits), end);
}

void NameGenerator::PopPrefix() {
    if (!prefixes_.empty()) prefixes_.pop_back();
}

void NameGenerator::Reset() {
    counters_.clear();
    prefixes_.clear();
}

}  // namespace qn::qfxml
