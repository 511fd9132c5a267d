#pragma once

#include "frame/host/collections.h"
#include "frame/host/reference_source.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace qn {

class Context;

namespace k3 {

class Material;

/// Content that nodes show; one object can be shared by many nodes. Class key "k3_object3d".
class Object3D : public ReferenceSource {
public:
    /// Links the other object of a handle-safe pair to this one, counted, one way; null unlinks.
    void AttachHandleObject(Object3D* other) { handle_ = Counted<Object3D>(other); }
    Object3D* GetHandleObject() const { return handle_.Get(); }

    const char* GetInterfaceName() const override { return "k3_object3d"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    Counted<Object3D> handle_;
};

/// Content that is no geometry, read through its parameters. Class key "k3_generic".
class Generic : public ReferenceSource {
public:
    const char* GetInterfaceName() const override { return "k3_generic"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

/// A surface finish. Class key "k3_material". Colours are linear red, green, blue, alpha, 0 to 1.
class Material final : public ReferenceSource {
public:
    const String& GetName() const { return name_; }
    void SetName(const String& name) { name_ = name; }
    const std::array<float, 4>& GetColour() const { return colour_; }
    void SetColour(const std::array<float, 4>& colour) { colour_ = colour; }

    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return "k3_material"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    String name_;
    std::array<float, 4> colour_{0.8f, 0.8f, 0.8f, 1.0f};
};

/// A place for a material on a renderable.
class MaterialSlot final : public Interface {
public:
    Material* GetMaterial() const { return material_.Get(); }
    void SetMaterial(Material* material) { material_ = Counted<Material>(material); }

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    Counted<Material> material_;
};

/// Content with material slots. Class key "k3_renderable".
class Renderable : public Object3D {
public:
    /// Adds the live slots, in order; false if there is none.
    virtual bool CollectMaterialSlots(Collection* slots, int reserved) const = 0;
    virtual void MaterialsChanged() = 0;

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

/// Triangles that share one material slot.
struct MeshGroup {
    std::uint32_t firstIndex = 0;  ///< into the index list
    std::uint32_t indexCount = 0;  ///< a multiple of 3
    std::uint32_t slot = 0;
};

/// A triangle mesh, lengths in millimetres. Class key "k3_mesh". Stored and loaded as blocks.
class Mesh final : public Renderable {
public:
    Mesh();
    ~Mesh() override;

    /// x, y, z for each vertex.
    const std::vector<float>& GetPositions() const { return positions_; }
    /// x, y, z for each vertex, or nothing.
    const std::vector<float>& GetNormals() const { return normals_; }
    /// Three vertex numbers for each triangle.
    const std::vector<std::uint32_t>& GetIndices() const { return indices_; }
    const std::vector<MeshGroup>& GetGroups() const { return groups_; }
    /// Takes the geometry; false, and unchanged, if sizes or indices do not fit together.
    bool SetGeometry(std::vector<float> positions, std::vector<float> normals,
                     std::vector<std::uint32_t> indices, std::vector<MeshGroup> groups);
    int GetSlotCount() const { return static_cast<int>(slots_.size()); }
    MaterialSlot* GetSlot(int index) const;
    /// Adds a slot with the material (may be null); gives its number.
    int AddSlot(Material* material);

    bool CollectMaterialSlots(Collection* slots, int reserved) const override;
    void MaterialsChanged() override;
    ResultEnum Save(Stream* stream, Context* context) override;
    /// Fails if the parts do not fit together.
    ResultEnum Load(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return "k3_mesh"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    std::vector<float> positions_, normals_;
    std::vector<std::uint32_t> indices_;
    std::vector<MeshGroup> groups_;
    std::vector<Counted<MaterialSlot>> slots_;
};

/// A substitution entry on a node: stands in front of the object it substitutes, one step.
class MaterialSubstitution final : public Object3D {
public:
    Object3D* GetSubstituted() const { return object_.Get(); }
    void SetSubstituted(Object3D* object) { object_ = Counted<Object3D>(object); }

    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return "k3_materialsubstitution"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    Counted<Object3D> object_;
};

/// Writes an object that may have a handle partner: alone one chunk under the first id; with a partner the
/// partner under the first id and the object under the second. False if a write failed.
bool SaveObjectHandleSafeForm(Context* context, Stream* stream, Object3D* object, unsigned short firstId,
                              unsigned short secondId);

}  // namespace k3
}  // namespace qn
