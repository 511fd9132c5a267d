#include "frame/post_load_hook.h"

#include "frame/host/api.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/platform.h"
#include "frame/host/scene_document.h"
#include "frame/host/translate.h"
#include "frame/module.h"
#include "graph/graph.h"
#include "services/hierarchy_checker.h"

namespace qn::frame {
namespace {

constexpr unsigned kBlockingWarning = 0x2030;  // warning sign, blocks the whole task
constexpr const char* kTitleKind = "XCAP: message box title";
constexpr const char* kTextKind = "YMSG: Error message";
constexpr const wchar_t* kRepairedKey = L"$QN/InstanceReferenceHierarchyRepaired";
constexpr const wchar_t* kJobKey = L"isqnjob";

constexpr const char* kLoadTitle = "File Validation Issue";
constexpr const char* kLoadText =
    "Issues were found and repaired in the scene hierarchy when loading the file. However, some CAD metadata "
    "may "
    "have been lost.\nIf this came from a CAD file, please reimport it with the 'Import Mode' option set to "
    "Asset.";
constexpr const char* kMergeTitle = "File Merge Issue";
constexpr const char* kMergeText =
    "The file you are trying to merge has issues with scene hierarchy. %1 has repaired the inbound data, "
    "however some "
    "of it's CAD metadata may be lost. If the inbound file was a CAD file, please undo the merge and merge "
    "it again "
    "with the 'Import Mode' option set to Asset.";

bool IsJob() {
    const Var session(api->GetPcoreSessionUserData(), 1);
    if (!session.ToBool()) return false;
    const Var* job = session.Lookup(kJobKey);
    return job && job->ToBool();
}

void ShowWarning(bool merged) {
    const String caption =
        Translate(kTranslationCatalogue, merged ? kMergeTitle : kLoadTitle, kTitleKind, -1);
    String text = Translate(kTranslationCatalogue, merged ? kMergeText : kLoadText, kTextKind, -1);
    if (merged) text = text.Arg(api->GetProductName(), 0, L' ');
    api->ShowMessageBox(api->GetMainWindow(0), text, caption, kBlockingWarning);
}

void TellOfRepair(k3::Scene& scene, bool merged) {
    const bool isJob = IsJob();
    if (MWViewerIsRunning() || BrinePublishIsRunning())
        scene.SetMetaValue(Var(kRepairedKey), Var(1));
    else if (!MWGeneratorIsRunning() && !isJob)
        ShowWarning(merged);
}

}  // namespace

void CheckLoadedScene(k3::Scene* scene, bool merged) {
    if (!scene || !api) return;
    if (Cast<TolvaExt>(scene->GetParamObject(Param::kTolvaExt))) return;
    const auto checker = CreateAs<graph::HierarchyChecker>(graph::ClassKey::kHierarchyChecker);
    if (!checker) return;
    const Counted<Context> context = api->CreateContext(1, 0);
    if (!checker->RepairTopLevelNodes(scene, context.Get())) TellOfRepair(*scene, merged);
    // Layers are checked after a clean first pass, too.
    checker->RepairLayersAndViewports(scene, context.Get());
}

}  // namespace qn::frame
