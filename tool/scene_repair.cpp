#include "tool/scene_repair.h"

#include "frame/host/api.h"
#include "graph/graph.h"
#include "services/hierarchy_checker.h"
#include "tool/definition_check.h"
#include "tool/element_names.h"
#include "tool/failure.h"
#include "tool/scene_check.h"

namespace assembly::tool {
namespace {

using qn::Context;
using qn::graph::HierarchyChecker;
using qn::k3::Scene;

constexpr const char* kHierarchyRemoved = "hierarchy-removed";
constexpr const char* kUseRemoved = "use-removed";
constexpr const char* kOverrideRemoved = "override-removed";
constexpr const char* kMemberRemoved = "member-removed";

/// Each round can uncover what another kind of damage hid; more than these mean that nothing helps.
constexpr int kMostRounds = 8;

std::vector<std::string> Lines(const std::vector<Finding>& findings) {
    std::vector<std::string> lines;
    for (const Finding& finding : findings)
        lines.push_back(LineOf(finding));
    return lines;
}

void RepairNodes(Scene& scene, HierarchyChecker& checker, Context& context, std::vector<Change>& changes) {
    CheckedNodePaths paths;
    for (const qn::k3::Node* const top : BrokenTopLevelNodes(scene))
        changes.push_back({kHierarchyRemoved, paths.PathOf(*top),
                           "the nodes stay, their ties to definitions and uses are cut"});
    checker.RepairTopLevelNodes(&scene, &context);
}

void RepairGraph(Scene& scene, std::vector<Change>& changes) {
    const std::vector<DefinitionFault> faults = CheckDefinitions(scene);
    for (const DefinitionFault& fault : faults) {
        if (fault.kind == FindingKind::kOverrideWithoutOccurrence)
            changes.push_back({kOverrideRemoved, fault.path, "an override that matched nothing is gone"});
        else
            changes.push_back(
                {kUseRemoved, fault.path,
                 "the use is gone from the definition \"" + NameOfElement(fault.definition.Get()) + "\""});
    }
    RepairDefinitions(faults);
}

void RepairLayers(Scene& scene, HierarchyChecker& checker, Context& context, std::vector<Change>& changes) {
    for (const Finding& finding : CheckLayers(scene))
        changes.push_back({kMemberRemoved, finding.path, finding.message + ": taken off the list"});
    checker.RepairLayersAndViewports(&scene, &context);
}

}  // namespace

std::string LineOf(const Change& change) {
    const std::string place = change.path.empty() ? "" : change.path + ": ";
    return place + change.message + " [" + change.code + "]";
}

std::vector<Change> RepairScene(Scene& scene, Context& context) {
    const auto checker = qn::CreateAs<HierarchyChecker>(qn::graph::ClassKey::kHierarchyChecker);
    if (!checker) throw Failure(ExitCode::kDefect, "the validator of the module cannot be made");
    std::vector<Change> changes;
    std::vector<std::string> before;
    for (int round = 0; round < kMostRounds; ++round) {
        std::vector<std::string> present = Lines(CheckScene(scene));
        if (present.empty() || present == before) break;
        before = std::move(present);
        RepairNodes(scene, *checker, context, changes);
        RepairGraph(scene, changes);
        RepairLayers(scene, *checker, context, changes);
    }
    return changes;
}

}  // namespace assembly::tool
