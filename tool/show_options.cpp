#include "tool/show_options.h"

namespace assembly::tool {
namespace {

namespace Prop = qn::graph::Prop;

/// Unique ids by system, as "system:id".
std::string ExternalIds(const qn::Var& systems) {
    std::string text;
    for (int i = 0; systems.IsMap() && i < systems.size(); ++i) {
        const qn::Var entry = systems.ValueAt(i);
        const qn::Var id = entry.IsArray() ? entry.ValueAt(0) : entry;
        if (!text.empty()) text += " ";
        text += systems.KeyAt(i).ToText().ToUtf8() + ":" + id.ToText().ToUtf8();
    }
    return text;
}

}  // namespace

std::string PersistentIdOf(const qn::graph::HierarchyElement& element) {
    const qn::Var serverId = element.GetProperty(Prop::kBsId, 0);
    return serverId.ToBool() ? serverId.ToText().ToUtf8()
                             : ExternalIds(element.GetProperty(Prop::kExternalIds, 0));
}

}  // namespace assembly::tool
