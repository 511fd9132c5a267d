#include "importers/gltf/gltf_assembly_extras.h"

#include "frame/host/collections.h"

namespace qn::gltf {
namespace {

constexpr const wchar_t* kDefinition = L"definition";
constexpr const wchar_t* kKey = L"key";
constexpr const wchar_t* kName = L"name";

Var ValueOf(const Var* map, const wchar_t* key) {
    const Var* value = map && map->IsMap() ? map->Lookup(key) : nullptr;
    return value ? *value : Var();
}

}  // namespace

const Var* AssemblyPart(const Var& extras) {
    const Var* part = extras.IsMap() ? extras.Lookup(kAssemblyExtras) : nullptr;
    return part && part->IsMap() ? part : nullptr;
}

String DefinitionKeyOf(const Var& extras) {
    const Var definition = ValueOf(AssemblyPart(extras), kDefinition);
    return ValueOf(&definition, kKey).ToText();
}

Counted<graph::Reference> CreateDefinition(graph::LookupTable& table, const Var& extras) {
    const Var told = ValueOf(AssemblyPart(extras), kDefinition);
    auto definition = table.GetOrCreateReference(String());
    if (!definition) return definition;
    if (const Var name = ValueOf(&told, kName); name.IsText())
        definition->SetProperty(graph::Prop::kName, name);
    return definition;
}

Counted<graph::Instance> CreateUse(graph::Reference& definition, const Var& extras) {
    auto use = definition.CreateInstanceWithId(String());
    if (!use) return use;
    if (const Var name = ValueOf(AssemblyPart(extras), kName); name.IsText())
        use->SetProperty(graph::Prop::kName, name);
    return use;
}

Var ForeignExtras(const Var& extras) {
    if (!AssemblyPart(extras)) return extras;
    Var rest(extras);
    rest.MakeUnique(1);
    rest.Remove(Var(kAssemblyExtras));
    return rest.size() > 0 ? rest : Var();
}

}  // namespace qn::gltf
