#include "frame/host/name_generator.h"

namespace qn::qfxml {

std::wstring NameGenerator::GetNext(const std::wstring& family) {
    const std::wstring prefix = GetCurrentPrefix();
    const std::wstring number = std::to_wstring(++counters_[{prefix, family}]);
    return prefix.empty() ? family + number : prefix + delimiter_ + family + number;
}

void NameGenerator::PopPrefix() {
    if (!prefixes_.empty()) prefixes_.pop_back();
}

void NameGenerator::Reset() {
    counters_.clear();
    prefixes_.clear();
}

}  // namespace qn::qfxml
