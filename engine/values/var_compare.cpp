#include "engine/values/var_access.h"
#include "frame/host/collections.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <numeric>
#include <set>
#include <utility>
#include <vector>

// The order of values. Containers are compared with a stack of their own; a pair of containers that is met a
// second time, in a value that contains itself, counts as equal there.

namespace qn {
namespace {

// Ranks in order; the tags that a file cannot bring rank as empty.
constexpr std::uint8_t kRanks[] = {0, 2, 2, 2, 2, 3, 0, 1, 0, 0, 4, 5, 0, 0, 0, 6, 7, 8};

int RankOf(const Var& value) noexcept {
    return value.GetTag() < std::size(kRanks) ? kRanks[value.GetTag()] : 0;
}

template <class T>
int Order(const T& left, const T& right) {
    return left < right ? -1 : right < left ? 1 : 0;
}

int OrderReals(double left, double right) noexcept {
    if (std::isnan(left) || std::isnan(right)) return static_cast<int>(std::isnan(right)) - std::isnan(left);
    return Order(left, right);
}

/// An integer with a real number, without rounding the integer.
int OrderMixed(std::int64_t left, double right) noexcept {
    if (std::isnan(right)) return 1;
    constexpr double kBeyond = 9223372036854775808.0;  // 2^63
    if (right >= kBeyond) return -1;
    if (right < -kBeyond) return 1;
    const auto whole = static_cast<std::int64_t>(right);
    if (left != whole) return Order(left, whole);
    return Order(0.0, right - static_cast<double>(whole));
}

int OrderNumbers(const Var& left, const Var& right) noexcept {
    const bool leftReal = VarAccess::IsReal(left), rightReal = VarAccess::IsReal(right);
    if (!leftReal && !rightReal) return Order(VarAccess::Integer(left), VarAccess::Integer(right));
    if (leftReal && rightReal) return OrderReals(VarAccess::Real(left), VarAccess::Real(right));
    if (rightReal) return OrderMixed(VarAccess::Integer(left), VarAccess::Real(right));
    return -OrderMixed(VarAccess::Integer(right), VarAccess::Real(left));
}

int OrderMatrices(const Var& left, const Var& right) noexcept {
    const Matrix4<double> first = VarAccess::Matrix(left), second = VarAccess::Matrix(right);
    for (int i = 0; i < 16; ++i)
        if (const int order = OrderReals(first.m[i / 4][i % 4], second.m[i / 4][i % 4])) return order;
    return 0;
}

int OrderBlocks(std::string_view left, std::string_view right) noexcept {
    const int order = left.compare(right);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

int OrderPointers(const Interface* left, const Interface* right) noexcept {
    const std::less<const Interface*> before;
    return before(left, right) ? -1 : before(right, left) ? 1 : 0;
}

/// The order of two values, the left one no container.
int OrderPlain(const Var& left, const Var& right) noexcept {
    if (const int order = RankOf(left) - RankOf(right)) return order;
    switch (left.GetTag()) {
        case VarTag::kInt:
        case VarTag::kInt64:
        case VarTag::kFloat:
        case VarTag::kDouble:
            return OrderNumbers(left, right);
        case VarTag::kBool:
            return Order(VarAccess::Integer(left), VarAccess::Integer(right));
        case VarTag::kText:
            return CompareTexts(ViewOf(VarAccess::Text(left)), ViewOf(VarAccess::Text(right)));
        case VarTag::kBlock:
            return OrderBlocks(left.BlockBytes(), right.BlockBytes());
        case VarTag::kMatrix:
            return OrderMatrices(left, right);
        case VarTag::kObject:
            return OrderPointers(left.ToInterface(), right.ToInterface());
    }
    return 0;
}

/// The pairs of containers that need no second look, shared by nested comparisons.
class MetPairs {
public:
    /// False if the pair was met before. Small values never fill the set: it starts late.
    bool Enter(const Interface* left, const Interface* right) {
        if (++entered_ <= kUnwatched) return true;
        if (!pairs_.emplace(left, right).second) return false;
        log_.emplace_back(left, right);
        return true;
    }
    std::size_t Mark() const noexcept { return log_.size(); }
    /// Forgets what was entered since the mark.
    void Rewind(std::size_t mark) {
        for (; log_.size() > mark; log_.pop_back())
            pairs_.erase(log_.back());
    }

private:
    using Pair = std::pair<const Interface*, const Interface*>;
    static constexpr int kUnwatched = 64;
    int entered_ = 0;
    std::set<Pair> pairs_;
    std::vector<Pair> log_;
};

int CompareIn(MetPairs& met, const Var& left, const Var& right);

/// Two containers of one rank on the stack: how far their elements are compared.
struct Frame {
    const VarArray* leftArray = nullptr;
    const VarArray* rightArray = nullptr;
    const VarMap* leftMap = nullptr;
    const VarMap* rightMap = nullptr;
    std::vector<int> leftOrder, rightOrder;  // rows of the maps by key
    int at = 0;                              // element; for maps twice the row, plus one for its value
};

std::vector<int> RowsByKey(MetPairs& met, const VarMap& map) {
    std::vector<int> rows(static_cast<std::size_t>(map.GetCount()));
    std::iota(rows.begin(), rows.end(), 0);
    std::sort(rows.begin(), rows.end(),
              [&](int left, int right) { return CompareIn(met, map.KeyAt(left), map.KeyAt(right)) < 0; });
    return rows;
}

class Comparison {
public:
    explicit Comparison(MetPairs& met) : met_(met), mark_(met.Mark()) {}

    int Run(const Var& left, const Var& right) {
        int order = Meet(left, right);
        while (order == 0 && !frames_.empty())
            order = Step();
        // What was taken as equal on the way to a difference may not be.
        if (order != 0) met_.Rewind(mark_);
        return order;
    }

private:
    int Meet(const Var& left, const Var& right);
    int MeetArrays(const VarArray* left, const VarArray* right);
    int MeetMaps(const VarMap* left, const VarMap* right);
    int Step();
    int StepArrays(Frame& frame);
    int StepMaps(Frame& frame);

    MetPairs& met_;
    std::size_t mark_;
    std::vector<Frame> frames_;
};

/// The order of two values, or 0 with a frame pushed that decides.
int Comparison::Meet(const Var& left, const Var& right) {
    if (!left.IsArray() && !left.IsMap()) return OrderPlain(left, right);
    if (const int order = RankOf(left) - RankOf(right)) return order;
    return left.IsArray() ? MeetArrays(left.ToArray(), right.ToArray())
                          : MeetMaps(left.ToMap(), right.ToMap());
}

int Comparison::MeetArrays(const VarArray* left, const VarArray* right) {
    if (left == right) return 0;
    if (!left || !right) return left ? 1 : -1;  // a dead one comes first
    if (!met_.Enter(left, right)) return 0;
    Frame frame;
    frame.leftArray = left, frame.rightArray = right;
    frames_.push_back(std::move(frame));
    return 0;
}

int Comparison::MeetMaps(const VarMap* left, const VarMap* right) {
    if (left == right) return 0;
    if (!left || !right) return left ? 1 : -1;
    if (const int order = Order(left->GetCount(), right->GetCount())) return order;
    if (!met_.Enter(left, right)) return 0;
    Frame frame;
    frame.leftMap = left, frame.rightMap = right;
    frame.leftOrder = RowsByKey(met_, *left);
    frame.rightOrder = RowsByKey(met_, *right);
    frames_.push_back(std::move(frame));
    return 0;
}

int Comparison::Step() {
    return frames_.back().leftArray ? StepArrays(frames_.back()) : StepMaps(frames_.back());
}

int Comparison::StepArrays(Frame& frame) {
    const VarArray& left = *frame.leftArray;
    const VarArray& right = *frame.rightArray;
    const int common = std::min(left.GetCount(), right.GetCount());
    while (frame.at < common) {
        const int i = frame.at++;
        const std::size_t depth = frames_.size();
        if (const int order = Meet(left.Get(i), right.Get(i))) return order;
        if (frames_.size() != depth) return 0;  // `frame` may have moved
    }
    frames_.pop_back();
    return Order(left.GetCount(), right.GetCount());
}

int Comparison::StepMaps(Frame& frame) {
    const VarMap& left = *frame.leftMap;
    const VarMap& right = *frame.rightMap;
    while (frame.at < 2 * left.GetCount()) {
        const auto row = static_cast<std::size_t>(frame.at / 2);
        const bool value = frame.at++ % 2;
        const int leftRow = frame.leftOrder[row], rightRow = frame.rightOrder[row];
        const std::size_t depth = frames_.size();
        const int order = value ? Meet(left.ValueAt(leftRow), right.ValueAt(rightRow))
                                : Meet(left.KeyAt(leftRow), right.KeyAt(rightRow));
        if (order) return order;
        if (frames_.size() != depth) return 0;
    }
    frames_.pop_back();
    return 0;
}

int CompareIn(MetPairs& met, const Var& left, const Var& right) {
    return Comparison(met).Run(left, right);
}

}  // namespace

int Var::Compare(const Var& other) const {
    if (!IsArray() && !IsMap()) return OrderPlain(*this, other);
    MetPairs met;
    return CompareIn(met, *this, other);
}

}  // namespace qn
