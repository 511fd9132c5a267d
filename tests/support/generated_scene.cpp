#include "tests/support/generated_scene.h"

#include "construction/hierarchy_generator.h"
#include "frame/host/scene.h"

namespace qn::test {

Counted<k3::Scene> GeneratedScene(const Assembly& assembly) {
    auto scene = Make<k3::Scene>();
    const auto generator = CreateAs<graph::HierarchyGenerator>(graph::ClassKey::kHierarchyGenerator);
    graph::Selector selector;
    selector.AppendPathElement(assembly.RootInstance());
    generator->SetSelector(selector);
    k3::Generator::Attach(scene->CreateEmptyNode(0, 0, 0), generator.Get());
    return scene;
}

}  // namespace qn::test
