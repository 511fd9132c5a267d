#include "tests/services/services_support.h"

namespace qn::test {
namespace {

class NodeRepair : public HierarchyCheck {
protected:
    void Break(k3::Node* node) { node->DeleteParam(Param::kInstance); }
    SoundCar car{*scene};
};

constexpr const char* kLost =
    "Metadata instancing errors for the ['car'] top-level node. Some metadata may have been lost.";

TEST_F(NodeRepair, LeavesASoundSceneAlone) {
    EXPECT_TRUE(Repair());
    EXPECT_EQ(Operations().made, 0);
    EXPECT_EQ(log->Texts(), Messages{});
}

TEST_F(NodeRepair, RemovesTheHierarchyOfABrokenNodeAndKeepsNothing) {
    Break(car.At({1}));
    EXPECT_FALSE(Repair());
    ASSERT_EQ(Operations().removals.size(), 1u);
    EXPECT_EQ(Operations().removals[0].node, car.top);
    EXPECT_EQ(Operations().removals[0].keeps, (std::vector<bool>{false, false, false, false}));
}

TEST_F(NodeRepair, TellsWhatWasWrongAndWhatMayBeLost) {
    car.top->SetName(L"car");
    Break(car.At({1}));
    Repair();
    EXPECT_EQ(log->Texts(), (Messages{"Node ['wheel'] does not have an associated instance.", kLost}));
    EXPECT_EQ(log->Levels(), (std::vector<int>{2, 2}));
}

TEST_F(NodeRepair, TellsWhatMayBeLostAfterTheRemoval) {
    Break(car.At({1}));
    Repair();
    ASSERT_EQ(Operations().removals.size(), 1u);
    EXPECT_EQ(Operations().removals[0].messages, 1u) << "what was wrong";
    EXPECT_EQ(log->Texts().size(), 2u);
}

TEST_F(NodeRepair, KeepsTheNodes) {
    Break(car.At({1}));
    Repair();
    EXPECT_EQ(car.top->GetChildCount(), 3);
    EXPECT_EQ(CarriedBy(*car.At({2, 0})), nullptr);
}

TEST_F(NodeRepair, FindsNothingTheSecondTime) {
    Break(car.At({1}));
    EXPECT_FALSE(Repair());
    EXPECT_TRUE(Repair());
    EXPECT_TRUE(Validate());
}

TEST_F(NodeRepair, ChecksEveryTopLevelNodeWithOneOperationObject) {
    SoundCar second(*scene), third(*scene);
    Break(car.At({0}));
    Break(third.At({0}));
    EXPECT_FALSE(Repair());
    EXPECT_EQ(Operations().made, 1);
    ASSERT_EQ(Operations().removals.size(), 2u);
    EXPECT_EQ(Operations().removals[0].node, car.top);
    EXPECT_EQ(Operations().removals[1].node, third.top);
    EXPECT_NE(CarriedBy(*second.top), nullptr);
}

TEST_F(NodeRepair, IsTheSameUnderItsOtherName) {
    Break(car.At({0}));
    EXPECT_FALSE(checker->RepairHierarchy(scene.Get(), log.Get()));
    EXPECT_EQ(Operations().removals.size(), 1u);
    EXPECT_TRUE(checker->RepairHierarchy(scene.Get(), log.Get()));
}

TEST_F(NodeRepair, WorksWithoutALog) {
    Break(car.At({0}));
    EXPECT_FALSE(checker->RepairTopLevelNodes(scene.Get(), nullptr));
    EXPECT_EQ(Operations().removals.size(), 1u);
}

TEST_F(NodeRepair, TellsOfTheTroubleEvenWhereNobodyCanRemoveIt) {
    OfferOperation(false);
    car.top->SetName(L"car");
    Break(car.At({0}));
    EXPECT_FALSE(Repair());
    EXPECT_EQ(log->Texts().back(), kLost);
    EXPECT_NE(CarriedBy(*car.top), nullptr);
}

TEST_F(NodeRepair, AnswersAnyFailureAlsoIfTheLastNodeIsSound) {
    SoundCar second(*scene);
    Break(car.At({0}));
    EXPECT_FALSE(Repair());
}

}  // namespace
}  // namespace qn::test
