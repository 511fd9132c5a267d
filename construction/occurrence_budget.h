#pragma once

#include <cstdint>

namespace qn::graph {

/// How many occurrences a walk may still meet.
class OccurrenceBudget {
public:
    explicit OccurrenceBudget(std::int64_t limit) : limit_(limit), left_(limit) {}
    /// False once the limit is used up.
    bool Take() {
        if (left_ > 0) return --left_, true;
        exceeded_ = true;
        return false;
    }
    bool IsExceeded() const { return exceeded_; }
    std::int64_t GetLimit() const { return limit_; }

private:
    std::int64_t limit_;
    std::int64_t left_;
    bool exceeded_ = false;
};

}  // namespace qn::graph
