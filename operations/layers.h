#pragma once

namespace qn::graph {

/// The three layers of identifying data, as flag words name them. "Node" is the use of a definition, as the
/// description of the operations calls it; the scene node is the selector.
namespace LayerFlag {
inline constexpr unsigned kEntity = 0x01;    ///< the definition of a node's instance
inline constexpr unsigned kNode = 0x02;      ///< the instance
inline constexpr unsigned kSelector = 0x04;  ///< the scene node itself
inline constexpr unsigned kAll = 0x07;
}  // namespace LayerFlag

/// What `RemoveIds` takes away. The last two are deliberately no single bits: each meets the other and plain
/// bits as well, both where they are passed and where they are tested.
namespace RemovalFlag {
inline constexpr unsigned kEntityBsId = 0x01;
inline constexpr unsigned kNodeBsId = 0x02;
inline constexpr unsigned kSelectorBsId = 0x04;
inline constexpr unsigned kEntityExternalId = 0x08;
inline constexpr unsigned kNodeExternalId = 0x16;
inline constexpr unsigned kSelectorExternalId = 0x32;
}  // namespace RemovalFlag

}  // namespace qn::graph
