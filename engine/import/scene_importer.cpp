#include "engine/import/scene_importer.h"

#include "engine/runtime/byte_stream.h"
#include "engine/scene/merge_file.h"
#include "engine/stream/format.h"
#include "frame/host/scene.h"

namespace qn {

ImporterRecord SceneImporterRecord() {
    ImporterRecord record;
    record.key = "qn.importer.scene";
    record.name = L"scene";
    record.endings = {".qn"};
    record.magics = {std::string(scene_file::kMagic)};
    return record;
}

k3::Node* ImportSceneFile(k3::Scene* scene, const String& file, const String& name, Context* context) {
    const auto stream = ByteStream::OpenFile(file);
    if (!stream) {
        context->Fail(LoadFailure::kUnreadable, file + L": cannot be read");
        return nullptr;
    }
    k3::Node* top = k3::MergeSceneBytes(*scene, stream->Rest(), file, *context);
    if (top && top->GetName().IsEmpty()) top->SetName(name.c_str());
    return top;
}

}  // namespace qn
