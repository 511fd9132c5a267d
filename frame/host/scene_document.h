#pragma once

#include "frame/host/layer.h"
#include "frame/host/node.h"
#include "frame/host/undo.h"

#include <memory>

namespace qn::k3 {

/// The side of a scene that takes host calls about single nodes.
class SceneImpl {
public:
    /// Only recorded.
    virtual void NotifyNode(Node* node, const Var& value) = 0;

    static const ClassRecord& StaticClass();
    virtual void* CastTo(const ClassRecord& wanted);

protected:
    ~SceneImpl() = default;
};

/// The document: the root node, with layers, viewports and selection. Class key "k3_scene".
class Scene final : public Node, public SceneImpl {
public:
    /// A recorded `HostCall`.
    struct HostCallRecord {
        int first = 0;
        int second = 0;
    };
    /// A recorded `NotifyNode`.
    struct NodeNotice {
        Weak<Node> node;
        Var value;
    };

    Scene();
    ~Scene() override;

    /// A new empty top-level node, borrowed.
    Node* CreateEmptyNode(int, int, int);
    /// Loads a file into the scene as one new top-level node, borrowed; null on failure or cancellation, with
    /// the scene as it was and the cause in the context. The importer is chosen by `importer`, else by
    /// content and ending.
    Node* LoadFile(const wchar_t* file, Context* context, unsigned flags, const Guid& importer);
    /// Null unless recording was switched on with `EnableUndo`.
    UndoRecorder* GetUndoRecorder(int reserved) const;
    void EnableUndo(bool on);
    /// Seconds.
    float GetCurrentTime() const;
    void SetCurrentTime(float seconds);
    /// Takes a viewport, layer or other entity out of the scene's arrays; the flag means nothing.
    void DeleteObject(Interface* object, int flag);
    /// Removes a node and its subtree; recorded in the open undo item.
    void DeleteNode(int reserved, Node* node, int reserved2);
    /// Brackets a batch of changes; nests, and holds back change events until the outermost end.
    void BeginUpdate();
    void EndUpdate();
    /// Change events that were sent so far.
    unsigned GetChangeEventCount() const;

    /// The layers, borrowed; made when first asked for.
    InterfaceArray* GetLayers();
    /// Shares the array; its layers become this scene's.
    void SetLayers(InterfaceArray* layers);
    /// The viewports, borrowed; null until the first one.
    InterfaceArray* GetViewports() const;
    /// A strong array of all viewports, empty if there is none.
    Counted<InterfaceArray> GetAllViewports() const;
    Viewport* CreateViewport(const String& name);
    Layer* CreateLayer(const String& name);
    /// Entities that are neither layers nor viewports, borrowed; made when first asked for.
    InterfaceArray* GetEntities();
    /// The selected nodes, borrowed, or null. Change the selection by setting another array.
    PointerArray* GetSelectedNodes() const;
    void SetSelectedNodes(PointerArray* nodes);

    /// The node that is being worked on, borrowed, or null.
    Node* QueryCurrentNode() const;
    void SetCurrentNode(Node* node);
    /// Only recorded.
    void HostCall(int first, int second);
    const std::vector<HostCallRecord>& GetHostCalls() const;
    void NotifyNode(Node* node, const Var& value) override;
    const std::vector<NodeNotice>& GetNodeNotices() const;
    /// Observers are watched, not counted. Each gets `OnNotify(Message)` for every `Notify` and every change
    /// event.
    void AddObserver(ReferenceTarget* observer);
    void RemoveObserver(ReferenceTarget* observer);
    /// Reaches the observers at once, also within an update.
    void Notify(unsigned code, const Var& value) override;
    /// The code of change events.
    static constexpr unsigned kChangeEvent = 1;

    /// Which structure is shown, and what it hands to the scene, goes into the open undo item.
    void SetParamVar(int id, const Var& value) override;

    ResultEnum Save(Stream* stream, Context* context) override;
    /// Also binds what it read to this scene: layers, viewports, entities and structures.
    ResultEnum Load(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return "k3_scene"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    friend class SceneAccess;
    struct Data;
    Counted<Node> MakeSame() const override;
    std::unique_ptr<Data> data_;
};

/// The current structure and all structures of a scene (parameters 0x8c and 0x8d).
class BomHelper {
public:
    explicit BomHelper(Scene* scene) : scene_(scene) {}
    /// Borrowed, or null.
    Interface* GetCurrentBom() const;
    /// The stored array, borrowed, or null.
    VarArray* GetBoms() const;

private:
    Scene* scene_;
};

}  // namespace qn::k3

namespace qn {

/// Reads a scene file from the stream and adds one top-level node, borrowed; null on failure.
k3::Node* FastMerge(k3::Scene* scene, Context* context, Stream* stream);

/// Whether a scene carries the identifier extension that exempts it from checks (parameter 0xb0).
class TolvaExt : public Extension {
public:
    const char* GetInterfaceName() const override { return "k3_tolvaext"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn
