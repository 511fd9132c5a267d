#include "engine/values/value_copier.h"
#include "frame/host/collections.h"

#include <set>
#include <utility>
#include <vector>

namespace qn {
namespace {

/// Merges map into map, row by row, with a stack of its own. A pair of maps that was met is not entered
/// again.
class Merging {
public:
    void Run(VarMap* target, VarMap* source) {
        Enter(target, source);
        while (!frames_.empty()) {
            Frame& frame = frames_.back();
            if (frame.row < frame.source->GetCount())
                MergeRow(frame, frame.row++);
            else
                frames_.pop_back();
        }
    }

private:
    // Source and target may hold parts of each other, so whatever the walk knows is kept alive.
    struct Frame {
        Counted<VarMap> target;
        Counted<VarMap> source;
        int row = 0;
    };

    void Enter(VarMap* target, VarMap* source) {
        if (target == source || !met_.emplace(target, source).second) return;
        kept_.emplace_back(target), kept_.emplace_back(source);
        frames_.push_back({Counted<VarMap>(target), Counted<VarMap>(source)});
    }

    void MergeRow(Frame& frame, int row) {
        const Var key = frame.source->KeyAt(row), value = frame.source->ValueAt(row);
        VarMap& target = *frame.target;
        if (const Var* present = target.Lookup(key)) {
            VarMap* map = present->ToMap();
            VarMap* other = value.ToMap();
            if (map && other) return Enter(map, other);
        }
        Var copy(value);
        copy.MakeUnique();
        target.At(key) = std::move(copy);
    }

    std::vector<Frame> frames_;
    std::set<std::pair<const VarMap*, const VarMap*>> met_;
    std::vector<Counted<VarMap>> kept_;
};

}  // namespace

void Var::Merge(const Var& value, int) {
    const Var held(value);  // may be a part of this value
    VarMap* source = held.ToMap();
    if (!source) return;
    if (IsEmpty()) {
        *this = held;
        MakeUnique();
    } else if (VarMap* target = ToMap()) {
        Merging().Run(target, source);
    }
}

}  // namespace qn
