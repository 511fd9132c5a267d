#pragma once

#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace qn::qfxml {

/// Hands out ids: prefix, delimiter, family, running number. The number counts from 1 for each pair of prefix
/// and family.
class NameGenerator {
public:
    void SetCurrentDelimiter(const std::wstring& text) { delimiter_ = text; }
    std::wstring GetNext(const std::wstring& family);
    /// The text becomes the prefix as it is, without joining it to the present one.
    void PushPrefix(const std::wstring& text) { prefixes_.push_back(text); }
    /// Nothing happens without a prefix. Counters survive.
    void PopPrefix();
    std::wstring GetCurrentPrefix() const { return prefixes_.empty() ? std::wstring() : prefixes_.back(); }
    /// Clears counters and prefixes, keeps the delimiter.
    void Reset();

private:
    std::wstring delimiter_;
    std::vector<std::wstring> prefixes_;
    /// Finds a pair without making one: ids come by the million.
    struct PairLess {
        using is_transparent = void;
        template <class Left, class Right>
        bool operator()(const Left& left, const Right& right) const {
            return std::tie(std::get<0>(left), std::get<1>(left)) <
                   std::tie(std::get<0>(right), std::get<1>(right));
        }
    };
    std::map<std::pair<std::wstring, std::wstring>, unsigned long long, PairLess> counters_;
};

}  // namespace qn::qfxml
