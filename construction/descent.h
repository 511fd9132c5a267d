#pragma once

#include "frame/host/string.h"
#include "graph/reference.h"

#include <unordered_map>
#include <unordered_set>

namespace qn::graph {

/// The definitions and files that a walk is inside of, so that neither is entered within itself.
class Descent {
public:
    bool IsInside(const Reference* reference) const {
        const auto found = references_.find(reference);
        return found != references_.end() && found->second;
    }
    /// False, and nothing changes, inside the definition.
    bool Enter(const Reference* reference) {
        bool& inside = references_[reference];
        return inside ? false : (inside = true);
    }
    /// The row stays for the next use of the definition.
    void Leave(const Reference* reference) { references_[reference] = false; }

    bool IsInsideFile(const String& file) const { return files_.contains(file); }
    /// False, and nothing changes, for the empty text and inside the file.
    bool EnterFile(const String& file) { return file.NonEmpty() && files_.insert(file).second; }
    void LeaveFile(const String& file) { files_.erase(file); }

private:
    std::unordered_map<const Reference*, bool> references_;
    std::unordered_set<String> files_;
};

/// The name of the file that a definition stands for, the empty text if it stands for something else.
inline String FileOf(const Reference& reference) {
    const Var target = reference.GetTarget();
    return target.IsText() ? target.ToText() : String();
}

}  // namespace qn::graph
