#include "tests/behaviour/checker_scene.h"

#include "frame/host/api.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"

namespace qn::test {

using graph::Instance;

Counted<graph::HierarchyChecker> CheckerScene::NewChecker() {
    return CreateAs<graph::HierarchyChecker>(graph::ClassKey::kHierarchyChecker);
}

Lines CheckerScene::Log() const {
    Lines lines = log->Texts();
    log->Restart();
    return lines;
}

Instance* AddUse(Instance& parent, const wchar_t* name) {
    const auto use = NewUse(name);
    parent.GetReference()->AddChild(use.Get());
    return use.Get();
}

k3::Node* ShowUse(k3::Node& parent, Instance& use) {
    k3::Node* node = AddNode(parent, NameOf(use).c_str(), &use);
    for (Instance* child : ChildrenOf(*use.GetReference()))
        ShowUse(*node, *child);
    return node;
}

CheckedCar::CheckedCar() : use(NewUse(L"car")) {
    wheelUse = AddUse(*use, L"wheel");
    lampUse = AddUse(*use, L"lamp");
    car = ShowUse(*scene, *use);
    wheel = car->GetChildAt(0);
    lamp = car->GetChildAt(1);
}

std::string CountDiffers(const std::string& node) {
    return "Node ['" + node + "'] has different number of children than implied by the associated instance";
}

std::string ObjectsDiffer(const std::string& node, const std::string& instance,
                          const std::string& reference) {
    return "Different geometry objects: ['" + node + "'] node, ['" + instance + "'] instance and ['" +
           reference + "'] reference. The object links are broken.";
}

std::string MetadataLost(const std::string& node) {
    return "Metadata instancing errors for the ['" + node +
           "'] top-level node. Some metadata may have been lost.";
}

}  // namespace qn::test
