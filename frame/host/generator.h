#pragma once

#include "frame/host/reference_source.h"

namespace qn {

/// Option of a load: what generators make is not wanted, only what they make it from. Nothing is indexed
/// then.
inline constexpr const char* kInertGenerators = "inert_generators";

}  // namespace qn

namespace qn::k3 {

/// Makes content below the object it is attached to. An object carries at most one generator for each class
/// key; it is stored with the object.
class Generator : public ReferenceSource {
public:
    /// The chunk under which the engine writes what `GetGeneratedRoot` gives.
    static constexpr int kRootChunk = 0x1000;

    /// Makes the content below `target`.
    virtual ResultEnum Generate(Extension* target, Context* context) = 0;
    /// What the content is made from, borrowed, or null: the engine writes it as chunk 0x1000.
    virtual Interface* GetGeneratedRoot() const { return nullptr; }
    virtual void OnAttach(ReferenceSource* owner);
    virtual void OnDetach(ReferenceSource* owner);
    virtual ResultEnum OnPropertiesUI(Context* context);

    /// The generator attached to the object, borrowed, or null.
    static Generator* Get(const Extension* object);
    /// Whether a generator of that class key is attached.
    static bool IsPresent(const Extension* object, const char* key);
    /// Attaches it, counted, in place of the present one.
    static void Attach(ReferenceSource* object, Generator* generator);
    static void Detach(ReferenceSource* object);

    ResultEnum Save(Stream* stream, Context* context) override;
    const char* GetInterfaceName() const override { return "qn.k3.generator"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn::k3
