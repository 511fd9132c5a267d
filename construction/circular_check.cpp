#include "construction/circular_check.h"

#include "frame/host/translate.h"
#include "graph/instance.h"

#include <functional>
#include <set>
#include <unordered_set>
#include <vector>

namespace qn::graph {

namespace {

constexpr int kErrorLevel = 2;

using References = std::set<Reference*, std::less<Reference*>>;

void AddProperty(String& text, const wchar_t* label, const Reference& reference, PropEnum id) {
    const Var value = reference.GetProperty(id, 0);
    if (!value.IsSet()) return;
    text.Add(label);
    text.Add(value.ToText());
}

/// The definitions of the descent stand in pointer order, which is not the order of the way.
String DescribeCircle(const Reference& repeated, const References& descent) {
    String text =
        Translate("assembly", "Invalid instance/reference hierarchy - found circular reference to entity ",
                  "XMSG: Error message", -1);
    AddProperty(text, L"", repeated, Prop::kName);
    AddProperty(text, L" id: ", repeated, Prop::kLocalId);
    AddProperty(text, L" bsid: ", repeated, Prop::kBsId);
    text.Add(L" via ");
    bool first = true;
    for (const Reference* const member : descent) {
        if (!first) text.Add(L"/");
        first = false;
        AddProperty(text, L"name:", *member, Prop::kName);
        AddProperty(text, L" id:", *member, Prop::kLocalId);
        AddProperty(text, L" bsid:", *member, Prop::kBsId);
    }
    return text;
}

class CircularCheck {
public:
    explicit CircularCheck(Context* log) : log_(log) {}

    bool Run(Reference* top) {
        if (!top) return false;
        Enter(top);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.reference->GetChildCount()) {
                Leave();
                continue;
            }
            const Counted<Instance> child = level.reference->GetChild(level.next++);
            Reference* const reference = child ? child->GetReference() : nullptr;
            if (!reference || finished_.contains(reference)) continue;
            if (descent_.contains(reference)) {
                if (log_) log_->ReportMessage(MessageInfo(kErrorLevel), DescribeCircle(*reference, descent_));
                return true;
            }
            Enter(reference);
        }
        return false;
    }

private:
    struct Level {
        Counted<Reference> reference;
        int next = 0;
    };

    void Enter(Reference* reference) {
        descent_.insert(reference);
        levels_.push_back({Counted<Reference>(reference)});
    }

    /// What was left without a find leads to no circle, on whatever way it is met again.
    void Leave() {
        Reference* const reference = levels_.back().reference.Get();
        descent_.erase(reference);
        finished_.insert(reference);
        levels_.pop_back();
    }

    Context* log_;
    References descent_;
    std::unordered_set<const Reference*> finished_;
    std::vector<Level> levels_;
};

}  // namespace

bool HasCircularReference(Reference* reference, Context* log) {
    return CircularCheck(log).Run(reference);
}

}  // namespace qn::graph
