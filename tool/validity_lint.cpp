#include "tool/validity_lint.h"

#include <algorithm>

namespace assembly::tool {
namespace {

using Kind = ValidityRange::Kind;

/// Ranges of days are often written by the first second of each, so the next may begin a day later.
constexpr std::int64_t kDay = 86'400;

std::string Text(const ValidityRange& range) {
    return std::string(WordOf(range.kind)) + " " + EndText(range.kind, range.from) + " to " +
           EndText(range.kind, range.to);
}

/// Whether something stands between two sorted ranges. Differences are taken without overflow.
bool IsGap(const ValidityRange& before, const ValidityRange& after) {
    const auto step = static_cast<std::uint64_t>(before.kind == Kind::kDate ? kDay : 1);
    return static_cast<std::uint64_t>(after.from) - static_cast<std::uint64_t>(before.to) > step;
}

class Lint {
public:
    explicit Lint(std::vector<ValidityFinding>& findings) : findings_(findings) {}

    void Check(const RangeHolder& holder) {
        const std::vector<ValidityRange> ranges = RangesOf(holder.ranges);
        for (const Kind kind : {Kind::kDate, Kind::kLine})
            CheckKind(holder, ranges, kind);
    }

private:
    void CheckKind(const RangeHolder& holder, const std::vector<ValidityRange>& ranges, Kind kind) {
        std::vector<ValidityRange> sorted;
        for (const ValidityRange& range : ranges) {
            if (range.kind != kind) continue;
            if (range.to < range.from)
                Add("inverted-range", "error", holder, Text(range) + " ends before it starts");
            else
                sorted.push_back(range);
        }
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const auto& left, const auto& right) { return left.from < right.from; });
        CheckSorted(holder, sorted);
    }

    /// Compares each range with the one before it that reaches farthest.
    void CheckSorted(const RangeHolder& holder, const std::vector<ValidityRange>& sorted) {
        for (std::size_t i = 1, farthest = 0; i < sorted.size(); ++i) {
            const ValidityRange& before = sorted[farthest];
            const ValidityRange& range = sorted[i];
            if (range.from <= before.to)
                Add("overlapping-ranges", "warning", holder, Text(before) + " overlaps " + Text(range));
            else if (IsGap(before, range))
                Add("gap-between-ranges", "warning", holder,
                    "nothing is valid between " + Text(before) + " and " + Text(range));
            if (range.to > before.to) farthest = i;
        }
    }

    void Add(const char* code, const char* severity, const RangeHolder& holder, std::string message) {
        findings_.push_back({code, severity, holder.path, std::move(message)});
    }

    std::vector<ValidityFinding>& findings_;
};

}  // namespace

std::vector<ValidityFinding> LintValidity(const Structure& structure, const qn::k3::Scene& scene) {
    std::vector<ValidityFinding> findings;
    Lint lint(findings);
    for (const RangeHolder& holder : RangeHolders(structure, scene))
        lint.Check(holder);
    for (const RangeHolder& holder : HoldersWithout(structure, scene))
        findings.push_back({"missing-ranges", "warning", holder.path,
                            "has no ranges, but a sibling of the same definition has"});
    return findings;
}

}  // namespace assembly::tool
