#include "exchange/metadata_export.h"

#include "exchange/file_access.h"
#include "exchange/limits.h"
#include "exchange/tree_writer.h"
#include "frame/host/scene_document.h"

namespace qn::exchange {
namespace {

constexpr int kVersion = 1;

std::vector<k3::Node*> ChildrenOf(const k3::Node& parent) {
    std::vector<k3::Node*> children;
    for (k3::Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling())
        children.push_back(child);
    return children;
}

void WriteScene(JsonWriter& json, ValueWriter& values, k3::Scene& scene) {
    json.Key("scene");
    json.BeginObject();
    json.TextField("name", scene.GetName());
    values.WriteField("bs_id", scene.GetParamVar(Param::kBsId));
    values.WriteField("external_ids", scene.GetParamVar(Param::kExternalIds));
    values.WriteField("metadata", Var(scene.GetMetadata(false)));
    json.EndObject();
}

/// The whole document; false if the scene holds more values than an export may have.
bool WriteDocument(JsonWriter& json, k3::Scene& scene, bool topLevelOnly, TextBlobs& blobs) {
    ValueWriter values(json, &blobs);
    TreeOptions options;
    options.levels = topLevelOnly ? 1 : TreeOptions::kAllLevels;
    json.BeginObject();
    json.TextField("format", std::string_view("assembly-metadata"));
    json.IntegerField("version", kVersion);
    json.Key("top_level_only");
    json.Bool(topLevelOnly);
    WriteScene(json, values, scene);
    TreeWriter(json, values, options).Write(ChildrenOf(scene));
    json.EndObject();
    return values.IsWithinLimit();
}

}  // namespace

bool MetadataExport::Export(k3::Scene* scene, const String& outputFile, const String& blobFolder,
                            bool topLevelOnly, Context* context) {
    if (!scene || outputFile.IsEmpty() || blobFolder.IsEmpty()) return false;
    const Counted<Context> used = UsedContext(context);
    TextBlobs blobs(blobFolder);
    JsonWriter json;
    if (!WriteDocument(json, *scene, topLevelOnly, blobs)) {
        String text;
        text.Format(L"the metadata holds more than %lld values",
                    static_cast<long long>(exchange_limits::kMostValues));
        used->Fail(LoadFailure::kLimit, outputFile + L": " + text);
        return false;
    }
    // The document comes last: it never names a file that is not there.
    return blobs.Write(*used) && WriteOutput(outputFile, json.Take(), *used);
}

bool MetadataExport::IsTypeOf(const char* name) const {
    return EqualKeys(name, qfxml::ExchangeKey::kMetadataExport) || BrineServerMetadataExport::IsTypeOf(name);
}

const ClassRecord& MetadataExport::StaticClass() {
    static const ClassRecord& record = InternClass("qn::exchange::MetadataExport");
    return record;
}

void* MetadataExport::CastTo(const ClassRecord& wanted) {
    return CastThrough<MetadataExport, BrineServerMetadataExport>(this, wanted);
}

}  // namespace qn::exchange
