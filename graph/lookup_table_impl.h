#pragma once

#include "frame/host/context.h"
#include "frame/host/counted.h"
#include "frame/host/guid.h"
#include "frame/host/layer.h"
#include "frame/host/name_generator.h"
#include "frame/host/scene_document.h"
#include "graph/element_pool.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/node_maps.h"
#include "graph/persistent_selector.h"
#include "graph/reference.h"
#include "graph/text_index.h"
#include "graph/view_binding.h"
#include "graph/watched_map.h"

#include <set>
#include <string>
#include <unordered_map>

namespace qn::graph {

/// Elements by text. A null value counts as absent, but shows that the text was asked for.
template <class T>
using ElementIndex = TextIndex<Counted<T>>;
/// Walked in address order.
template <class T>
using ElementSet = std::set<Counted<T>, CountedLess<T>>;

/// The fields are shared state of the table, the elements, the factory and the traverser, and so are open to
/// them.
class LookupTableImpl final : public LookupTable, public ViewBinding {
public:
    LookupTableImpl();
    ~LookupTableImpl() override;

    void SetSceneAndContext(k3::Scene* scene, Context* context) override;
    void Rebuild() override;
    Context* GetContext() const override { return context.Get(); }
    bool IsSelectorPathValid(const Selector& selector) override;

    void ResolvePersistentSelector(Selector& out, PersistentSelector* source) override;
    Counted<PersistentSelector> CreatePersistentSelector(const Selector& selector) override;
    Counted<PersistentSelector> SetPathAttributes(const Var& path, const Var& attributes) override;
    Counted<PersistentSelector> GetOrCreatePersistentSelector(const String& id, const Var& path,
                                                              const Var& attributes) override;
    Counted<PersistentSelector> FindPersistentSelector(const String& id) override;

    Counted<Reference> GetOrCreateReferenceWithTarget(const Var& target, const String& id) override;
    Counted<Reference> GetOrCreateReference(const String& id) override;
    Counted<Reference> CreateReferenceFrom(Reference* source, const String& id) override;
    Counted<Reference> GetOrCreateBsReferenceWithTarget(const Var& target, const String& id,
                                                        const String& bsId) override;
    Counted<Reference> GetOrCreateBsReference(const String& id, const String& bsId) override;

    Counted<Reference> LoadExternalReference(Reference* reference, const Var& reserved,
                                             const String& id) override;
    Counted<Reference> LoadFileIntoScene(const String& file, const String& id, const Var& options,
                                         const Guid& importer) override;
    Counted<Reference> GetOrLoadFile(const String& file, const String& id, const String& bsId,
                                     const Var& options, const Guid& importer) override;
    Counted<Reference> MergeFile(const String& file, const String& id, const String& bsId) override;
    Counted<Reference> MergeStream(Stream* stream, const String& id, const String& bsId) override;

    Counted<Reference> FindReferenceById(const String& id) override;
    Counted<Instance> FindInstanceById(const String& id) override;
    Counted<Reference> FindReferenceByBsId(const String& bsId) override;
    Counted<Instance> FindInstanceByBsId(const String& bsId) override;
    void RegisterInstanceWithBsId(Instance* instance) override;
    void RegisterReferenceWithBsId(Reference* reference) override;
    void RegisterInstance(Instance* instance) override;
    void RegisterReference(Reference* reference) override;

    void PushIdPrefix(HierarchyElement* element) override;
    void PopIdPrefix() override { nameGenerator.PopPrefix(); }
    String GetCurrentIdPrefix() const override { return nameGenerator.GetCurrentPrefix(); }
    String GenerateEntityId() override;
    String GenerateNodeId() override;
    String GenerateSelectorId() override;

    Counted<InterfaceArray> GetNodesOfInstance(Instance* instance) override;
    Counted<InterfaceArray> GetNodesOfSelector(const Selector& selector, bool exact) override;
    Counted<Instance> GetInstanceOfNode(k3::Node* node) override;
    void ApplyPendingBindings() override;
    void ApplyElementChanges(k3::Node* node) override;
    String DumpNodeMap() const override;

    void ReadIdFilter() override;
    bool IsPathAllowed(const String& text) const override;
    bool IsIdAllowed(const String& text) const override;
    bool IsElementAllowed(HierarchyElement* element) const override;

    void BindViewLater(k3::Viewport* viewport, Reference* definition) override;

    /// Copies an `Instance`'s parameters and metadata; kWrongClass for everything else, a table included.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kLookupTable; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::LookupTableImpl");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<LookupTableImpl, LookupTable, ViewBinding>(this, wanted);
    }

    Weak<k3::Scene> scene;
    Weak<Context> context;
    ElementPool<Instance> instances;
    ElementPool<Reference> references;
    ElementIndex<Instance> instancesById;      ///< by property 0x0f
    ElementIndex<Reference> referencesById;    ///< by property 0x0f
    TextIndex<String> selectorOwners;          ///< selector id to the id of the instance that carries it
    ElementIndex<Instance> instancesByBsId;    ///< by parameter 0x9e
    ElementIndex<Reference> referencesByBsId;  ///< by parameter 0x9e
    NodeToInstance nodeToInstance;
    InstanceToNodes instanceToNodes;
    ElementIndex<PersistentSelector> selectorsById;  ///< by full id; null remembers that there is none
    qfxml::NameGenerator nameGenerator;
    WatchedMap<k3::Layer, ElementSet<Instance>> layerMembers;   ///< waits for `ApplyPendingBindings`
    WatchedMap<k3::Viewport, Weak<Reference>> viewportTargets;  ///< waits for `ApplyPendingBindings`
    ElementSet<Reference> loadedReferences;                     ///< what file loads brought
    std::set<String> allowedIds;
    std::set<String> allowedPaths;
    bool filterActive = false;
    WatchedMap<k3::Layer, Counted<Reference>>
        layerReferences;  ///< layers whose member is a loaded file's root
    Counted<Reference>
        loadPlaceholder;  ///< empty reference that the next file load fills, though its server id is known
};

}  // namespace qn::graph
