#pragma once

#include "product/bom.h"
#include "tool/session.h"
#include "tool/terminal.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace assembly::tool {

/// One structure of a scene.
struct BomRow {
    qn::k3::Bom* bom = nullptr;  ///< borrowed from the scene
    std::string name;            ///< UTF-8
    bool isCurrent = false;
    std::size_t topNodes = 0;
    std::size_t layers = 0;
};

/// The structures of the scene in their order.
std::vector<BomRow> BomsOf(qn::k3::Scene& scene);

/// The structure of that name, or the one with that number ("#2", from 1). Fails with kUsage, naming `file`,
/// if there is none, or more than one of that name.
qn::k3::Bom& FindBom(const std::vector<BomRow>& boms, const std::string& name, const std::string& file);

/// One line for each structure, "*" in front of the one that the scene shows.
void WriteBomTable(Output& output, const std::vector<BomRow>& boms);
/// {"boms": [{"number", "name", "current", "top_nodes", "layers"}]}
void WriteBomJson(Output& output, const std::vector<BomRow>& boms);

}  // namespace assembly::tool
