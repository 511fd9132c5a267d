#pragma once

#include "frame/host/importer.h"

namespace qn::step {

/// The class behind "qn.importer.step": reads STEP files (ISO 10303-21 with an application protocol for
/// product structure). Files that the file refers to are noted, not opened.
class StepImporter final : public Importer {
public:
    static constexpr const char* kKey = "qn.importer.step";

    ResultEnum Import(const String& file, k3::Scene* scene, k3::Node* top, Context* context) override;

    const char* GetInterfaceName() const override { return kKey; }
    bool IsTypeOf(const char* name) const override {
        return EqualKeys(name, kKey) || Importer::IsTypeOf(name);
    }
    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::step::StepImporter");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<StepImporter, Importer>(this, wanted);
    }
};

}  // namespace qn::step
