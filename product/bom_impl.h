#pragma once

#include "graph/node_list_owner.h"
#include "product/bom.h"

#include <vector>

namespace qn::k3 {

class Scene;

/// The class behind "qn.k3.bom".
class BomImpl final : public Bom, public graph::NodeListOwner {
public:
    explicit BomImpl(Scene* scene = nullptr);
    ~BomImpl() override;

    ResultEnum Initialize(const Var& name, bool empty) override;
    ResultEnum Update() override;
    ResultEnum Activate() override;
    Var GetNodes() const override;
    Node* GetRootNode() const override { return rootNode_.Get(); }
    Counted<InterfaceArray> GetLayers() const override { return layers_; }

    /// The root, the nodes, then one chunk for each layer.
    ResultEnum Save(Stream* stream, Context* context) override;
    /// Objects of the wrong class are passed over, and it is still a success.
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    /// kWrongClass unless the source is a `BomImpl`; copies what an entity copies.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return kBomKey; }
    using Entity::IsTypeOf;
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    ResultEnum MakeRoot(Scene& scene);
    ResultEnum Fill(Scene& scene, bool isFirst, bool empty);
    ResultEnum Snapshot(Scene& scene, bool withViewports);
    ResultEnum ClearScene(Scene& scene);
    ResultEnum CloneFromScene(Scene& scene);
    void CarryParameters(Scene& scene);
    void ClaimViewports(Scene& scene);
    void LeaveScene(Scene& scene);
    void EnterScene(Scene& scene);
    /// The nodes, so that the list may change meanwhile.
    std::vector<Counted<Node>> Nodes() const;

    Counted<Node> rootNode_;
    Counted<InterfaceArray> layers_;
    Counted<VarArray> nodes_;
};

}  // namespace qn::k3
