#pragma once

namespace qn::k3 {

/// Parameters that the engine keeps for itself; no module reads or writes them.
namespace EngineParam {
inline constexpr int kGenerator = 0x7e000001;  ///< any object: its generator, counted
}  // namespace EngineParam

}  // namespace qn::k3
