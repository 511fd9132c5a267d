#pragma once

#include "frame/host/collections.h"
#include "graph/child_list.h"
#include "graph/post_processing_instruction.h"
#include "graph/reference.h"

namespace qn::graph {

/// The class behind "qn.graph.reference".
class ReferenceImpl final : public Reference {
public:
    ReferenceImpl();
    explicit ReferenceImpl(LookupTable* table);
    /// Remembers the source's origin. Takes the source's table where `table` is null.
    explicit ReferenceImpl(Reference* source, LookupTable* table = nullptr);
    ~ReferenceImpl() override;

    Counted<Instance> CreateInstance() override;
    Counted<Instance> CreateInstanceWithId(const String& id) override;
    Counted<Instance> CreateInstanceWithBsId(const String& id, const String& bsId) override;
    int GetChildCount() const override;
    Counted<Instance> GetChild(int index) const override;
    void AddChild(Instance* instance) override;
    bool HasChild(Instance* instance) const override;
    Counted<Reference> CreateCopy() override;
    void RemoveChild(Instance* instance) override;
    void RemoveChildAt(int index) override;
    int GetInstanceCount() const override;
    Counted<Instance> GetInstance(int index) const override;
    int GetSelectorCount() const override;
    Selector GetSelector(int index) const override;
    Var GetSelectorPath(int index) const override;
    void RemoveSelector(int index) override;
    void AddSelectorPath(const Var& path) override;
    void AddSelector(const Selector& selector) override;
    void ResolveSelectors(bool recurse, Var* cache) override;
    void StoreSelectors(bool recurse, Var* visited) override;
    Var GetTarget() const override;
    void SetTarget(const Var& target) override;
    bool HasNoTargetLink() const override;
    Counted<Reference> ResolveTarget(const Var& key) override;
    void CopyContentFrom(Reference* source) override;
    void ReloadExternalTarget() override;
    bool IsLeaf() const override;
    int GetInstructionCount() const override;
    Counted<PostProcessingInstruction> GetInstruction(int index) const override;
    void RemoveInstruction(int index) override;
    Counted<PostProcessingInstruction> AddInstruction() override;
    void RunInstructions(Extension* target, Context* context) override;
    void RunAllInstructions(Extension* target, Context* context) override;
    Var CreateResolverCache() override;
    Reference* RegisterInTable(LookupTable* table) override;
    void RunInstructionsRecursive(Extension* target, Context* context,
                                  std::set<Reference*>& visited) override;
    void SetInstanceReference(Instance* instance) override;
    void ClearInstances() override;
    void AddInstances(const std::vector<Instance*>& instances) override;

    void SetProperty(PropEnum id, const Var& value) override;
    Var GetProperty(PropEnum id, int inherit) const override;
    LookupTable* GetLookupTable() const override;
    String ToDebugString() const override;

    /// The entry at `index`, borrowed, without a count; null outside.
    Instance* PeekChild(int index) const { return children_.Get(index); }
    /// What `ResolveSelectors` and `StoreSelectors` do without `recurse`.
    void ResolveOwnSelectors();
    void StoreOwnSelectors();

    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    ResultEnum Save(Stream* stream, Context* context) override;
    /// Copies parameters and metadata only.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kReference; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<ReferenceImpl, Reference>(this, wanted);
    }

private:
    friend class Registration;
    struct ChunkRow;
    static const ChunkRow kChunks[];
    void ReadProperties(Stream* stream, Context* context);
    void ReadTarget(Stream* stream, Context* context);
    void ReadChildren(Stream* stream, Context* context);
    void ReadInstructions(Stream* stream, Context* context);
    void ReadTargetObject(Stream* stream, Context* context);
    void ReadHandleObject(Stream* stream, Context* context);
    void SaveTarget(Stream* stream, Context* context) const;
    void SaveChildren(Stream* stream, Context* context) const;

    void BindTable(LookupTable* table);
    Counted<Instance> CreateListedInstance(LookupTableImpl& table);
    Var GetGenericContent() const;
    Counted<Reference> ResolveEntry(const Var& key);
    Counted<Reference> ResolveFile(const Var& file);
    Counted<Reference> KeepResolved(const Var& key, Counted<Reference> result);
    void RunInstruction(PostProcessingInstruction& instruction, Extension* target, Context* context) const;

    ChildList children_;
    std::vector<Weak<Instance>> instances_;
    Var resolvedTargets_;
    Var selectors_;
    Var target_;
    Weak<LookupTableImpl> table_;
    Var properties_;
    Counted<VarArray> instructions_;
};

}  // namespace qn::graph
