#include "tool/nearest.h"

#include <algorithm>
#include <numeric>

namespace assembly::tool {
namespace {

/// Longer words are not compared: nobody types them.
constexpr std::size_t kLongestWord = 200;

/// Letters to insert, take out or change.
std::size_t Distance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t changed = diagonal + (left[i - 1] != right[j - 1]);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
        }
    }
    return row.back();
}

}  // namespace

std::string Nearest(std::string_view word, const std::vector<std::string>& candidates) {
    if (word.empty() || word.size() > kLongestWord) return {};
    std::size_t best = word.size() / 2 + 1;  // half of the word has to be right
    std::string nearest;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = Distance(word, candidate);
        if (distance >= best) continue;
        best = distance;
        nearest = candidate;
    }
    return nearest;
}

std::string Suggestion(std::string_view word, const std::vector<std::string>& candidates) {
    const std::string nearest = Nearest(word, candidates);
    return nearest.empty() ? nearest : " (did you mean \"" + nearest + "\"?)";
}

}  // namespace assembly::tool
