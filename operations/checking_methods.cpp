#include "frame/host/api.h"
#include "frame/host/view_updater.h"
#include "graph/graph.h"
#include "operations/methods.h"
#include "services/hierarchy_checker.h"
#include "utility/scene_utilities.h"

namespace qn::graph {
namespace {

using Check = bool (HierarchyChecker::*)(k3::Scene* scene, Context* log);

Counted<HierarchyChecker> MakeChecker() {
    return CreateAs<HierarchyChecker>(ClassKey::kHierarchyChecker);
}

/// Answers what the check found.
int Validate(const MethodCall& call, Check check) {
    const auto checker = MakeChecker();
    return AnswerOf(checker && (checker.Get()->*check)(call.scene, call.context));
}

/// Answers only that it ran.
int Repair(const MethodCall& call, Check repair) {
    const auto checker = MakeChecker();
    if (!checker) return MethodResult::kRefused;
    (checker.Get()->*repair)(call.scene, call.context);
    return MethodResult::kDone;
}

}  // namespace

int ValidateHierarchyMethod(const MethodCall& call) {
    return Validate(call, &HierarchyChecker::ValidateHierarchy);
}

int RepairHierarchyMethod(const MethodCall& call) {
    return Repair(call, &HierarchyChecker::RepairTopLevelNodes);
}

int ValidateLayersMethod(const MethodCall& call) {
    return Validate(call, &HierarchyChecker::ValidateLayers);
}

int RepairLayersMethod(const MethodCall& call) {
    return Repair(call, &HierarchyChecker::RepairLayersAndViewports);
}

int FindCollaborationMethod(const MethodCall& call) {
    const auto utilities = CreateAs<utility::SceneUtilities>(utility::kSceneUtilitiesKey);
    return AnswerOf(utilities && utilities->ContainsCollaborationObjects(call.scene));
}

int RegenerateThumbnailsMethod(const MethodCall& call) {
    namespace updater = views::ViewUpdater;
    if (call.arguments.Bool(1)) updater::UpdateSceneModelViewThumbnails(call.scene);
    if (call.arguments.Bool(2)) updater::UpdateSceneStepViewThumbnails(call.scene);
    if (call.arguments.Bool(3)) updater::UpdateSceneDetailViewThumbnails(call.scene);
    return MethodResult::kDone;
}

}  // namespace qn::graph
