#pragma once

#include "frame/host/property_ids.h"

// Words that stand in the extras of a glTF file which was written from an assembly; see docs/gltf.md. Reader
// and writer share them.

namespace qn::gltf_extras {

inline constexpr int kVersion = 1;

namespace Word {
inline constexpr const char* kAssembly = "assembly";
inline constexpr const char* kVersion = "version";
inline constexpr const char* kUnit = "unit";
inline constexpr const char* kUp = "up";
inline constexpr const char* kFrame = "frame";
inline constexpr const char* kContainer = "container";
inline constexpr const char* kDefinitions = "definitions";
inline constexpr const char* kUses = "uses";
inline constexpr const char* kOverrides = "overrides";
inline constexpr const char* kDefinition = "definition";
inline constexpr const char* kUse = "use";
inline constexpr const char* kInner = "inner";
inline constexpr const char* kParent = "parent";
inline constexpr const char* kPath = "path";
inline constexpr const char* kAttributes = "attributes";
inline constexpr const char* kMesh = "mesh";
inline constexpr const char* kFile = "file";
inline constexpr const char* kTarget = "target";
inline constexpr const char* kMatrix = "matrix";
inline constexpr const char* kUnassigned = "unassigned";
}  // namespace Word

/// Forms of values that JSON has no word for: an object with this one member.
namespace Form {
inline constexpr const char* kInt64 = "$int64";
inline constexpr const char* kFloat = "$float";
inline constexpr const char* kNumber = "$number";
inline constexpr const char* kMap = "$map";
inline constexpr const char* kMatrix = "$matrix";
inline constexpr const char* kBytes = "$bytes";
inline constexpr const char* kFlags = "$flags";
inline constexpr const char* kAll[] = {kInt64, kFloat, kNumber, kMap, kMatrix, kBytes, kFlags};
}  // namespace Form

/// Texts of numbers that are not finite.
inline constexpr const char* kNan = "nan";
inline constexpr const char* kInfinite = "inf";
inline constexpr const char* kMinusInfinite = "-inf";

/// The value of a property is written as it is, or as an array of 16 numbers.
enum class PropertyForm { kValue, kMatrix };

struct PropertyRow {
    graph::PropEnum id;
    const char* key;
    PropertyForm form = PropertyForm::kValue;
};

/// Properties of definitions, uses and overrides, in the order in which they are written.
inline constexpr PropertyRow kProperties[] = {
    {graph::Prop::kName, "name"},
    {graph::Prop::kLocalId, "id"},
    {graph::Prop::kBsId, "serverId"},
    {graph::Prop::kExternalIds, "externalIds"},
    {graph::Prop::kLocalMatrix, Word::kMatrix, PropertyForm::kMatrix},
    {graph::Prop::kOwnMatrix, "ownMatrix", PropertyForm::kMatrix},
    {graph::Prop::kThirdMatrix, "thirdMatrix", PropertyForm::kMatrix},
    {graph::Prop::kHidden, "hidden"},
    {graph::Prop::kInteger, "integer"},
    {graph::Prop::kBlockA, "blockA"},
    {graph::Prop::kBlockB, "blockB"},
    {graph::Prop::kMetadata, "metadata"},
    {graph::Prop::kImporter, "importer"},
    {graph::Prop::kLoadOptions, "loadOptions"},
    {graph::Prop::kStopsInstancing, "stopsInstancing"},
    {graph::Prop::kFlag8000, "flag8000"},
    {graph::Prop::kShortValue, "shortValue"},
    {graph::Prop::kExcluded, "excluded"},
    {graph::Prop::kNoViewports, "noViewports"},
    {graph::Prop::kOpacity, "opacity"},
    {graph::Prop::kFlag20000000, "flag20000000"},
    {graph::Prop::kText, "text"},
    {graph::Prop::kFlag40000, "flag40000"},
};

}  // namespace qn::gltf_extras
