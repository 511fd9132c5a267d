#include "tests/services/services_support.h"

#include "construction/hierarchy_factory_impl.h"
#include "construction/hierarchy_generator_impl.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/post_processing_instruction_impl.h"
#include "graph/reference_impl.h"
#include "product/bom_impl.h"
#include "tests/support/static_module.h"

namespace qn::test {

namespace {

using namespace qn::graph;

bool g_offered = true;

/// Cuts the ties as the real one does, and writes down the call.
class FakeOperation final : public HierarchyOperation {
public:
    FakeOperation() { ++Operations().made; }
    void RemoveIds(Interface*, unsigned) override {}
    void RemoveHierarchyCache(Interface* node, bool selectorMetadata, bool bsIds, bool externalIds,
                              bool entityMetadata) override {
        Operations().removals.push_back({node,
                                         {selectorMetadata, bsIds, externalIds, entityMetadata},
                                         Operations().messages->GetMessages().size()});
        if (auto* const top = Cast<k3::Node>(node)) top->Visit(0, &Cut, 0);
    }
    void UpdateBsIds(Interface*, const String&, unsigned, bool) override {}
    void RemoveNodeMetadata(Interface*, unsigned, unsigned, bool) override {}
    void HoldScene(k3::Node*) override {}
    void GenerateBsIds(Interface*, unsigned, const String&, const String&) override {}
    void ReplaceBsIdsWithBasedOn(k3::Node*) override {}

private:
    static bool Cut(k3::Node* node, ParamWord) {
        node->DeleteParam(Param::kInstance);
        return true;
    }
};

Interface* MakeOperation() {
    return g_offered ? Make<FakeOperation>().Detach() : nullptr;
}

const StaticModule g_module({
    {ClassKey::kInstance, &MakeOf<InstanceImpl>},
    {ClassKey::kReference, &MakeOf<ReferenceImpl>},
    {ClassKey::kPersistentSelector, &MakeOf<PersistentSelectorImpl>},
    {ClassKey::kLookupTable, &MakeOf<LookupTableImpl>},
    {ClassKey::kPostProcessingInstruction, &MakeOf<PostProcessingInstructionImpl>},
    {ClassKey::kHierarchyFactory, &MakeOf<HierarchyFactoryImpl>},
    {ClassKey::kHierarchyGenerator, &MakeOf<HierarchyGeneratorImpl>},
    {ClassKey::kHierarchyChecker, &MakeOf<HierarchyCheckerImpl>},
    {ClassKey::kHierarchyOperation, &MakeOperation},
    {k3::kBomKey, &MakeOf<k3::BomImpl>},
});

k3::Node* GenerateCar(k3::Scene& scene, const Assembly& assembly) {
    k3::Node* const top = scene.CreateEmptyNode(0, 0, 0);
    const auto factory = CreateAs<HierarchyFactory>(ClassKey::kHierarchyFactory);
    Selector start;
    start.AppendPathElement(assembly.RootInstance());
    factory->GenerateNodes(start, top);
    Carry(*top, assembly.RootInstance());
    return top;
}

}  // namespace

OperationLog& Operations() {
    static OperationLog log;
    return log;
}

void OfferOperation(bool offered) {
    g_offered = offered;
}

ListedBom::ListedBom(std::initializer_list<k3::Node*> listed) {
    nodes = Var(VarArray::Create());
    for (k3::Node* const node : listed)
        nodes.ToArray()->Add(Var(node, 1));
}

SoundCar::SoundCar(k3::Scene& scene)
    : assembly(AssemblyBuilder("car")
                   .Child("chassis")
                   .Child("wheel", 2)
                   .Under("wheel", "tyre")
                   .WithContent()
                   .Build()),
      top(GenerateCar(scene, assembly)) {}

k3::Node* SoundCar::At(std::initializer_list<int> path) const {
    k3::Node* node = top;
    for (const int step : path)
        node = node ? node->GetChildAt(step) : nullptr;
    return node;
}

HierarchyCheck::HierarchyCheck() {
    Operations() = {};
    Operations().messages = log;
    OfferOperation(true);
}

void HierarchyCheck::SetBoms(std::initializer_list<Interface*> boms, Interface* current) {
    const auto array = VarArray::Create();
    for (Interface* const bom : boms)
        array->Add(Var(bom, 1));
    scene->SetParamObject(Param::kBoms, array.Get());
    if (current) scene->SetParamObject(Param::kCurrentBom, current);
}

}  // namespace qn::test
