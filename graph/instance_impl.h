#pragma once

#include "graph/instance.h"
#include "graph/stored_selectors.h"

namespace qn::graph {

/// The class behind "qn.graph.instance". Name, ids and other values live in the property map, the parameters
/// or the metadata; see `element_properties.h`.
class InstanceImpl final : public Instance {
public:
    explicit InstanceImpl(Reference* reference = nullptr);
    ~InstanceImpl() override;

    Reference* GetReference() const override;
    Reference* GetParentReference() const override;
    int GetSelectorCount() const override;
    Selector GetSelector(int index) const override;
    void RemoveSelector(int index) override;
    void AddSelector(const Selector& selector) override;
    void ResolveSelectors(bool recurse, Var* cache) override;
    void StoreSelectors(bool recurse, Var* visited) override;
    void ResolveSelector(PersistentSelectorImpl* selector, String* prefix, LookupTableImpl* table,
                         PersistentSelectorImpl* exclude, bool nested) override;
    void AddLocalSelector(const Selector& selector) override;

    void SetProperty(PropEnum id, const Var& value) override;
    Var GetProperty(PropEnum id, int inherit) const override;
    LookupTable* GetLookupTable() const override;
    String ToDebugString() const override;

    /// Points the instance at another definition; no list of instances changes.
    void SetReference(Reference* reference);
    /// Room for so many values in the property map, made if it is not there.
    void ReserveProperties(int count);
    /// Called by the definition that takes the instance into its children, or lets it go.
    void SetParentReference(Reference* parent);
    /// As `StoredSelectors` tells.
    Var& Selectors() { return selectors_; }
    const Var& Selectors() const { return selectors_; }

    /// What `ResolveSelectors` and `StoreSelectors` do without `recurse`.
    void ResolveOwnSelectors();
    void StoreOwnSelectors();

    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    ResultEnum Save(Stream* stream, Context* context) override;
    /// Copies parameters and metadata only.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kInstance; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override {
        void* const found = CastThrough<InstanceImpl, Instance>(this, wanted);
        return found || &wanted != &StoredSelectors::StaticClass() ? found : &selectors_;
    }

private:
    struct ChunkRow;
    static const ChunkRow kChunks[];
    void ReadProperties(Interface* object);
    void ReadReference(Interface* object);
    void ReadSelectors(Interface* object);

    Counted<Reference> reference_;
    StoredSelectors selectors_;
    Weak<Reference> parent_;
    Var properties_;
};

}  // namespace qn::graph
