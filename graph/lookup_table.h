#pragma once

#include "frame/host/collections.h"
#include "frame/host/counted.h"
#include "frame/host/selector.h"
#include "graph/graph.h"

namespace qn::graph {

/// The index of one hierarchy: elements by id and server id, nodes by instance and the reverse, new ids,
/// selectors by id, and the id filter of a partial load. Never stored. Class key "qn.graph.lookuptable".
class LookupTable : public ReferenceSource {
public:
    /// Kept weakly; null clears.
    virtual void SetSceneAndContext(k3::Scene* scene, Context* context) = 0;
    /// Empties the indexes (not the selectors, the file bindings and the filter) and fills them from the
    /// scene.
    virtual void Rebuild() = 0;
    virtual Context* GetContext() const = 0;
    virtual bool IsSelectorPathValid(const Selector& selector) = 0;
    virtual void ResolvePersistentSelector(Selector& out, PersistentSelector* source) = 0;
    virtual Counted<PersistentSelector> CreatePersistentSelector(const Selector& selector) = 0;
    virtual Counted<PersistentSelector> SetPathAttributes(const Var& path, const Var& attributes) = 0;
    virtual Counted<PersistentSelector> GetOrCreatePersistentSelector(const String& id, const Var& path,
                                                                      const Var& attributes) = 0;
    virtual Counted<PersistentSelector> FindPersistentSelector(const String& id) = 0;
    virtual Counted<Reference> GetOrCreateReferenceWithTarget(const Var& target, const String& id) = 0;
    virtual Counted<Reference> GetOrCreateReference(const String& id) = 0;
    virtual Counted<Reference> CreateReferenceFrom(Reference* source, const String& id) = 0;
    virtual Counted<Reference> GetOrCreateBsReferenceWithTarget(const Var& target, const String& id,
                                                                const String& bsId) = 0;
    virtual Counted<Reference> GetOrCreateBsReference(const String& id, const String& bsId) = 0;
    virtual Counted<Reference> LoadExternalReference(Reference* reference, const Var& reserved,
                                                     const String& id) = 0;
    virtual Counted<Reference> LoadFileIntoScene(const String& file, const String& id, const Var& options,
                                                 const Guid& importer) = 0;
    virtual Counted<Reference> GetOrLoadFile(const String& file, const String& id, const String& bsId,
                                             const Var& options, const Guid& importer) = 0;
    virtual Counted<Reference> MergeFile(const String& file, const String& id, const String& bsId) = 0;
    virtual Counted<Reference> MergeStream(Stream* stream, const String& id, const String& bsId) = 0;
    virtual Counted<Reference> FindReferenceById(const String& id) = 0;
    virtual Counted<Instance> FindInstanceById(const String& id) = 0;
    virtual Counted<Reference> FindReferenceByBsId(const String& bsId) = 0;
    virtual Counted<Instance> FindInstanceByBsId(const String& bsId) = 0;
    virtual void RegisterInstanceWithBsId(Instance* instance) = 0;
    virtual void RegisterReferenceWithBsId(Reference* reference) = 0;
    virtual void RegisterInstance(Instance* instance) = 0;
    virtual void RegisterReference(Reference* reference) = 0;
    virtual void PushIdPrefix(HierarchyElement* element) = 0;
    virtual void PopIdPrefix() = 0;
    virtual String GetCurrentIdPrefix() const = 0;
    virtual String GenerateEntityId() = 0;
    virtual String GenerateNodeId() = 0;
    virtual String GenerateSelectorId() = 0;
    virtual Counted<InterfaceArray> GetNodesOfInstance(Instance* instance) = 0;
    virtual Counted<InterfaceArray> GetNodesOfSelector(const Selector& selector, bool exact) = 0;
    virtual Counted<Instance> GetInstanceOfNode(k3::Node* node) = 0;
    virtual void ApplyPendingBindings() = 0;
    virtual void ApplyElementChanges(k3::Node* node) = 0;
    virtual String DumpNodeMap() const = 0;
    virtual void ReadIdFilter() = 0;
    virtual bool IsPathAllowed(const String& text) const = 0;
    virtual bool IsIdAllowed(const String& text) const = 0;
    virtual bool IsElementAllowed(HierarchyElement* element) const = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::LookupTable");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<LookupTable, ReferenceSource>(this, wanted);
    }
};

}  // namespace qn::graph
