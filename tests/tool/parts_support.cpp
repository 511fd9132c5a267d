#include "tests/tool/parts_support.h"

#include "frame/entry.h"
#include "frame/host/api.h"
#include "tests/support/static_module.h"

#include <ostream>

namespace assembly::tests {
namespace {

const qn::test::EntryModule g_module(&K3DLLFunc);

}  // namespace

MadeStructure::MadeStructure(const qn::test::AssemblyShape& shape)
    : assembly(shape),
      scene(qn::test::GeneratedScene(assembly)),
      structure(tool::ReadStructure(*scene, *qn::api->CreateContext(0, 0))) {}

std::ostream& operator<<(std::ostream& out, const Part& part) {
    return out << part.level << " " << part.name << " " << part.quantity << " of " << part.total;
}

std::vector<Part> PartsOf(const tool::Structure& structure, const tool::PartsOptions& options) {
    std::vector<Part> parts;
    tool::PartsTable table(structure, options);
    table.Run([&](const tool::PartsRow& row) {
        parts.push_back({row.level, structure.definitions[row.definition].name, row.quantity, row.total});
        return true;
    });
    return parts;
}

tool::PartsOptions Laid(tool::PartsStructure structure, std::uint32_t level) {
    tool::PartsOptions options;
    options.structure = structure;
    options.level = level;
    return options;
}

}  // namespace assembly::tests
