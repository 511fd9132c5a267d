#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace qn::scene_file {

/// Which objects each object names, in the order of its body. Objects are counted from 0.
class ReferenceGraph {
public:
    void Resize(std::size_t objectCount) { rows_.resize(objectCount); }
    void SetTargets(std::size_t object, std::size_t first, std::size_t count) {
        rows_[object] = {first, count};
    }
    std::vector<std::uint32_t>& Targets() { return targets_; }

    std::size_t GetCount() const { return rows_.size(); }
    std::span<const std::uint32_t> TargetsOf(std::size_t object) const {
        return std::span(targets_).subspan(rows_[object].first, rows_[object].count);
    }

private:
    struct Row {
        std::size_t first = 0, count = 0;
    };
    std::vector<Row> rows_;
    std::vector<std::uint32_t> targets_;
};

/// The objects that `root` reaches, each after all that it names, but for rings: depth first, in the order in
/// which the walk leaves them. Needs no recursion.
std::vector<std::uint32_t> OrderFrom(const ReferenceGraph& graph, std::uint32_t root);

}  // namespace qn::scene_file
