#include "exchange/shallow_export.h"

#include "engine/stream/scene_file.h"
#include "exchange/file_access.h"
#include "exchange/limits.h"
#include "exchange/shallow_options.h"
#include "exchange/shallow_scene.h"
#include "exchange/spatial_index.h"
#include "frame/host/collections.h"

#include <algorithm>
#include <iterator>

namespace qn::exchange {
namespace {

constexpr int kVersion = 1;

bool WriteJson(const ShallowArguments& arguments, const ShallowOptions& options, Context& context) {
    JsonWriter json;
    ValueWriter values(json, nullptr);
    json.BeginObject();
    json.TextField("format", std::string_view("assembly-structure"));
    json.IntegerField("version", kVersion);
    json.TextField("name", options.title);
    if (auto* header = Cast<VarMap>(arguments.header)) values.WriteField("header", Var(header));
    TreeWriter(json, values, options.tree).Write(options.tops);
    json.EndObject();
    if (values.IsWithinLimit()) return WriteOutput(arguments.outputFile, json.Take(), context);
    String text;
    text.Format(L": the structure holds more than %lld values",
                static_cast<long long>(exchange_limits::kMostValues));
    context.Fail(LoadFailure::kLimit, arguments.outputFile + text);
    return false;
}

bool WriteScene(const ShallowArguments& arguments, const ShallowOptions& options, Context& context) {
    const auto scene = CopyShallow(options);
    if (!scene) return false;
    if (auto* header = Cast<VarMap>(arguments.header)) scene->SetMetadata(header);
    return SaveSceneFile(*scene, arguments.outputFile, context);
}

bool WriteIndex(const String& file, const ShallowOptions& options, Context& context) {
    SpatialIndex index;
    for (k3::Node* top : options.tops) {
        SpatialIndex part = IndexOf(*top);
        std::move(part.entries.begin(), part.entries.end(), std::back_inserter(index.entries));
    }
    return WriteOutput(file, FormatSpatialIndex(index), context);
}

}  // namespace

bool ShallowExport::Export(const String& text0, const String& text1, const String& text2, Interface* object3,
                           Interface* object4, const String& text5, const String& text6, const String& text7,
                           const String& text8, Context* context) {
    const Counted<Context> used = UsedContext(context);
    const ShallowArguments arguments{text0, text1, text2, object3, object4, text5, text6, text7, text8};
    ShallowOptions options;
    if (!ReadShallowOptions(arguments, options, *used)) return false;
    const bool isWritten = options.format == ShallowFormat::kScene ? WriteScene(arguments, options, *used)
                                                                   : WriteJson(arguments, options, *used);
    return isWritten && (text1.IsEmpty() || WriteIndex(arguments.spatialIndexFile, options, *used));
}

bool ShallowExport::IsTypeOf(const char* name) const {
    return EqualKeys(name, qfxml::ExchangeKey::kShallowExporter) || ShallowExporter::IsTypeOf(name);
}

const ClassRecord& ShallowExport::StaticClass() {
    static const ClassRecord& record = InternClass("qn::exchange::ShallowExport");
    return record;
}

void* ShallowExport::CastTo(const ClassRecord& wanted) {
    return CastThrough<ShallowExport, ShallowExporter>(this, wanted);
}

}  // namespace qn::exchange
