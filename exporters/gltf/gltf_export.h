#pragma once

#include "exporters/gltf/export_failure.h"
#include "frame/host/context.h"
#include "graph/instance.h"
#include "graph/limits.h"
#include "graph/reference.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qn::gltf_export {

/// A top occurrence. Both are borrowed; the instance may be null.
struct Root {
    graph::Instance* instance = nullptr;
    graph::Reference* definition = nullptr;
};

/// What is written: the roots in order and, where a file's roots stand in one, their container, borrowed.
struct Assembly {
    std::vector<Root> roots;
    graph::Reference* container = nullptr;
};

/// Which axis of the scene points up.
enum class UpAxis { kByFile, kY, kZ };

struct Options {
    bool isBinary = true;        ///< one .glb; else a .gltf, and its buffer beside it
    bool structureOnly = false;  ///< nodes without meshes
    UpAxis up = UpAxis::kByFile;
    std::uint64_t mostBytes = 0xffff'ffff;  ///< of a .glb, as its header counts them
    std::uint64_t mostNodes = static_cast<std::uint64_t>(graph::kMaxOccurrences);
};

struct Result {
    Outcome outcome = Outcome::kDone;
    std::string error;                  ///< of any other outcome
    std::vector<std::string> warnings;  ///< what was left out
};

/// Writes the occurrence tree as glTF 2.0, as docs/gltf.md says. Meshes are written once, whoever shows them.
/// The target appears whole or not at all, a .gltf and its .bin both or neither. A .bin that stands there and
/// that an old .gltf of the same name does not name is left alone, and the export fails.
Result WriteGltf(const Assembly& assembly, const std::string& path, const Options& options, Context& context);

/// The name of the buffer's file beside a .gltf: "a/b.gltf" gives "b.bin".
std::string BufferNameOf(const std::string& path);

}  // namespace qn::gltf_export
