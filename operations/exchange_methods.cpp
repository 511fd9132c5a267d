#include "frame/host/api.h"
#include "frame/host/context.h"
#include "frame/host/exchange.h"
#include "operations/methods.h"

namespace qn::graph {
namespace {

using qfxml::ExchangeKey::kShallowExporter;
using qfxml::ExchangeKey::kVisualContextResolver;

Counted<qfxml::VisualContextResolver> MakeResolver() {
    return CreateAs<qfxml::VisualContextResolver>(kVisualContextResolver);
}

/// The id filter of a context (may be null): what is set holds until this dies.
class FilterOfContext {
public:
    explicit FilterOfContext(Context* context) : context_(context) {
        if (context_) kept_ = context_->GetParamVar(Param::kIdFilter);
    }
    ~FilterOfContext() { Set(kept_); }
    FilterOfContext(const FilterOfContext&) = delete;
    FilterOfContext& operator=(const FilterOfContext&) = delete;

    void Set(const Var& filter) const {
        if (context_) context_->SetParamVar(Param::kIdFilter, filter);
    }

private:
    Context* context_;
    Var kept_;
};

}  // namespace

int MergeVisualContextMethod(const MethodCall& call) {
    const auto resolver = MakeResolver();
    if (!resolver) return MethodResult::kRefused;
    const String contextFile = call.arguments.Text(1), queryFile = call.arguments.Text(2);
    Var files;
    files.InitArray(0);
    files.At(0) = Var(contextFile);
    const FilterOfContext filter(call.context);
    filter.Set(resolver->ReadFilter(queryFile, call.context));
    resolver->Merge(files, call.scene, call.context);
    return MethodResult::kDone;
}

int ExtractVisualContextMethod(const MethodCall& call) {
    const auto resolver = MakeResolver();
    if (!resolver) return MethodResult::kRefused;
    const MethodArguments& arguments = call.arguments;
    return AnswerOf(resolver->Extract(arguments.Text(0), arguments.Text(1), arguments.Text(2), call.context));
}

int ExportShallowMethod(const MethodCall& call) {
    const MethodArguments& arguments = call.arguments;
    Interface* const object = arguments.Object(3);
    if (!object) return MethodResult::kRefused;
    const auto exporter = CreateAs<qfxml::ShallowExporter>(kShallowExporter);
    return AnswerOf(exporter &&
                    exporter->Export(arguments.Text(0), arguments.Text(1), arguments.Text(2), object,
                                     arguments.Object(4), arguments.Text(5), arguments.Text(6),
                                     arguments.Text(7), arguments.Text(8), call.context));
}

}  // namespace qn::graph
