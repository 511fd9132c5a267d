#include "tests/frame/fake_checker.h"

#include "frame/host/counted.h"

#include <stdexcept>

namespace qn::test {
namespace {

class FakeChecker final : public graph::HierarchyChecker {
public:
    FakeChecker() { ++Script().made; }
    bool ValidateHierarchy(k3::Scene*, Context*) override { return Note("ValidateHierarchy", true); }
    bool ValidateLayers(k3::Scene*, Context*) override { return Note("ValidateLayers", true); }
    bool RepairHierarchy(k3::Scene*, Context*) override { return Note("RepairHierarchy", true); }
    void RepairLayers(k3::Scene*, Context*) override { Note("RepairLayers", true); }
    bool RepairTopLevelNodes(k3::Scene* scene, Context* log) override {
        Script().scene = scene;
        Script().hadContext = log != nullptr;
        if (Script().throws) throw std::runtime_error("checker");
        return Note("RepairTopLevelNodes", Script().nodesAreSound);
    }
    bool RepairLayersAndViewports(k3::Scene*, Context*) override {
        return Note("RepairLayersAndViewports", Script().layersAreSound);
    }

private:
    static bool Note(const char* call, bool answer) {
        Script().calls.emplace_back(call);
        return answer;
    }
};

Interface* MakeChecker() {
    return Make<FakeChecker>().Detach();
}

}  // namespace

CheckerScript& Script() {
    static CheckerScript script;
    return script;
}

FakeCheckerModule::FakeCheckerModule() : module_({{"qn.graph.hierarchychecker", &MakeChecker}}) {
    Script() = {};
}

}  // namespace qn::test
