#pragma once

namespace qn::k3 {

/// Parameters that the engine keeps for itself; no module reads or writes them.
namespace EngineParam {
inline constexpr int kGenerator = 0x7e000001;           ///< any object: its generator, counted
inline constexpr int kInstanceDescriptor = 0x7e000002;  ///< Node: a map
inline constexpr int kEntityDescriptor = 0x7e000003;    ///< Object3D: a map
inline constexpr int kUniqueId = 0x7e000004;            ///< any object: array of model and object id
inline constexpr int kThumbnail = 0x7e000005;           ///< Viewport: its picture, the bytes of a PNG file
}  // namespace EngineParam

}  // namespace qn::k3
