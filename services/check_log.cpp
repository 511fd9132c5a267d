#include "services/check_log.h"

#include "frame/host/context.h"
#include "frame/host/layer.h"
#include "frame/host/translate.h"
#include "services/node_check.h"

namespace qn::graph {
namespace {

constexpr int kErrorLevel = 2;
constexpr int kLongestName = 512;

constexpr const char* kNoInstance = "Node ['%1'] does not have an associated instance.";
constexpr const char* kOtherObject =
    "Different geometry objects: ['%1'] node, ['%2'] instance and ['%3'] reference. The object links are "
    "broken.";
constexpr const char* kOtherChildren =
    "Node ['%1'] has different number of children than implied by the associated instance";
constexpr const char* kLostHierarchy =
    "Metadata instancing errors for the ['%1'] top-level node. Some metadata may have been lost.";

String Translated(const char* text) {
    return Translate("assembly", text, "XMSG: Error message", -1);
}

String NameOf(const HierarchyElement& element) {
    return element.GetProperty(Prop::kName, 0).ToText();
}

void Report(Context& log, const String& text) {
    log.ReportMessage(MessageInfo(kErrorLevel), text);
}

}  // namespace

String NameInMessages(const k3::Node& node) {
    return node.GetDisplayName();
}

String NameInMessages(const k3::Layer& layer) {
    const String& own = layer.GetDisplayName();
    return own.NonEmpty() ? own : layer.GetName().SubString(0, kLongestName);
}

void LogFinding(const NodeFinding& finding, Context* log) {
    if (!log) return;
    const String name = NameInMessages(*finding.node);
    switch (finding.fault) {
        case NodeFault::kInstance:
            return Report(*log, Translated(kNoInstance).Arg(name));
        case NodeFault::kObject:
            return Report(*log, Translated(kOtherObject)
                                    .Arg(name)
                                    .Arg(NameOf(*finding.instance))
                                    .Arg(NameOf(*finding.reference)));
        case NodeFault::kChildCount:
            return Report(*log, Translated(kOtherChildren).Arg(name));
    }
}

void LogLostHierarchy(const k3::Node& topLevelNode, Context* log) {
    if (log) Report(*log, Translated(kLostHierarchy).Arg(NameInMessages(topLevelNode)));
}

void LogMembers(const char* text, int count, const k3::Layer& layer, Context* log) {
    if (log) Report(*log, Translated(text).Arg(std::int64_t{count}).Arg(NameInMessages(layer)));
}

}  // namespace qn::graph
