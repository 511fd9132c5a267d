#include "frame/host/scene.h"
#include "tests/support/assembly.h"

namespace qn::test {
namespace {

/// The objects that the nodes of childless definitions share, made when first asked for.
class SharedObjects {
public:
    explicit SharedObjects(std::size_t definitions) : objects_(definitions) {}
    k3::Object3D* Of(std::size_t definition) {
        auto& object = objects_[definition];
        if (!object) object = Make<k3::Object3D>();
        return object.Get();
    }

private:
    std::vector<Counted<k3::Object3D>> objects_;
};

struct PendingNode {
    std::size_t definition;
    k3::Node* node;
};

}  // namespace

k3::Node* BuildNodes(const AssemblyShape& shape, k3::Scene& scene) {
    SharedObjects objects(shape.definitions.size());
    std::vector<String> names;
    for (const auto& definition : shape.definitions)
        names.push_back(String::FromUtf8(definition.name));

    scene.BeginUpdate();
    k3::Node* top = scene.CreateEmptyNode(0, 0, 0);
    std::vector<PendingNode> pending{{0, top}};
    while (!pending.empty()) {
        const auto [definition, node] = pending.back();
        pending.pop_back();
        node->SetName(names[definition].c_str());
        const std::vector<int>& children = shape.definitions[definition].children;
        if (children.empty()) node->SetObject(objects.Of(definition));
        double place = 0;
        for (const int child : children) {
            k3::Node* below = node->CreateChildNode(0, 0, 0);
            const auto matrix = Matrix4<double>::Translation(++place, 0, 0);
            below->SetMatrix(&matrix, 0);
            pending.push_back({static_cast<std::size_t>(child), below});
        }
    }
    scene.EndUpdate();
    return top;
}

}  // namespace qn::test
