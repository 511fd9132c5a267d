#pragma once

#include "frame/host/matrix.h"
#include "frame/host/object3d.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/reference_source.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qn::k3 {

class Scene;
class Track;

/// Which of a node's metadata `GetExtendedMetadata` merges.
namespace ExtendedMetadata {
inline constexpr int kNode = 1;
inline constexpr int kInstance = 2;
inline constexpr int kReference = 4;
inline constexpr int kAll = 7;
}  // namespace ExtendedMetadata

enum class MetadataFormatEnum : int { kPlain = 0 };

/// An element of the scene tree. A parent counts its children; a child knows its parent by a plain pointer
/// that removal resets. Children stand in a chain and can be reached by index in constant time once the index
/// was built.
class Node : public ReferenceSource {
public:
    Node();
    ~Node() override;

    // The tree.
    Node* GetParent() const noexcept { return parent_; }
    Node* GetFirstChild() const noexcept { return first_; }
    Node* GetLastChild() const noexcept { return last_; }
    Node* GetNextSibling() const noexcept { return next_; }
    int GetChildCount() const noexcept { return childCount_; }
    /// Null outside.
    Node* GetChildAt(int index) const;
    /// The scene, or null for a node outside of one; a scene's is itself.
    Scene* GetScene() const noexcept { return scene_; }
    /// A new last child, borrowed. The arguments mean nothing.
    Node* CreateChildNode(int, int, int);
    /// Makes this the last child of `parent`, out of its former place; nothing if that would make a ring.
    void AttachTo(Node* parent);
    /// Takes the node and its subtree out of the scene.
    void Remove(int reserved);
    /// Takes a child (with its subtree) out; with `detach` out of layers and selection, too.
    void _RemoveChild(Node* child, bool detach);
    /// Calls `function(node, argument)` on this node and everything below it, parents first, siblings in
    /// order, until it answers false. The flags are carried, not interpreted.
    using VisitFunction = bool (*)(Node* node, ParamWord argument);
    void Visit(unsigned flags, VisitFunction function, ParamWord argument);
    /// A copy with its subtree, which a generator makes first if it has not yet; content and instances are
    /// shared, the rest is private. Null on failure.
    Counted<ReferenceSource> Clone(unsigned mode) const override;
    /// Whether the node stands in the host's global list of nodes, see `__AddToGlobalList`.
    bool IsInGlobalList() const noexcept { return !unlisted_; }

    // Fields.
    void SetName(const wchar_t* name);
    const String& GetName() const noexcept { return name_; }
    /// A text of its own; the name is reported where it is empty.
    void SetDisplayName(const String& text);
    String GetDisplayName() const;
    /// which 0: node to parent; 1: the object's own. Null resets to the identity.
    void SetMatrix(const Matrix4<double>* matrix, int which);
    void GetMatrix(Matrix4<double>* out, int which) const;
    void GetOwnMatrix(Matrix4<double>* out) const { GetMatrix(out, 1); }
    void SetThirdMatrix(const Matrix4<double>& matrix);
    void GetThirdMatrix(Matrix4<double>* out) const;
    /// Matrix 0, then the parent's world matrix.
    Matrix4<double> GetWorldMatrix() const;
    void SetObject(Object3D* object);
    /// Borrowed, or null.
    Object3D* GetObject() const noexcept { return object_.Get(); }
    unsigned GetFlags() const noexcept { return flags_; }
    void SetFlags(unsigned flags);
    /// Word 0 is the flags word, word 1 stands alone; others read 0.
    unsigned GetAttributeWord(int index) const noexcept;
    void SetAttributeWord(int index, unsigned word);
    void SetVisible(int visible);
    void SetIntegerAttribute(int value, int reserved);
    int GetIntegerAttribute() const noexcept;
    void SetShortValue(std::int16_t value);
    std::int16_t GetShortValue() const noexcept { return shortValue_; }
    void SetOpacity(float opacity);
    float GetOpacity() const noexcept;  ///< 1.0 unless set
    void SetText(const String& text);
    String GetText() const;
    /// The animation track of that kind, borrowed, or null.
    Track* GetTrack(int kind) const;
    void SetTrack(int kind, Track* track);
    /// A private merge of the metadata of reference, instance, node (later wins); `mask` of ExtendedMetadata.
    Var GetExtendedMetadata(MetadataFormatEnum format, int mask, int reserved) const;

