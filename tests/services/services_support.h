#pragma once

#include "frame/host/scene.h"
#include "graph/graph.h"
#include "product/bom.h"
#include "services/hierarchy_checker_impl.h"
#include "services/hierarchy_operation.h"
#include "tests/support/assembly.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qn::test {

using Messages = std::vector<std::string>;

/// One call of the removal of a hierarchy.
struct RemovalCall {
    Interface* node = nullptr;
    std::vector<bool> keeps;
    std::size_t messages = 0;  ///< how many the log had at that time
};

/// What the fake operation of this program was asked; cleared by `HierarchyCheck`.
struct OperationLog {
    int made = 0;
    std::vector<RemovalCall> removals;
    Counted<RecordingContext> messages;  ///< the log of the present test
};
OperationLog& Operations();
/// Whether the key of the operation gives an object.
void OfferOperation(bool offered);

/// A structure that lists what it is told to.
class ListedBom final : public k3::Bom {
public:
    explicit ListedBom(std::initializer_list<k3::Node*> nodes = {});
    Var nodes;
    ResultEnum Initialize(const Var&, bool) override { return ResultEnum::kNothing; }
    ResultEnum Update() override { return ResultEnum::kNothing; }
    ResultEnum Activate() override { return ResultEnum::kNothing; }
    Var GetNodes() const override { return nodes; }
    k3::Node* GetRootNode() const override { return nullptr; }
    Counted<InterfaceArray> GetLayers() const override { return nullptr; }
};

/// A car with two wheels, whose nodes were generated: "car(chassis,wheel(tyre),wheel(tyre))", with content.
class SoundCar {
public:
    explicit SoundCar(k3::Scene& scene);
    /// The node reached by child numbers from the top.
    k3::Node* At(std::initializer_list<int> path) const;

    Assembly assembly;
    k3::Node* top;
};

/// A validator, a scene and a log.
class HierarchyCheck : public testing::Test {
protected:
    HierarchyCheck();
    bool Validate() { return checker->ValidateHierarchy(scene.Get(), log.Get()); }
    bool Repair() { return checker->RepairTopLevelNodes(scene.Get(), log.Get()); }
    /// Lists structures in the scene, the first of them current if there is one.
    void SetBoms(std::initializer_list<Interface*> boms, Interface* current);

    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<RecordingContext> log = MakeContext();
    Counted<graph::HierarchyCheckerImpl> checker = Make<graph::HierarchyCheckerImpl>();
};

inline graph::Instance* CarriedBy(const k3::Node& node) {
    return Cast<graph::Instance>(node.GetParamVar(Param::kInstance));
}
inline void Carry(k3::Node& node, graph::Instance* instance) {
    node.SetParamVar(Param::kInstance, Var(instance, 1));
}

}  // namespace qn::test
