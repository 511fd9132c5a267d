#include "frame/catalogue.h"

#include "construction/hierarchy_factory_impl.h"
#include "construction/hierarchy_generator_impl.h"
#include "frame/host/module_classes.h"
#include "frame/host/translate.h"
#include "frame/module.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/post_processing_instruction_impl.h"
#include "graph/reference_impl.h"
#include "operations/hierarchy_operation_impl.h"
#include "product/bom_impl.h"
#include "product/effectivity_impl.h"
#include "services/hierarchy_checker_impl.h"
#include "utility/scene_utilities_impl.h"

namespace qn::frame {
namespace {

constexpr unsigned kHostFlag = 0x10000000;
constexpr unsigned kPlain = 0;
constexpr unsigned kInvokeId = 0x14;
constexpr unsigned kDiscoverId = 0x15;

constexpr CatalogueRow kCatalogue[] = {
    {"qn.k3.bom", "Bill of Materials", kHostFlag},
    {"qn.k3.effectivity", "Effectivity", kPlain},
    {"qn.graph.instance", "Instance", kHostFlag},
    {"qn.graph.reference", "Reference", kHostFlag},
    {"qn.graph.persistentselector", "Persistent Selector", kPlain},
    {"qn.graph.lookuptable", "Lookup Table", kPlain},
    {"qn.graph.hierarchyfactory", "Hierarchy Factory", kHostFlag},
    {"qn.graph.hierarchygenerator", "Assembly Hierarchy", kHostFlag},
    {"qn.graph.postprocessinginstruction", "Postprocessing Instruction", kPlain},
    {"qn.graph.hierarchyoperation", "Hierarchy Operation", kPlain},
    {"qn.graph.hierarchyoperation.invoke", "Hierarchy Operation Invoke", kInvokeId},
    {"qn.graph.hierarchyoperation.discover", "Hierarchy Operation Discover", kDiscoverId},
    {"qn.graph.hierarchychecker", "Hierarchy Validator", kHostFlag},
    {"qn.utility.sceneutilities", "Scene Utilities", kPlain},
};

constexpr CreationRow kCreationOrder[] = {
    {"qn.k3.bom", &MakeOne<k3::BomImpl>},
    {"qn.k3.effectivity", &MakeOne<k3::effectivity_impl::EffectivityImpl>},
    {"qn.graph.instance", &MakeOne<graph::InstanceImpl>},
    {"qn.graph.reference", &MakeOne<graph::ReferenceImpl>},
    {"qn.graph.persistentselector", &MakeOne<graph::PersistentSelectorImpl>},
    {"qn.graph.lookuptable", &MakeOne<graph::LookupTableImpl>},
    {"qn.graph.hierarchyfactory", &MakeOne<graph::HierarchyFactoryImpl>},
    {"qn.graph.hierarchygenerator", &MakeOne<graph::HierarchyGeneratorImpl>},
    {"qn.graph.postprocessinginstruction", &MakeOne<graph::PostProcessingInstructionImpl>},
    {"qn.graph.hierarchyoperation", &MakeOne<graph::HierarchyOperationImpl>},
    {"qn.graph.hierarchyoperation.invoke", &MakeOne<graph::HierarchyOperationImpl>},
    {"qn.graph.hierarchyoperation.discover", &MakeOne<graph::HierarchyOperationImpl>},
    {"qn.graph.hierarchychecker", &MakeOne<graph::HierarchyCheckerImpl>},
    {"qn.utility.sceneutilities", &MakeOne<utility::SceneUtilitiesImpl>},
};

}  // namespace

std::span<const CatalogueRow> Catalogue() {
    return kCatalogue;
}

std::span<const CreationRow> CreationOrder() {
    return kCreationOrder;
}

void RegisterCatalogue(ModuleHandle handle) {
    if (!api) return;
    for (const CatalogueRow& row : kCatalogue) {
        const String name = Translate(kTranslationCatalogue, row.displayName, "XTXT: extension info", -1);
        api->RegisterExtension(handle, row.key, row.registrationValue, name);
    }
}

Counted<Interface> CreateByKey(const char* key) {
    for (const CreationRow& row : kCreationOrder)
        if (EqualKeys(row.key, key)) return row.make();
    return nullptr;
}

}  // namespace qn::frame
