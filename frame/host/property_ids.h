#pragma once

namespace qn::graph {

/// Numbers of the properties that all elements of a hierarchy share, 0 to 0x23.
enum class PropEnum : int {};

inline constexpr int kFirstProp = 0;
inline constexpr int kLastProp = 0x23;

/// The key under which a property stands in a map.
constexpr int Key(PropEnum id) {
    return static_cast<int>(id);
}

namespace Prop {
inline constexpr PropEnum kName{0x01};
inline constexpr PropEnum kLocalMatrix{0x02};
inline constexpr PropEnum kOwnMatrix{0x03};
inline constexpr PropEnum kThirdMatrix{0x04};
inline constexpr PropEnum kHidden{0x05};
inline constexpr PropEnum kInteger{0x06};
inline constexpr PropEnum kBlockA{0x07};
inline constexpr PropEnum kBlockB{0x08};
inline constexpr PropEnum kLink{0x09};         ///< a PersistentSelector
inline constexpr PropEnum kOrigin{0x0a};       ///< what the element was copied from
inline constexpr PropEnum kMetadata{0x0c};     ///< VarMap
inline constexpr PropEnum kImporter{0x0d};     ///< Guid of the importer of an external file
inline constexpr PropEnum kLoadOptions{0x0e};  ///< options of an external file's load
inline constexpr PropEnum kLocalId{0x0f};      ///< text, made by the lookup table
inline constexpr PropEnum kKeepLocalId{0x10};  ///< set: the local id is written to files
inline constexpr PropEnum kStopsInstancing{0x11};
inline constexpr PropEnum kFlag8000{0x12};
inline constexpr PropEnum kExternalIds{0x13};
inline constexpr PropEnum kBsId{0x14};  ///< server-side id
inline constexpr PropEnum kShortValue{0x15};
inline constexpr PropEnum kGenericContent{0x16};  ///< computed on a Reference
inline constexpr PropEnum kLinkList{0x19};        ///< VarArray of arrays, element 0 a PersistentSelector
inline constexpr PropEnum kExcluded{0x1a};
inline constexpr PropEnum kParam8a{0x1b};
inline constexpr PropEnum kNotCopied1c{0x1c};
inline constexpr PropEnum kNoViewports{0x1d};
inline constexpr PropEnum kOpacity{0x1e};  ///< 0 to 1
inline constexpr PropEnum kFlag20000000{0x1f};
inline constexpr PropEnum kText{0x20};
inline constexpr PropEnum kFlag40000{0x21};
inline constexpr PropEnum kAttachedIdentifier{0x22};
inline constexpr PropEnum kPrimaryIdentifier{0x23};
}  // namespace Prop

}  // namespace qn::graph
