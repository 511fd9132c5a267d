#include "tests/operations/operations_support.h"
#include "tests/support/inert_instance.h"

namespace qn::test {
namespace {

/// Letters for what a node still has: server ids "ens" and external ids "ENS" of entity, node, selector.
class RemoveIds : public OperationTest {
protected:
    k3::Node* AddFull(graph::Reference* reference = nullptr, k3::Node* parent = nullptr) {
        k3::Node* const node = AddUse("full", reference, parent);
        for (graph::HierarchyElement* const element :
             {static_cast<graph::HierarchyElement*>(ReferenceOf(node)),
              static_cast<graph::HierarchyElement*>(InstanceOf(node))}) {
            element->SetProperty(kBsId, Var("id"));
            element->SetProperty(kExternalIds, MapOf("system", Var("id")));
        }
        node->SetParamVar(Param::kBsId, Var("id"));
        node->SetParamVar(Param::kExternalIds, MapOf("system", Var("id")));
        return node;
    }

    static std::string Left(const k3::Node* node) {
        std::string left;
        const auto note = [&](const Var& value, char letter) {
            left += value.IsSet() ? std::string(1, letter) : "";
        };
        note(ReferenceOf(node)->GetProperty(kBsId, 0), 'e');
        note(InstanceOf(node)->GetProperty(kBsId, 0), 'n');
        note(node->GetParamVar(Param::kBsId), 's');
        note(ReferenceOf(node)->GetProperty(kExternalIds, 0), 'E');
        note(InstanceOf(node)->GetProperty(kExternalIds, 0), 'N');
        note(node->GetParamVar(Param::kExternalIds), 'S');
        return left;
    }

    std::string LeftAfter(unsigned flags) {
        const k3::Node* const node = AddFull();
        operation->RemoveIds(scene.Get(), flags);
        return Left(node);
    }

    std::string LeftAfterMethod(const Arguments& arguments) {
        const k3::Node* const node = AddFull();
        EXPECT_EQ(Run(1, arguments), 1);
        return Left(node);
    }
};

TEST_F(RemoveIds, WithFlagOneTakesServerIdsOfDefinitionsAlone) {
    EXPECT_EQ(LeftAfter(0x1), "nsENS");
}

TEST_F(RemoveIds, WithFlagTwoTakesExternalIdsOfInstancesAndNodesToo) {
    EXPECT_EQ(LeftAfter(0x2), "esE");
}

TEST_F(RemoveIds, WithFlagFourTakesExternalIdsOfInstancesToo) {
    EXPECT_EQ(LeftAfter(0x4), "enES");
}

TEST_F(RemoveIds, WithFlagEightTakesExternalIdsOfDefinitionsAlone) {
    EXPECT_EQ(LeftAfter(0x8), "ensNS");
}

TEST_F(RemoveIds, WithSevenLeavesTheExternalIdsOfDefinitions) {
    EXPECT_EQ(LeftAfter(0x7), "E");
}

TEST_F(RemoveIds, WithABitOfAMaskAloneTakesWhatTheMaskIsFor) {
    EXPECT_EQ(LeftAfter(0x10), "ensE");   // in both masks
    EXPECT_EQ(LeftAfter(0x20), "ensEN");  // in the mask of nodes alone
}

TEST_F(RemoveIds, WithZeroTakesNothing) {
    EXPECT_EQ(LeftAfter(0), "ensENS");
}

TEST_F(RemoveIds, ByTheFlagForExternalIdsOfInstancesAlsoTakesServerIdsOfInstancesAndNodes) {
    EXPECT_EQ(LeftAfterMethod({{5, Var(true)}}), "eE");
}

TEST_F(RemoveIds, ByTheFlagForExternalIdsOfNodesAlsoTakesBothIdsOfInstances) {
    EXPECT_EQ(LeftAfterMethod({{6, Var(true)}}), "esE");
}

TEST_F(RemoveIds, ByNumberReadsItsFlagsInOrder) {
    EXPECT_EQ(LeftAfterMethod({{1, Var(true)}}), "nsENS");
    EXPECT_EQ(LeftAfterMethod({{2, Var(true)}}), "esE");
    EXPECT_EQ(LeftAfterMethod({{3, Var(true)}}), "enES");
    EXPECT_EQ(LeftAfterMethod({{4, Var(true)}}), "ensNS");
}

TEST_F(RemoveIds, WithAllFlagsFalseWalksAndAnswersOne) {
    EXPECT_EQ(LeftAfterMethod({}), "ensENS");
}

TEST_F(RemoveIds, ReachesEveryNodeBelow) {
    k3::Node* const top = AddFull();
    k3::Node* const plain = AddNode("plain", top);
    const k3::Node* const deep = AddFull(nullptr, plain);
    const k3::Node* const beside = AddFull();
    operation->RemoveIds(scene.Get(), 0xff);
    for (const k3::Node* const node : {static_cast<const k3::Node*>(top), deep, beside})
        EXPECT_EQ(Left(node), "");
}

TEST_F(RemoveIds, StaysBelowTheNodeItWasGiven) {
    k3::Node* const top = AddFull();
    const k3::Node* const beside = AddFull();
    operation->RemoveIds(top, 0xff);
    EXPECT_EQ(Left(top), "");
    EXPECT_EQ(Left(beside), "ensENS");
}

TEST_F(RemoveIds, LeavesAValueThatIsFalse) {
    const k3::Node* const node = AddFull();
    InstanceOf(node)->SetProperty(kBsId, Var("0"));
    operation->RemoveIds(scene.Get(), 0xff);
    EXPECT_EQ(Utf8(InstanceOf(node)->GetProperty(kBsId, 0)), "0");
}

TEST_F(RemoveIds, PassesAnInstanceWithoutDefinition) {
    k3::Node* const node = AddFull();
    const auto loose = CreateAs<graph::Instance>(graph::ClassKey::kInstance);
    loose->SetProperty(kBsId, Var("id"));
    node->SetParamVar(Param::kInstance, Var(loose));
    operation->RemoveIds(scene.Get(), 0xff);
    EXPECT_TRUE(loose->GetProperty(kBsId, 0).IsEmpty());
    EXPECT_TRUE(node->GetParamVar(Param::kBsId).IsEmpty());
}

/// Gives its definition an id whenever it is asked for it.
class GivingInstance final : public InertInstance {
public:
    using InertInstance::InertInstance;
    graph::Reference* GetReference() const override {
        reference_->SetProperty(kBsId, Var("given"));
        return reference_.Get();
    }
};

TEST_F(RemoveIds, ClearsASharedDefinitionAtEachMeeting) {
    const auto shared = MakeReference();
    for (const char* const name : {"a", "b"})
        AddNode(name)->SetParamVar(Param::kInstance, Var(Make<GivingInstance>(shared.Get())));
    operation->RemoveIds(scene.Get(), 0x1);
    EXPECT_TRUE(shared->GetProperty(kBsId, 0).IsEmpty());
}

TEST_F(RemoveIds, NeedsNoStackForDeepTrees) {
    k3::Node* node = nullptr;
    for (int level = 0; level < 20000; ++level)
        node = AddNode("deep", node);
    node->SetParamVar(Param::kBsId, Var("id"));
    operation->RemoveIds(scene.Get(), 0x4);
    EXPECT_TRUE(node->GetParamVar(Param::kBsId).IsEmpty());
}

}  // namespace
}  // namespace qn::test
