#include "operations/method_table.h"

#include "frame/host/change_management.h"
#include "operations/methods.h"

namespace qn::graph {
namespace {

/// What stands between a call and its method.
enum class Entry {
    kFree,   ///< nothing
    kScene,  ///< argument 0 is a scene
    kGated,  ///< it is, and the host's gate is open
};

struct MethodRow {
    int id;
    Entry entry;
    int (*run)(const MethodCall& call);
};

constexpr MethodRow kMethods[] = {
    {1, Entry::kGated, &RemoveIdsMethod},          {2, Entry::kGated, &RemoveHierarchyCacheMethod},
    {3, Entry::kGated, &UpdateBsIdsMethod},        {4, Entry::kGated, &RemoveMetadataMethod},
    {5, Entry::kGated, &MergeVisualContextMethod}, {6, Entry::kFree, &ExtractVisualContextMethod},
    {7, Entry::kGated, &GenerateBsIdsMethod},      {8, Entry::kScene, &HoldSceneMethod},
    {9, Entry::kFree, &ExportShallowMethod},       {10, Entry::kGated, &RegenerateThumbnailsMethod},
    {11, Entry::kGated, &ValidateHierarchyMethod}, {12, Entry::kGated, &RepairHierarchyMethod},
    {13, Entry::kGated, &ReplaceBsIdsMethod},      {14, Entry::kGated, &ExportMetadataMethod},
    {15, Entry::kGated, &GenerateHierarchyMethod}, {16, Entry::kGated, &ValidateLayersMethod},
    {17, Entry::kGated, &RepairLayersMethod},      {18, Entry::kGated, &FindCollaborationMethod},
};

constexpr int kSceneArgument = 0;

const MethodRow* FindMethod(int id) {
    for (const MethodRow& row : kMethods)
        if (row.id == id) return &row;
    return nullptr;
}

}  // namespace

int RunMethod(HierarchyOperation& operation, int methodId, const Params& arguments, Context* context) {
    const MethodRow* const method = FindMethod(methodId);
    if (!method) return MethodResult::kRefused;
    MethodCall call{operation, MethodArguments(arguments), context, nullptr};
    if (method->entry == Entry::kFree) return method->run(call);

    const Weak<k3::Scene> scene(Cast<k3::Scene>(call.arguments.Pointer(kSceneArgument)));
    call.scene = scene.Get();
    if (!call.scene) return MethodResult::kRefused;
    if (method->entry == Entry::kGated && !ChangeManagementSupportBase::CheckAvailability(context))
        return MethodResult::kRefused;
    return method->run(call);
}

}  // namespace qn::graph
