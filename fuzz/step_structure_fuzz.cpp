// STEP files: whatever the bytes are, they are refused with a text that names the file, or give a product
// structure whose links hold.

#include "importers/step/step_structure.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace qn::step;

namespace {

void Demand(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void CheckLinks(const StepModel& model) {
    Demand(!model.definitions.empty(), "a structure without definitions");
    Demand(!model.roots.empty(), "a structure without root");
    for (const Use& use : model.uses) {
        Demand(use.parent < model.definitions.size(), "a use in nothing");
        Demand(use.child < model.definitions.size(), "a use of nothing");
    }
    std::size_t listed = 0;
    for (const Definition& definition : model.definitions)
        listed += definition.uses.size();
    Demand(listed == model.uses.size(), "a use that its assembly does not list");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto result = ReadStructure(std::string(reinterpret_cast<const char*>(data), size), "fuzz.stp");
    if (result.Ok())
        CheckLinks(result.model);
    else
        Demand(result.error.rfind("fuzz.stp: ", 0) == 0, "refused without naming the file");
    return 0;
}
