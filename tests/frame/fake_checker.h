#pragma once

#include "services/hierarchy_checker.h"
#include "tests/support/static_module.h"

#include <string>
#include <vector>

namespace qn::test {

/// What the fake validator does and what it was asked; one for all, reset by `FakeCheckerModule`.
struct CheckerScript {
    bool nodesAreSound = true;
    bool layersAreSound = true;
    bool throws = false;
    std::vector<std::string> calls;
    k3::Scene* scene = nullptr;
    bool hadContext = false;
    int made = 0;
};
CheckerScript& Script();

/// A validator that answers by the script. Registered while the module lives.
class FakeCheckerModule {
public:
    FakeCheckerModule();

private:
    StaticModule module_;
};

}  // namespace qn::test
