#pragma once

#include "construction/hierarchy_generator.h"
#include "frame/host/context.h"
#include "frame/host/node.h"
#include "graph/lookup_table.h"

namespace qn::graph {

/// The class behind "qn.graph.hierarchygenerator". Clean until it gets something to make nodes from, and
/// again once they are made: a clean generator leaves its node alone.
class HierarchyGeneratorImpl final : public HierarchyGenerator {
public:
    /// Replaces the children of `target`, a node, by one node for each occurrence. Gives kWrongClass for
    /// anything else, kNothing for what only claims to be a node. The context is used if none is kept yet;
    /// one is made where both are missing.
    ResultEnum Generate(Extension* target, Context* context) override;
    /// The root definition. Null once saving is disabled: then the engine has to store the nodes.
    Interface* GetGeneratedRoot() const override;
    void SetSelector(const Selector& selector) override;
    void DisableSave() override { saveEnabled_ = false; }
    void ResolveReferenceSelectors() override;
    void StoreReferenceSelectors() override;
    void RunReferenceInstructions() override;
    k3::Node* GetTargetNode() const override { return targetNode_.Get(); }
    Reference* GetRootReference() const override { return selector_.GetReference(); }

    /// Writes nothing at all, and succeeds, once saving is disabled.
    ResultEnum Save(Stream* stream, Context* context) override;
    /// Chunk 0x1000, which this class reads and never writes itself, is the root definition: it goes into a
    /// new table.
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    /// kWrongClass unless the source is a hierarchy generator; copies parameters and metadata only.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kHierarchyGenerator; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyGeneratorImpl");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<HierarchyGeneratorImpl, HierarchyGenerator>(this, wanted);
    }

private:
    void GenerateInto(k3::Node& node);
    void AdoptRoot(ReferenceImpl& root, const Context* context);

    Selector selector_;
    Counted<LookupTable> table_;
    bool dirty_ = false;
    bool saveEnabled_ = true;
    Weak<k3::Node> targetNode_;
    Counted<Context> context_;
};

}  // namespace qn::graph
