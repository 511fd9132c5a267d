#include "frame/host/module_classes.h"
#include "importers/step/step_importer.h"

namespace {

constexpr qn::ModuleClass kClasses[] = {
    {qn::step::StepImporter::kKey, L"STEP", &qn::MakeOne<qn::step::StepImporter>},
};

}  // namespace

/// The module's one exported function.
extern "C" __attribute__((visibility("default"))) std::uintptr_t K3DLLFunc(unsigned code, void* first,
                                                                           void* second) {
    return qn::AnswerHost(kClasses, code, first, second);
}
