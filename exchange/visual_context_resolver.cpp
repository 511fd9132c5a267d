#include "exchange/visual_context_resolver.h"

#include "engine/scene/generated_content.h"
#include "exchange/file_access.h"
#include "exchange/filtered_merge.h"
#include "exchange/query_extraction.h"
#include "frame/host/collections.h"

namespace qn::exchange {
namespace {

constexpr unsigned kLoadFlags = 0x800002a;

/// Reads a file and has `parse` understand it; false with the cause in the context.
template <class Result>
bool ReadParsed(const String& file, bool (*parse)(std::string_view, Result&, ReadProblem&), Result& result,
                Context& context) {
    std::string bytes;
    if (!ReadInput(file, bytes, context)) return false;
    ReadProblem problem;
    if (parse(bytes, result, problem)) return true;
    context.Fail(problem.isLimit ? LoadFailure::kLimit : LoadFailure::kMalformed,
                 file + L": " + problem.reason);
    return false;
}

/// The file with all its nodes; null with the cause in the context.
Counted<k3::Scene> LoadWithNodes(const String& file, Context& context) {
    auto scene = Make<k3::Scene>();
    if (!scene || !scene->LoadFile(file.c_str(), &context, kLoadFlags, Guid())) return nullptr;
    if (k3::GenerateMissing(*scene, &context) >= 0) return scene;
    context.Fail(LoadFailure::kDefect, file + L": its nodes cannot be made");
    return nullptr;
}

bool WantsNothing(const Var& filter) {
    if (filter.IsEmpty()) return false;
    const auto isEmpty = [&](int entry) {
        const Var* keys = filter.Lookup(entry);
        const VarMap* map = keys ? keys->ToMap() : nullptr;
        return !map || map->GetCount() == 0;
    };
    return isEmpty(0) && isEmpty(1);
}

}  // namespace

bool ContextResolver::Extract(const String& sourceFile, const String& spatialIndexFile,
                              const String& outputFile, Context* context) {
    const Counted<Context> used = UsedContext(context);
    if (outputFile.IsEmpty()) {
        used->Fail(LoadFailure::kNotWritten, L"no name for the query file");
        return false;
    }
    SpatialIndex index;
    const bool hasIndex = spatialIndexFile.NonEmpty();
    if (hasIndex && !ReadParsed(spatialIndexFile, &ParseSpatialIndex, index, *used)) return false;
    const auto scene = LoadWithNodes(sourceFile, *used);
    if (!scene) return false;
    const ContextQuery query = hasIndex ? QueryForSurroundings(*scene, index) : QueryForAll(*scene);
    return WriteOutput(outputFile, FormatContextQuery(query), *used);
}

bool ContextResolver::Merge(const Var& files, k3::Scene* scene, Context* context) {
    const VarArray* names = files.ToArray();
    if (!names || !scene) return false;
    const Counted<Context> used = UsedContext(context);
    if (WantsNothing(used->GetParamVar(Param::kIdFilter))) {
        constexpr int kMessageLevel = 2;
        used->ReportMessage(MessageInfo(kMessageLevel), L"the query wants nothing: nothing is merged");
        return false;
    }
    bool isComplete = true;
    for (int i = 0; i < names->GetCount(); ++i)
        isComplete = MergeWanted(*scene, names->Get(i).ToText(), *used) && isComplete;
    return isComplete;
}

Var ContextResolver::ReadFilter(const String& queryFile, Context* context) {
    const Counted<Context> used = UsedContext(context);
    ContextQuery query;
    ReadParsed(queryFile, &ParseContextQuery, query, *used);
    return FilterOf(query);
}

bool ContextResolver::IsTypeOf(const char* name) const {
    return EqualKeys(name, qfxml::ExchangeKey::kVisualContextResolver) ||
           VisualContextResolver::IsTypeOf(name);
}

const ClassRecord& ContextResolver::StaticClass() {
    static const ClassRecord& record = InternClass("qn::exchange::ContextResolver");
    return record;
}

void* ContextResolver::CastTo(const ClassRecord& wanted) {
    return CastThrough<ContextResolver, VisualContextResolver>(this, wanted);
}

}  // namespace qn::exchange
