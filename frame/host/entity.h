#pragma once

#include "frame/host/collections.h"
#include "frame/host/reference_source.h"

namespace qn::k3 {

class Scene;

/// Number of an entity's type; 6 is the companion that outlives its viewport while something depends on it.
enum k3_TYPE : int { kTypeEntity = 0, kTypeBom = 1, kTypeDependable = 6 };

/// Base of objects bound to a scene. Class key "qn.k3.entity".
class Entity : public ReferenceSource {
public:
    explicit Entity(Scene* scene = nullptr, int type = kTypeEntity);
    ~Entity() override;

    virtual Scene* GetScene() const;
    virtual void SetScene(Scene* scene);
    virtual int GetType() const { return type_; }
    virtual bool IsTypeOf(k3_TYPE type) const { return type_ == type; }
    const String& GetName() const { return name_; }
    void SetName(const String& name) { name_ = name; }
    /// Objects that depend on this one, borrowed; made when first asked for.
    InterfaceArray* GetDependants();

    void Clear() override;
    ResultEnum Load(Stream* stream, Context* context) override;
    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return "qn.k3.entity"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

protected:
    /// Copies what `ReferenceSource` copies, and the name.
    ResultEnum CloneFrom(const Entity& source, unsigned flags);

private:
    Weak<Scene> scene_;
    String name_;
    Counted<InterfaceArray> dependants_;
    int type_;
};

}  // namespace qn::k3
