#include "engine/runtime/class_table.h"

#include "engine/xml/xml_document.h"
#include "frame/host/collaboration.h"
#include "frame/host/scene.h"

#include <vector>

namespace qn {
namespace {

Interface* MakeStrongArray() {
    return InterfaceArray::CreateStrong().Detach();
}

constexpr ClassRow kEngineClasses[] = {
    {"qnxmldocument", &MakeOf<xml::XmlDocument>},
    {"k3_scene", &MakeOf<k3::Scene>},
    {"k3_node", &MakeOf<k3::Node>},
    {"k3_detail_markup", &MakeOf<k3::DetailMarkup>},
    {"k3_layer", &MakeOf<k3::Layer>},
    {"k3_viewport", &MakeOf<k3::Viewport>},
    {"k3_mesh", &MakeOf<k3::Mesh>},
    {"k3_material", &MakeOf<k3::Material>},
    {"k3_generic", &MakeOf<k3::Generic>},
    {"k3_object3d", &MakeOf<k3::Object3D>},
    {"k3_materialsubstitution", &MakeOf<k3::MaterialSubstitution>},
    {"qn.collaboration.sprite", &MakeOf<collaboration::CollaborationSprite>},
    {"qn.collaboration.mesh", &MakeOf<collaboration::CollaborationMesh>},
    {"k3_varmap", &MakeOf<VarMap>},
    {"k3_vararray", &MakeOf<VarArray>},
    {"k3_interfacearray", &MakeStrongArray},
    {"k3_pointerarray", &MakeOf<PointerArray>},
    {"k3_collection", &MakeOf<Collection>},
    {"k3_params", &MakeOf<Params>},
    {"qn.k3.entity", &MakeOf<k3::Entity>},
};

/// Never destroyed: objects are made until the process ends.
std::vector<ClassRow>& AddedClasses() {
    static auto& rows = *new std::vector<ClassRow>;
    return rows;
}

}  // namespace

void AddEngineClass(const ClassRow& row) {
    AddedClasses().push_back(row);
}

ClassMaker FindEngineClass(const char* key) {
    for (const ClassRow& row : kEngineClasses) {
        if (EqualKeys(row.key, key)) return row.make;
    }
    for (const ClassRow& row : AddedClasses()) {
        if (EqualKeys(row.key, key)) return row.make;
    }
    return nullptr;
}

Counted<Interface> MakeEngineClass(const char* key) {
    const ClassMaker make = FindEngineClass(key);
    return make ? Counted<Interface>::Adopt(make()) : Counted<Interface>();
}

}  // namespace qn