    /// Flags (0x50), visibility (0x64) and 7, 8 have meanings of their own.
    ParamWord GetParam(int id, ParamWord fallback, k3_VALUETYPE type) const override;
    void SetParamVar(int id, const Var& value) override;
    Var GetParamVar(int id) const override;
    void DeleteParam(int id) override;
    VarMap* GetMetadata(bool create) const override;
    void SetMetadata(VarMap* map) override;
    Params* GetParams(bool create) override;
    void SetParams(Params* params) override;

    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum Load(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return "k3_node"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

protected:
    /// Called after each change of this node or its place (undo, change events).
    void Changed();
    void SetSceneOfSubtree(Scene* scene);

private:
    friend class Scene;
    friend class SceneAccess;  // undo, generated content and streams
    struct Rare;
    struct ChildIndex;
    /// A fresh node of the same class, null where the class cannot be cloned.
    virtual Counted<Node> MakeSame() const;
    void CopyFieldsFrom(const Node& source);
    Rare& Rarely();
    bool IsBelow(const Node* ancestor) const;
    bool IsBelowTop(const Node& top, Stream* stream) const;
    void Link(Node* child);
    Counted<Node> Unlink(Node* child);
    ResultEnum SaveFields(Stream* stream, Context* context) const;
    ResultEnum SaveChildren(Stream* stream, Context* context) const;
    void ReadWords(Stream* stream);
    void ReadPairedObject(Stream* stream, Context* context);
    void ReadTrack(Stream* stream, Context* context);
    void ReadChildren(Stream* stream, Context* context);

    Scene* scene_ = nullptr;
    Node* parent_ = nullptr;
    Node* first_ = nullptr;
    Node* last_ = nullptr;
    Node* next_ = nullptr;
    Node* previous_ = nullptr;
    mutable std::unique_ptr<ChildIndex> childIndex_;
    String name_;
    Counted<Object3D> object_;
    std::unique_ptr<Matrix4<double>> matrix_;  // null: identity
    std::unique_ptr<Rare> rare_;               // other matrices, display text, opacity, ...
    unsigned flags_ = 0;
    unsigned word1_ = 0;
    int childCount_ = 0;
    std::uint32_t changeStamp_ = 0;  // the generation epoch of the last change
    std::int16_t shortValue_ = 0;
    bool unlisted_ = false;
    bool grouped_ = false;  // was once made a member of a layer or of the selection
};

static_assert(sizeof(Node) < 200);

/// Put a node into, or take it out of, the host's global list of nodes: nodes of a structure that is not
/// shown stand outside. Made for `Node::Visit`; the answer is true. The argument of the first means nothing,
/// that of the second is the scene (`Scene*`) which the node left, or 0.
bool __AddToGlobalList(Node* node, ParamWord argument);
bool __RemoveFromGlobalList(Node* node, ParamWord argument);

/// A PMI note shown as a node. Class key "k3_detail_markup".
class DetailMarkup final : public Node {
public:
    const char* GetInterfaceName() const override { return "k3_detail_markup"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    Counted<Node> MakeSame() const override;
};

/// An animation track: values over time in seconds.
class Track : public ReferenceSource {
public:
    /// The times at which the track has values, as an array of numbers.
    virtual Var GetKeys() const = 0;
    virtual bool Accepts(const Var& key) const = 0;
    virtual bool SetValue(float time, const AffineParts& parts, int flags, const Var& key) = 0;

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn::k3

namespace qn {

/// Whether the node's "$QN.CAD.PMI", "PMIType" is set and not 0.
namespace hack {
bool IsPMINode(k3::Node* node);
/// Whether the node is the view node of a viewport of kind 1 or 2.
bool IsModelViewOrStepViewCameraNode(k3::Node* node);
}  // namespace hack

}  // namespace qn
