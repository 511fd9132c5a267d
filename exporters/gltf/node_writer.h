#pragma once

#include "exporters/gltf/export_model.h"
#include "exporters/gltf/override_index.h"
#include "exporters/gltf/sink.h"
#include "frame/host/context.h"

#include <string>
#include <vector>

namespace qn::gltf_export {

/// Writes the array of nodes: the frame, then one node for each occurrence (two for places that one node
/// cannot say), parents first, siblings in order. Holds one path of the tree at a time.
class NodeWriter {
public:
    /// All are borrowed.
    NodeWriter(const ExportModel& model, Sink& sink, Context& context);

    /// Throws ExportFailure, also when the user wants to stop.
    void Write();

private:
    struct Level {
        std::uint32_t firstUse = 0, useCount = 0;
        std::uint32_t next = 0;
    };

    void WriteFrame();
    void Enter(Level& level);
    void Descend(std::uint32_t firstUse, std::uint32_t useCount);
    void WriteNode(std::uint32_t use, const OverridesOfOne& overrides);
    void WriteParts(const Place& place);
    void WriteContent(const DefinitionRow& definition, std::uint64_t firstChild);
    void WriteChildren(std::uint32_t firstUse, std::uint32_t useCount, std::uint64_t firstNode);
    const std::string& HeadOf(std::uint32_t use);
    std::string MakeHead(const UseRow& use, const std::string& name, const Place& place) const;
    std::uint64_t NodesOf(std::uint32_t use) const;

    const ExportModel& model_;
    Sink& sink_;
    Context& context_;
    OverrideIndex overrides_;
    std::vector<Level> levels_;
    std::vector<std::uint32_t> path_;  ///< by level: the use that was entered last
    std::uint64_t index_ = 0;          ///< of the node that is written next
    std::vector<std::string> heads_;   ///< by use: what all its nodes begin with, once it was made
    std::string scratch_;
};

}  // namespace qn::gltf_export
