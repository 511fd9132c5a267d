#include "frame/host/module_classes.h"
#include "importers/gltf/gltf_importer.h"

namespace {

constexpr qn::ModuleClass kClasses[] = {
    {qn::gltf::GltfImporter::kKey, L"glTF", &qn::MakeOne<qn::gltf::GltfImporter>},
};

}  // namespace

/// The module's one exported function.
extern "C" __attribute__((visibility("default"))) std::uintptr_t K3DLLFunc(unsigned code, void* first,
                                                                           void* second) {
    return qn::AnswerHost(kClasses, code, first, second);
}
