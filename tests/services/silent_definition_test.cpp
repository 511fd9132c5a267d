#include "graph/instance_impl.h"
#include "tests/engine/scene/fake_graph.h"
#include "tests/services/services_support.h"

namespace qn::test {
namespace {

/// A node of a definition that counts two children and gives none of them.
class SilentDefinition : public HierarchyCheck {
protected:
    void SetUp() override {
        for (int i = 0; i < 2; ++i)
            definition->AddChild(nullptr);
        Carry(*top, Make<graph::InstanceImpl>(definition.Get()).Get());
    }

    const Counted<FakeReference> definition = Make<FakeReference>();
    const Assembly wheel = AssemblyBuilder("wheel").Child("tyre").Build();
    k3::Node* const top = scene->CreateEmptyNode(0, 0, 0);
    k3::Node* const child = top->CreateChildNode(0, 0, 0);
};

TEST_F(SilentDefinition, LetsAChildCarryWhatItMay) {
    EXPECT_TRUE(Validate());
    Carry(*child, wheel.RootInstance());
    EXPECT_TRUE(Validate());
}

TEST_F(SilentDefinition, LetsTheChildsOwnInstanceTellWhatFollows) {
    Carry(*child, wheel.RootInstance());
    child->CreateChildNode(0, 0, 0)->SetName(L"tyre");
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{"Node ['tyre'] does not have an associated instance."});
}

TEST_F(SilentDefinition, StillCountsTheChildren) {
    top->CreateChildNode(0, 0, 0);
    EXPECT_TRUE(Validate());
    top->CreateChildNode(0, 0, 0)->SetName(L"third");
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{"Node ['third'] has different number of children than implied by the "
                                     "associated instance"});
}

}  // namespace
}  // namespace qn::test
