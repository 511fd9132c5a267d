#pragma once

#include "frame/host/counted.h"
#include "frame/host/hierarchy_element.h"
#include "frame/host/string.h"

#include <map>
#include <memory>

namespace qn {

namespace k3 {
class Node;
}

namespace graph {

class Instance;
class LookupTable;
class PersistentSelector;
class Reference;

/// A path of instances that names one occurrence, with its own attributes. Copies share the path.
///
/// Without traverser it is valid if the path is not empty and has no null; its children are those of its last
/// instance's reference, with empty attributes. On a traverser, validity, children and properties are the
/// traverser's, and the path is that of the start plus one instance for each step, asked for when first
/// needed.
class Selector final : public HierarchyElement {
public:
    class Traverser;

    Selector() = default;
    Selector(const Selector&) = default;
    Selector(Selector&&) = default;
    Selector& operator=(const Selector&) = default;
    Selector& operator=(Selector&&) = default;
    ~Selector();

    bool IsValid() const;
    /// The last path element (on a traverser: its instance), borrowed, or null.
    Instance* GetInstance() const;
    /// `GetInstance()->GetReference()`, borrowed, or null.
    Reference* GetReference() const;
    int GetChildCount() const;
    /// An invalid selector past the end.
    Selector GetChild(unsigned index) const;
    int GetPathElementCount() const;
    /// Borrowed; null past the end or where null was appended.
    Instance* GetPathElement(unsigned index) const;
    /// Lengthens the path; null is kept and makes the selector invalid.
    void AppendPathElement(Instance* instance);
    /// Puts the selector on a traverser: the path starts with its instance alone; nothing climbs. Null takes
    /// it away.
    void AssignTraverser(Traverser* traverser);
    /// Own attributes are a non-empty map, or the traverser answers a set value for 0x14, 0x22 or 0x23.
    bool HasSelectorPersistentData() const;

    const Var& GetAttributes() const { return attributes_; }
    void SetAttributes(const Var& attributes) { attributes_ = attributes; }
    /// Borrowed, or null.
    Traverser* GetTraverser() const { return traverser_.Get(); }

    /// Without traverser: own attribute if the key is there, even empty; else, if `inherit`, the last
    /// instance's with inheritance; else empty. With one: the traverser's.
    Var GetProperty(PropEnum id, int inherit) const override;
    /// Own attribute; with a traverser the traverser's property.
    void SetProperty(PropEnum id, const Var& value) override;
    /// The traverser's, else the last instance's; borrowed, or null.
    LookupTable* GetLookupTable() const override;
    String ToDebugString() const override { return String(); }

private:
    struct Step;  // one path element with a link to the step above, shared between selectors
    Var attributes_;
    Counted<Traverser> traverser_;
    std::shared_ptr<Step> last_;
};

/// Walks a tree for a selector. Moves make new traversers; all results are counted.
class Selector::Traverser : public Interface, public HierarchyElement {
public:
    virtual Counted<Instance> GetInstance() = 0;
    virtual Counted<Traverser> CreateChild(Instance* instance) = 0;
    virtual Counted<Traverser> GetParent() = 0;
    virtual int GetChildCount() const = 0;
    virtual Counted<Traverser> GetChild(int index) = 0;
    virtual bool IsValid() const = 0;
    virtual void ApplyElementChanges(k3::Node* node, const String& path,
                                     std::map<PersistentSelector*, k3::Node*>& answers,
                                     std::map<PersistentSelector*, k3::Node*>& reserved) = 0;
    virtual void StoreElementChanges(k3::Node* node) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::Selector::Traverser");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<Traverser, Interface, HierarchyElement>(this, wanted);
    }
};

/// What `SelectorHasOwnAttributes` fills in.
struct SelectorData {
    Var attributes;
    Selector::Traverser* traverser = nullptr;
};

/// Compares the node's properties 7, 8, 6, 0x1a, 2, 1, 3, 0x15, 4, 0x1b, read as a traverser does, with those
/// that its instance (parameter 0x94, else the table's) inherits; values that are set and differ go into
/// `data.attributes`. Without an instance every set value does. True if there is any. The flag means nothing.
bool SelectorHasOwnAttributes(k3::Node* node, SelectorData& data, LookupTable* table, bool flag);

}  // namespace graph
}  // namespace qn
