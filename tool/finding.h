#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace assembly::tool {

/// What can be wrong with a file. docs/checks.md describes each.
enum class FindingKind {
    kWrongInstance,
    kWrongObject,
    kTooManyChildren,
    kCircularDefinition,
    kUseWithoutDefinition,
    kOverrideWithoutOccurrence,
    kOrphanedLayerMember,
    kInvalidLayerMember,
};

/// The texts of a kind that callers may rely on.
struct FindingTexts {
    const char* code;
    const char* severity;  ///< "error" or "warning"
};
const FindingTexts& TextsOf(FindingKind kind);

/// One thing that is wrong. Texts are UTF-8.
struct Finding {
    FindingKind kind;
    std::string path;     ///< of the occurrence; empty where it is about no single one
    std::string message;  ///< a sentence without its full stop
};

/// "PATH: SEVERITY: MESSAGE [CODE]"
std::string LineOf(const Finding& finding);

}  // namespace assembly::tool
