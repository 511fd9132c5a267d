#include "exchange/metadata_export.h"
#include "exchange/shallow_export.h"
#include "exchange/visual_context_resolver.h"
#include "frame/host/module_classes.h"

namespace qn::exchange {
namespace {

constexpr ModuleClass kClasses[] = {
    {qfxml::ExchangeKey::kMetadataExport, L"Metadata Export", &MakeOne<MetadataExport>},
    {qfxml::ExchangeKey::kShallowExporter, L"Shallow Export", &MakeOne<ShallowExport>},
    {qfxml::ExchangeKey::kVisualContextResolver, L"Visual Context Resolver", &MakeOne<ContextResolver>},
};

}  // namespace
}  // namespace qn::exchange

/// The module's one exported function.
extern "C" __attribute__((visibility("default"))) std::uintptr_t K3DLLFunc(unsigned code, void* first,
                                                                           void* second) {
    return qn::AnswerHost(qn::exchange::kClasses, code, first, second);
}
