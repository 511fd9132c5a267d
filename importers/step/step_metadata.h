#pragma once

#include "frame/host/collections.h"
#include "frame/host/var.h"
#include "importers/step/step_model.h"

namespace qn::step {

/// Metadata group for what a STEP file says of a definition or a use.
inline constexpr const wchar_t* kMetadataGroup = L"$QN.STEP";
/// System under which product and use ids stand among the external ids.
inline constexpr const wchar_t* kExternalSystem = L"STEP";

/// Keys inside the group. A key is there only if the file gives something for it.
namespace MetadataKey {
inline constexpr const wchar_t* kDescription = L"Description";
inline constexpr const wchar_t* kDefinitionId = L"Definition Id";
inline constexpr const wchar_t* kDefinitionDescription = L"Definition Description";
inline constexpr const wchar_t* kReferenceDesignator = L"Reference Designator";
inline constexpr const wchar_t* kExternalFiles = L"External Files";  ///< array of texts
inline constexpr const wchar_t* kColours = L"Colours";  ///< array of arrays: red, green, blue, alpha, 0 to 1
inline constexpr const wchar_t* kProperties = L"Properties";  ///< map of groups, each a map of values
inline constexpr const wchar_t* kValue = L"Value";            ///< of a property value with a unit
inline constexpr const wchar_t* kUnit = L"Unit";
inline constexpr const wchar_t* kSchema = L"Schema";           ///< on the root: array of texts
inline constexpr const wchar_t* kLengthUnit = L"Length Unit";  ///< on the root: metres
}  // namespace MetadataKey

/// A map with the one group, or an empty value if the file says nothing more than name and id.
Var MetadataOf(const Definition& definition);
Var MetadataOf(const Use& use);
/// Adds what holds for the whole file to the metadata of its root.
void AddFileMetadata(const StepModel& model, Var& metadata);

/// System to [id, version, empty].
Var ExternalIds(const std::string& id, const std::string& version);

/// UTF-8 to the host's text.
inline String ToText(const std::string& utf8) {
    return String::FromUtf8(utf8);
}

}  // namespace qn::step
