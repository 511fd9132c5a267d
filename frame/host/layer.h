#pragma once

#include "frame/host/entity.h"
#include "frame/host/node.h"

#include <memory>

namespace qn::k3 {

/// A named grouping of nodes. Members are not counted; a node that left the scene stays listed, a dead one
/// reads null. Class key "k3_layer".
class Layer final : public Entity {
public:
    explicit Layer(Scene* scene = nullptr);
    ~Layer() override;

    /// Nothing happens for null or a node that is a member already.
    void AddNode(Node* node);
    void RemoveNode(Node* node);
    void DeleteAll();
    /// Borrowed; null before the first member. To be changed through the layer only.
    PointerArray* GetMembers() const;
    const String& GetDisplayName() const { return displayName_; }
    void SetDisplayName(const String& text) { displayName_ = text; }

    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return "k3_layer"; }
    using Entity::IsTypeOf;
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    friend class SceneAccess;
    struct Members;
    void BeforeChange();
    void KeepStored(Interface* member);
    std::unique_ptr<Members> members_;
    String displayName_;
};

enum class ViewKind : int { kOther = 0, kModel = 1, kStep = 2, kDetail = 3 };

/// A view on the scene. Parameter 0x8112 links weakly to what it belongs to, parameter 0x50 is its flags
/// word. Class key "k3_viewport".
class Viewport final : public Entity {
public:
    explicit Viewport(Scene* scene = nullptr);
    ~Viewport() override;

    /// The node it looks at, or null.
    Node* GetViewNode() const { return viewNode_.Get(); }
    void SetViewNode(Node* node) { viewNode_ = Weak<Node>(node); }
    /// The layer that shows what the view shows, or null.
    Layer* GetLayer() const { return layer_.Get(); }
    void SetLayer(Layer* layer) { layer_ = Counted<Layer>(layer); }
    /// A further scene object, deleted with the viewport, or null.
    Entity* GetCompanion() const { return companion_.Get(); }
    void SetCompanion(Entity* companion) { companion_ = Weak<Entity>(companion); }
    ViewKind GetKind() const { return kind_; }
    void SetKind(ViewKind kind) { kind_ = kind; }

    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return "k3_viewport"; }
    using Entity::IsTypeOf;
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    Weak<Node> viewNode_;
    Counted<Layer> layer_;
    Weak<Entity> companion_;
    ViewKind kind_ = ViewKind::kOther;
};

}  // namespace qn::k3
