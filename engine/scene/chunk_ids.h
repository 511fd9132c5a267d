#pragma once

namespace qn::k3 {

// Chunk ids of the engine's own scene classes. Ids below 0x10 are those of `ReferenceSource`; an id never
// changes its meaning and is never reused.

namespace NodeChunk {
inline constexpr int kName = 0x10;
inline constexpr int kDisplayName = 0x11;
inline constexpr int kWords = 0x12;   ///< flags, second word, integer attribute, 16-bit value
inline constexpr int kMatrix = 0x13;  ///< 16 doubles, rows first
inline constexpr int kOwnMatrix = 0x14;
inline constexpr int kThirdMatrix = 0x15;
inline constexpr int kOpacity = 0x16;  ///< one float
inline constexpr int kText = 0x17;
inline constexpr int kObject = 0x18;  ///< alone; the handle partner if kPairedObject follows
inline constexpr int kPairedObject = 0x19;
inline constexpr int kTrack = 0x1a;     ///< kind, number of the track
inline constexpr int kChildren = 0x1b;  ///< numbers of the children, in order
}  // namespace NodeChunk

namespace SceneChunk {
inline constexpr int kTime = 0x20;    ///< one float, seconds
inline constexpr int kLayers = 0x21;  ///< numbers, in order
inline constexpr int kViewports = 0x22;
inline constexpr int kEntities = 0x23;
}  // namespace SceneChunk

namespace EntityChunk {
inline constexpr int kName = 0x10;
inline constexpr int kType = 0x11;
inline constexpr int kDependants = 0x12;  ///< weak numbers
}  // namespace EntityChunk

namespace LayerChunk {
inline constexpr int kMembers = 0x20;  ///< weak numbers
inline constexpr int kDisplayName = 0x21;
}  // namespace LayerChunk

namespace ViewportChunk {
inline constexpr int kKind = 0x20;
inline constexpr int kViewNode = 0x21;   ///< weak number
inline constexpr int kLayer = 0x22;      ///< number
inline constexpr int kCompanion = 0x23;  ///< weak number
}  // namespace ViewportChunk

namespace MaterialChunk {
inline constexpr int kName = 0x10;
inline constexpr int kColour = 0x11;  ///< 4 floats
}  // namespace MaterialChunk

namespace MeshChunk {
inline constexpr int kPositions = 0x10;  ///< floats
inline constexpr int kNormals = 0x11;    ///< floats
inline constexpr int kIndices = 0x12;    ///< 32-bit numbers
inline constexpr int kGroups = 0x13;     ///< three 32-bit numbers each
inline constexpr int kSlots = 0x14;      ///< numbers of the materials, in order
}  // namespace MeshChunk

namespace SubstitutionChunk {
inline constexpr int kObject = 0x10;
}  // namespace SubstitutionChunk

}  // namespace qn::k3
