#pragma once

#include "frame/host/importer.h"

namespace qn::gltf {

/// The class behind "qn.importer.gltf": reads glTF 2.0 files, text and binary.
class GltfImporter final : public Importer {
public:
    static constexpr const char* kKey = "qn.importer.gltf";

    ResultEnum Import(const String& file, k3::Scene* scene, k3::Node* top, Context* context) override;

    const char* GetInterfaceName() const override { return kKey; }
    bool IsTypeOf(const char* name) const override {
        return EqualKeys(name, kKey) || Importer::IsTypeOf(name);
    }
    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::gltf::GltfImporter");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<GltfImporter, Importer>(this, wanted);
    }
};

}  // namespace qn::gltf
