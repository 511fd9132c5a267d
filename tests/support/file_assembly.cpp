#include "tests/support/file_assembly.h"

#include "construction/hierarchy_generator.h"
#include "engine/stream/scene_file.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"

namespace qn::test {
namespace {

using graph::Reference;
namespace ClassKey = graph::ClassKey;
namespace Prop = graph::Prop;

Counted<Reference> MakeDefinition(graph::LookupTable& table, const std::string& name,
                                  const std::string& serverId) {
    auto definition = table.GetOrCreateReference(String());
    definition->SetProperty(Prop::kName, Var(String::FromUtf8(name)));
    if (!serverId.empty()) definition->SetProperty(Prop::kBsId, Var(String::FromUtf8(serverId)));
    return definition;
}

void AddPart(graph::LookupTable& table, Reference& root, const FilePart& part) {
    const auto definition = MakeDefinition(table, part.definition, part.serverId);
    definition->SetTarget(Var(String::FromUtf8(part.file)));
    for (int i = 0; i < part.uses; ++i) {
        const auto use = definition->CreateInstanceWithId(String());
        use->SetProperty(Prop::kName, Var(String::FromUtf8(part.definition + "." + std::to_string(i + 1))));
        root.AddChild(use.Get());
    }
}

}  // namespace

std::string FileAssembly(const std::string& root, const std::vector<FilePart>& parts,
                         const std::string& serverId, const std::string& rootFile) {
    const auto table = CreateAs<graph::LookupTable>(ClassKey::kLookupTable);
    const auto top = MakeDefinition(*table, root, serverId);
    if (!rootFile.empty()) top->SetTarget(Var(String::FromUtf8(rootFile)));
    for (const FilePart& part : parts)
        AddPart(*table, *top, part);
    const auto context = api->CreateContext(0, 0);
    const auto scene = Make<k3::Scene>();
    const auto generator = CreateAs<graph::HierarchyGenerator>(ClassKey::kHierarchyGenerator);
    const auto instance = top->CreateInstanceWithId(String());
    graph::Selector selector;
    selector.AppendPathElement(instance.Get());
    generator->SetSelector(selector);
    k3::Generator::Attach(scene->CreateEmptyNode(0, 0, 0), generator.Get());
    return SaveSceneToBytes(*scene, *context);
}

}  // namespace qn::test
