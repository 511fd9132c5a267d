#include "services/node_check.h"

#include "tests/services/services_support.h"

namespace qn::test {
namespace {

using graph::NodeFault;
using graph::NodeFinding;

/// Everything that a check of the whole car tells, as "node: fault".
class NodeListing : public HierarchyCheck {
protected:
    Messages List() {
        Messages lines;
        graph::NodeCheck([&](const NodeFinding& found) {
            constexpr const char* kNames[] = {"instance", "object", "children"};
            lines.push_back(found.node->GetName().ToUtf8() + ": " + kNames[static_cast<int>(found.fault)]);
            return true;
        }).Run(car.top, CarriedBy(*car.top));
        return lines;
    }
    SoundCar car{*scene};
};

TEST_F(NodeListing, IsEmptyForASoundTree) {
    EXPECT_EQ(List(), Messages{});
}

TEST_F(NodeListing, GoesOnBelowAndBehindAFault) {
    car.At({0})->SetObject(nullptr);
    car.At({1})->DeleteParam(Param::kInstance);
    car.At({1, 0})->SetObject(nullptr);
    car.At({2})->CreateChildNode(0, 0, 0)->SetName(L"valve");
    EXPECT_EQ(List(), (Messages{"chassis: object", "wheel: instance", "tyre: object", "valve: children"}));
}

TEST_F(NodeListing, NamesEachSurplusOfAParentOnce) {
    for (const wchar_t* name : {L"spare", L"roof", L"horn"})
        car.top->CreateChildNode(0, 0, 0)->SetName(name);
    EXPECT_EQ(List(), Messages{"spare: children"});
}

TEST_F(NodeListing, FollowsTheChildrenOfANodeThatLostItsInstance) {
    car.At({1})->DeleteParam(Param::kInstance);
    EXPECT_EQ(List(), Messages{"wheel: instance"});
    car.At({1, 0})->DeleteParam(Param::kInstance);
    EXPECT_EQ(List().size(), 1u) << "nobody tells any more what the tyre should carry";
}

TEST_F(NodeListing, FollowsAWholeSubtreeThatStandsInAnothersPlace) {
    Carry(*car.At({0}), CarriedBy(*car.At({1})));
    k3::Node* const tyre = car.At({0})->CreateChildNode(0, 0, 0);
    tyre->SetName(L"tyre");
    tyre->SetObject(car.At({1, 0})->GetObject());
    Carry(*tyre, CarriedBy(*car.At({1, 0})));
    EXPECT_EQ(List(), Messages{"chassis: instance"});
}

TEST_F(NodeListing, EndsWhereItIsToldTo) {
    car.At({0})->SetObject(nullptr);
    car.At({1})->SetObject(Make<k3::Object3D>().Get());
    int told = 0;
    EXPECT_FALSE(
        graph::NodeCheck([&](const NodeFinding&) { return ++told < 1; }).Run(car.top, CarriedBy(*car.top)));
    EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace qn::test
