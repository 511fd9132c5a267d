#pragma once

namespace qn {

/// Numbers of the parameters that host and module agree on.
namespace Param {
inline constexpr int kCommandKey = -0x10;  ///< stored call: class key
inline constexpr int kMethodId = -0x0f;    ///< stored call: method
inline constexpr int kBlockA = 7;          ///< Node, tag 0x0a, read
inline constexpr int kBlockB = 8;
inline constexpr int kNodeLink9 = 9;              ///< Node, read only
inline constexpr int kFlags = 0x50;               ///< flags word of nodes, viewports, companions
inline constexpr int kVisible = 0x64;             ///< Node: false hides it
inline constexpr int kMetadataUndo = 0x80;        ///< Reference: undo record of its metadata
inline constexpr int kParam8a = 0x8a;             ///< Node
inline constexpr int kEffectivity = 0x8b;         ///< Node, Instance
inline constexpr int kCurrentBom = 0x8c;          ///< Scene
inline constexpr int kBoms = 0x8d;                ///< Scene, VarArray
inline constexpr int kInstance = 0x94;            ///< Node: its Instance, counted
inline constexpr int kExternalIds = 0x97;         ///< Node, elements
inline constexpr int kLoadOptions = 0x9c;         ///< Context
inline constexpr int kCallTarget = 0x9d;          ///< Params of a stored call
inline constexpr int kBsId = 0x9e;                ///< Node, elements
inline constexpr int kViewportBom = 0xa0;         ///< Context: Bom of new viewports
inline constexpr int kLinkList = 0xa3;            ///< Node
inline constexpr int kNoViewports = 0xa5;         ///< Node
inline constexpr int kIdFilter = 0xa7;            ///< Context: 0 map of paths, 1 map of ids
inline constexpr int kAssetId = 0xa8;             ///< Node
inline constexpr int kRelativeInstanceId = 0xa9;  ///< Node
inline constexpr int kAttachedIdentifier = 0xae;
inline constexpr int kPrimaryIdentifier = 0xaf;
inline constexpr int kTolvaExt = 0xb0;  ///< Scene
inline constexpr int kIdentifierKey = 0xb1;
inline constexpr int kCarriedA = 0x7d8;  ///< Scene, Bom: integers that they hand to each other
inline constexpr int kCarriedB = 0x7d9;
inline constexpr int kGenericFlag = 0x40b;     ///< Generic, integer
inline constexpr int kWrittenBlockA = 0x6302;  ///< Node: where 7 and 8 are written
inline constexpr int kWrittenBlockB = 0x6303;
inline constexpr int kLinkedNode = 0x6306;  ///< Node: weak link to a Node
inline constexpr int kViewportOwnBom = 0x810e;
inline constexpr int kViewportRows = 0x810f;
inline constexpr int kViewportTarget = 0x8112;  ///< weak link to what the view belongs to
}  // namespace Param

/// Masks of the flags word of nodes.
namespace NodeFlag {
inline constexpr unsigned kHidden = 0x1;
inline constexpr unsigned kStopsInstancing = 0x4;
inline constexpr unsigned kFlag8000 = 0x8000;
inline constexpr unsigned kFlag40000 = 0x40000;
inline constexpr unsigned kFlag200000 = 0x200000;
inline constexpr unsigned kExcluded = 0x10000000;
inline constexpr unsigned kFlag20000000 = 0x20000000;
}  // namespace NodeFlag

}  // namespace qn
