#include "frame/host/object3d.h"
#include "frame/host/scene.h"
#include "graph/node_traverser.h"
#include "tests/construction/forwarding_reference.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// A scene with a traverser that makes nodes.
struct Maker {
    Counted<k3::Scene> scene = Make<k3::Scene>();
    NodeToInstance nodes;
    InstanceToNodes instances;
    Counted<NodeTraverser> traverser =
        Make<NodeTraverser>(nullptr, scene->CreateEmptyNode(0, 0, 0), &nodes, &instances, true);

    k3::Node* NodeFor(Reference& reference) {
        traverser->CreateChild(Make<InstanceImpl>(&reference).Get());
        return scene->GetFirstChild();
    }
};

TEST(CreatedNodes, AskTheDefinitionForALinkAndGoOnWhateverItSays) {
    for (const Var& target : {Var(), Var(L"file.qn")}) {
        Maker maker;
        const auto reference = Make<ForwardingReference>();
        reference->SetTarget(target);
        k3::Node* node = maker.NodeFor(*reference);
        EXPECT_EQ(reference->linkQuestions, 1);
        EXPECT_EQ(node->GetChildCount(), 1);
        EXPECT_EQ(node->GetFirstChild()->GetObject(), nullptr);
    }
}

}  // namespace
}  // namespace qn::test
