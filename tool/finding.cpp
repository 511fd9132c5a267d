#include "tool/finding.h"

#include <iterator>

namespace assembly::tool {
namespace {

/// By `FindingKind`. Codes are never changed and never used again.
constexpr FindingTexts kTexts[] = {
    {"wrong-instance", "error"},         {"wrong-object", "error"},
    {"too-many-children", "error"},      {"circular-definition", "error"},
    {"use-without-definition", "error"}, {"override-without-occurrence", "warning"},
    {"orphaned-layer-member", "error"},  {"invalid-layer-member", "error"},
};
static_assert(std::size(kTexts) == static_cast<std::size_t>(FindingKind::kInvalidLayerMember) + 1);

}  // namespace

const FindingTexts& TextsOf(FindingKind kind) {
    return kTexts[static_cast<std::size_t>(kind)];
}

std::string LineOf(const Finding& finding) {
    const FindingTexts& texts = TextsOf(finding.kind);
    const std::string place = finding.path.empty() ? "" : finding.path + ": ";
    return place + texts.severity + ": " + finding.message + " [" + texts.code + "]";
}

}  // namespace assembly::tool
