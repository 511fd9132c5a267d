#include "tests/exchange/exchange_support.h"

#include "engine/scene/generated_content.h"
#include "engine/scene/tree_walk.h"
#include "engine/stream/scene_file.h"
#include "tests/support/generated_scene.h"

#include <filesystem>
#include <map>

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using graph::Prop::kBsId;
using graph::Prop::kName;

Counted<k3::Mesh> Cube() {
    auto mesh = Make<k3::Mesh>();
    mesh->SetGeometry({0, 0, 0, 1, 0, 0, 0, 1, 1}, {}, {0, 1, 2}, {{0, 3, 0}});
    return mesh;
}

Var IdOf(const char* family, const std::string& name, int number) {
    return Var(String::FromUtf8(std::string(family) + name + (number ? "." + std::to_string(number) : "")));
}

/// The graph of a shape, with the server ids of this folder's tests. Definitions without children show a
/// cube.
Assembly GraphOf(const AssemblyShape& shape) {
    Assembly assembly(shape);
    const auto cube = Cube();
    for (const auto& [name, children] : shape.definitions) {
        assembly.Ref(name)->SetProperty(kBsId, IdOf("e:", name, 0));
        if (children.empty()) assembly.Ref(name)->SetTarget(Var(cube));
        for (int use = 0; graph::Instance* instance = assembly.At(name, use); ++use)
            instance->SetProperty(kBsId, IdOf("n:", name, use + 1));
    }
    return assembly;
}

int PlaceAmongSiblings(const k3::Node& node) {
    int place = 1;
    for (k3::Node* other = node.GetParent()->GetFirstChild(); other != &node; other = other->GetNextSibling())
        ++place;
    return place;
}

/// Gives the nodes names, ids, places and the object of their definition.
void Furnish(k3::Node& top) {
    std::map<std::string, int> counts;
    for (k3::Node* node = &top; node; node = k3::NextInSubtree(node, &top)) {
        const auto* instance = Cast<graph::Instance>(node->GetParamObject(Param::kInstance));
        const String name = instance->GetReference()->GetProperty(kName, 0).ToText();
        node->SetName(name.c_str());
        node->SetParamVar(Param::kBsId, IdOf("s:", name.ToUtf8(), ++counts[name.ToUtf8()]));
        const auto matrix = Matrix4<double>::Translation(PlaceAmongSiblings(*node), 0, 0);
        if (node != &top) node->SetMatrix(&matrix, 0);
        node->SetObject(Cast<k3::Object3D>(instance->GetReference()->GetTarget()));
    }
}

}  // namespace

Counted<k3::Scene> SceneOf(const AssemblyShape& shape) {
    auto scene = GeneratedScene(GraphOf(shape));
    k3::Node* top = scene->GetFirstChild();
    EXPECT_EQ(k3::GenerateMissing(*scene, MakeContext().Get()), 1);
    k3::Generator::Detach(top);
    Furnish(*top);
    return scene;
}

String WriteFile(const TempFolder& folder, const char* name, k3::Scene& scene) {
    const String file = folder.File(name);
    EXPECT_TRUE(SaveSceneFile(scene, file, *MakeContext()));
    return file;
}

String WriteCompactFile(const TempFolder& folder, const char* name, const AssemblyShape& shape) {
    const auto scene = GeneratedScene(GraphOf(shape));
    scene->GetFirstChild()->SetName(L"file");
    return WriteFile(folder, name, *scene);
}

AssemblyBuilder Car() {
    return AssemblyBuilder("car").Child("chassis").Child("wheel", 4).Under("wheel", "tyre");
}

k3::Node* FindNode(k3::Scene& scene, const char* name) {
    for (k3::Node* node = &scene; node; node = k3::NextInSubtree(node, &scene))
        if (node->GetName() == String::FromUtf8(name)) return node;
    return nullptr;
}

std::vector<std::string> NamesOf(const k3::Scene& scene) {
    std::vector<std::string> names;
    for (k3::Node* node = scene.GetFirstChild(); node; node = k3::NextInSubtree(node, &scene))
        names.push_back(node->GetName().ToUtf8());
    return names;
}

Counted<VarMap> Metadata(const wchar_t* group, const wchar_t* key, const Var& value) {
    Var entry;
    entry.At(key) = value;
    auto map = VarMap::Create();
    map->At(Var(group)) = entry;
    return map;
}

nlohmann::json ReadJson(const String& file) {
    const auto parsed = nlohmann::json::parse(ReadBytes(file.ToUtf8()), nullptr, false);
    EXPECT_FALSE(parsed.is_discarded()) << ReadBytes(file.ToUtf8()).substr(0, 500);
    return parsed;
}

bool HasFile(const String& file) {
    return std::filesystem::exists(file.ToUtf8());
}

}  // namespace qn::test
