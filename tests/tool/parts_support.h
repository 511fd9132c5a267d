#pragma once

#include "tests/support/generated_scene.h"
#include "tool/parts_table.h"

#include <cstdint>
#include <string>
#include <vector>

namespace assembly::tests {

/// The structure of an assembly made for a test, with all that it borrows. Expects the module's classes.
struct MadeStructure {
    explicit MadeStructure(const qn::test::AssemblyShape& shape);

    qn::test::Assembly assembly;
    qn::Counted<qn::k3::Scene> scene;
    tool::Structure structure;
};

/// A row of a parts list for comparison.
struct Part {
    std::uint32_t level = 0;
    std::string name;
    std::uint64_t quantity = 0, total = 0;

    friend bool operator==(const Part&, const Part&) = default;
};
std::ostream& operator<<(std::ostream& out, const Part& part);

std::vector<Part> PartsOf(const tool::Structure& structure, const tool::PartsOptions& options);

/// Options with this structure, down to this level.
tool::PartsOptions Laid(tool::PartsStructure structure, std::uint32_t level = tool::PartsOptions::kAllLevels);

}  // namespace assembly::tests
