#pragma once

#include "frame/host/generator.h"
#include "frame/host/node.h"
#include "frame/host/parameter_ids.h"
#include "graph/instance.h"
#include "graph/node_content.h"
#include "graph/reference.h"

#include <utility>
#include <vector>

namespace qn::graph {

/// In what a node may differ from the hierarchy.
enum class NodeFault {
    kInstance,    ///< it does not carry the use that its parent's definition tells
    kObject,      ///< it shows something else than its definition
    kChildCount,  ///< it stands past the last use of its parent's definition
};

/// A difference, with what was expected. All borrowed, and valid while it is told.
struct NodeFinding {
    NodeFault fault;
    k3::Node* node;
    /// The use that the node stands for; of kChildCount that of its parent.
    Instance* instance;
    Reference* reference;  ///< of that use; null for kInstance
};

/// Whether two contents are one, looking through one material substitution on each side. Both null is one.
inline bool IsSameObject(k3::Object3D* left, k3::Object3D* right) {
    if (!left || !right) return left == right;
    return BehindSubstitution(left) == BehindSubstitution(right);
}

/// Compares a subtree of the scene with the hierarchy, parents first, siblings in order. Content of detail
/// markups is not looked at, and fewer children than uses are no difference. `Found` is called for each
/// `NodeFinding` and answers whether to go on.
template <class Found>
class NodeCheck {
public:
    explicit NodeCheck(Found found) : found_(std::move(found)) {}

    /// False once `Found` did not want to go on. A null instance stands for "whatever the node carries may be
    /// right"; null nodes are fine.
    bool Run(k3::Node* node, Instance* instance) {
        if (!Enter(node, Counted<Instance>(instance))) return false;
        while (!levels_.empty()) {
            k3::Node* const child = levels_.back().next;
            if (!child) {
                levels_.pop_back();
                continue;
            }
            levels_.back().next = child->GetNextSibling();
            Counted<Instance> expected;
            if (!ExpectAt(levels_.back(), *child, expected) || !Enter(child, std::move(expected)))
                return false;
        }
        return true;
    }

private:
    struct Level {
        k3::Node* next;
        Counted<Instance> instance;
        Counted<Reference> reference;  // null: children are taken as they are
        int met = 0;
    };

    /// Steps to the next child of the level: which use it has to be.
    bool ExpectAt(Level& level, k3::Node& child, Counted<Instance>& expected) {
        if (level.reference) {
            const int count = level.reference->GetChildCount();
            if (level.met < count) expected = level.reference->GetChild(level.met);
            if (level.met == count && !Tell(NodeFault::kChildCount, child, level.instance, level.reference))
                return false;
            ++level.met;
        }
        if (!expected) expected = Counted<Instance>(CarriedInstance(child));
        return true;
    }

    bool Enter(k3::Node* node, Counted<Instance> instance) {
        if (!node || k3::Generator::IsPresent(node, kDetailMarkupKey)) return true;
        Counted<Reference> reference;
        if (instance && CarriedInstance(*node) != instance.Get()) {
            if (!Tell(NodeFault::kInstance, *node, instance, reference)) return false;
            instance = LikelyInstance(*node, instance);
            if (instance) reference = Counted<Reference>(instance->GetReference());
        } else if (instance) {
            reference = Counted<Reference>(instance->GetReference());
            if (reference && !ShowsTarget(*node, *reference) &&
                !Tell(NodeFault::kObject, *node, instance, reference))
                return false;
        }
        if (node->GetFirstChild())
            levels_.push_back({node->GetFirstChild(), std::move(instance), std::move(reference)});
        return true;
    }

    static bool ShowsTarget(const k3::Node& node, const Reference& reference) {
        const Var target = reference.GetTarget();
        return IsSameObject(node.GetObject(), Cast<k3::Object3D>(target));
    }

    bool Tell(NodeFault fault, k3::Node& node, const Counted<Instance>& instance,
              const Counted<Reference>& reference) {
        return found_(NodeFinding{fault, &node, instance.Get(), reference.Get()});
    }

    /// Which use the children of a node with a wrong one belong to: the expected, if the first child says so.
    static Counted<Instance> LikelyInstance(const k3::Node& node, const Counted<Instance>& expected) {
        const Reference* const reference = expected->GetReference();
        const k3::Node* const child = node.GetFirstChild();
        if (reference && child && reference->GetChildCount() > 0 &&
            CarriedInstance(*child) == reference->GetChild(0).Get())
            return expected;
        return Counted<Instance>(CarriedInstance(node));
    }

    static constexpr const char* kDetailMarkupKey = "k3_detail_markup";

    Found found_;
    std::vector<Level> levels_;
};

}  // namespace qn::graph
