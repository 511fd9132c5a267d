#include "tests/behaviour/element_support.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;
using Nodes = std::vector<k3::Node*>;

struct Showroom : TableScene {
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<Instance> wheel = EnterInstance(*table, L"wheel");
    Counted<Instance> tyre = EnterInstance(*table, L"tyre");

    /// Found by parameter 0x94, and by the table's map.
    Nodes Found(std::initializer_list<Instance*> path, bool exact = false) const {
        return NodesIn(table->GetNodesOfSelector(PathOf(path), exact).Get());
    }
};

TEST(LookupTableNodes, AreNoneForAnInstanceThatNothingShows) {
    const Showroom s;
    EXPECT_FALSE(s.table->GetNodesOfInstance(nullptr));
    EXPECT_FALSE(s.table->GetNodesOfInstance(s.car.Get()));
}

TEST(LookupTableNodes, OfAnInstanceComeInSetOrder) {
    const Showroom s;
    const Nodes made{s.NodeOf(s.car.Get()), s.NodeOf(s.car.Get()), s.NodeOf(s.car.Get())};
    const auto found = s.table->GetNodesOfInstance(s.car.Get());
    EXPECT_EQ(NodesIn(found.Get()), InSetOrder(made));
    EXPECT_TRUE(found->IsStrong());
}

TEST(LookupTableNodes, OfAnInstanceAreOnesOwnList) {
    const Showroom s;
    s.NodeOf(s.car.Get());
    s.table->GetNodesOfInstance(s.car.Get())->Clear();
    EXPECT_EQ(s.table->GetNodesOfInstance(s.car.Get())->GetCount(), 1);
}

TEST(LookupTableNodes, AreNotKeptAliveByTheTable) {
    const Showroom s;
    k3::Node* mortal = s.NodeOf(s.car.Get());
    k3::Node* other = s.NodeOf(s.car.Get());
    s.scene->DeleteNode(0, mortal, 0);
    EXPECT_EQ(NodesIn(s.table->GetNodesOfInstance(s.car.Get()).Get()), Nodes{other});
    s.scene->DeleteNode(0, other, 0);
    EXPECT_FALSE(s.table->GetNodesOfInstance(s.car.Get())) << "no list without a first node";
}

TEST(LookupTableNodes, KnowTheirInstance) {
    const Showroom s;
    k3::Node* known = s.NodeOf(s.car.Get());
    k3::Node* unknown = s.Node(L"unknown");
    unknown->SetParamVar(Param::kInstance, Var(s.car));
    EXPECT_EQ(s.table->GetInstanceOfNode(known).Get(), s.car.Get());
    EXPECT_FALSE(s.table->GetInstanceOfNode(unknown)) << "the map counts, not the node";
    EXPECT_FALSE(s.table->GetInstanceOfNode(nullptr));
}

TEST(LookupTableNodes, KnowNoInstanceWhereTheMapHasNull) {
    const Showroom s;
    k3::Node* node = s.Node(L"a");
    s.Fields().nodeToInstance.Set(node, nullptr);
    EXPECT_FALSE(s.table->GetInstanceOfNode(node));
}

TEST(LookupTableNodes, OfAnInvalidSelectorAreNone) {
    const Showroom s;
    s.NodeOf(s.car.Get());
    for (const bool exact : {false, true}) {
        EXPECT_FALSE(s.table->GetNodesOfSelector(Selector(), exact));
        EXPECT_FALSE(s.table->GetNodesOfSelector(PathOf({nullptr}), exact));
        EXPECT_FALSE(s.table->GetNodesOfSelector(PathOf({s.car.Get(), nullptr}), exact));
    }
}

TEST(LookupTableNodes, OfAPathWithoutShownStartAreNone) {
    const Showroom s;
    for (const bool exact : {false, true})
        EXPECT_FALSE(s.table->GetNodesOfSelector(PathOf({s.car.Get()}), exact));
}

TEST(LookupTableNodes, OfAOneElementPathAreAllThatShowIt) {
    const Showroom s;
    const Nodes made{s.NodeOf(s.car.Get()), s.NodeOf(s.car.Get())};
    for (const bool exact : {false, true}) {
        EXPECT_EQ(s.Found({s.car.Get()}, exact), InSetOrder(made));
        EXPECT_TRUE(s.table->GetNodesOfSelector(PathOf({s.car.Get()}), exact)->IsStrong());
    }
}

TEST(LookupTableNodes, OfALongPathAreOnePerStart) {
    const Showroom s;
    Nodes tyres;
    for (k3::Node* car : InSetOrder({s.NodeOf(s.car.Get()), s.NodeOf(s.car.Get())}))
        tyres.push_back(s.NodeOf(s.tyre.Get(), s.NodeOf(s.wheel.Get(), car)));
    for (const bool exact : {false, true})
        EXPECT_EQ(s.Found({s.car.Get(), s.wheel.Get(), s.tyre.Get()}, exact), tyres);
}

TEST(LookupTableNodes, OfALongPathLeaveOutStartsThatLeadNowhere) {
    const Showroom s;
    k3::Node* first = s.NodeOf(s.car.Get());
    k3::Node* wheel = s.NodeOf(s.wheel.Get(), s.NodeOf(s.car.Get()));
    for (const bool exact : {false, true}) {
        EXPECT_EQ(s.Found({s.car.Get(), s.wheel.Get()}, exact), Nodes{wheel});
        EXPECT_FALSE(s.table->GetNodesOfSelector(PathOf({s.car.Get(), s.tyre.Get()}), exact));
    }
    EXPECT_EQ(first->GetChildCount(), 0);
}

TEST(LookupTableNodes, AreLookedForAmongChildrenNotGrandchildren) {
    const Showroom s;
    s.NodeOf(s.tyre.Get(), s.Node(L"between", s.NodeOf(s.car.Get())));
    for (const bool exact : {false, true})
        EXPECT_EQ(s.Found({s.car.Get(), s.tyre.Get()}, exact), Nodes{});
}

TEST(LookupTableNodes, OfTheFirstMatchingSiblingAloneAreTried) {
    const Showroom s;
    k3::Node* car = s.NodeOf(s.car.Get());
    k3::Node* first = s.NodeOf(s.wheel.Get(), car);
    s.NodeOf(s.tyre.Get(), s.NodeOf(s.wheel.Get(), car));
    for (const bool exact : {false, true}) {
        EXPECT_EQ(s.Found({s.car.Get(), s.wheel.Get()}, exact), Nodes{first});
        EXPECT_EQ(s.Found({s.car.Get(), s.wheel.Get(), s.tyre.Get()}, exact), Nodes{});
    }
}

TEST(LookupTableNodes, FollowParameter94UnlessExact) {
    const Showroom s;
    k3::Node* car = s.NodeOf(s.car.Get());
    k3::Node* inMap = s.Node(L"in the map", car);
    s.EnterInMaps(inMap, s.wheel.Get());
    k3::Node* onNode = s.Node(L"on the node", car);
    onNode->SetParamVar(Param::kInstance, Var(s.wheel));
    EXPECT_EQ(s.Found({s.car.Get(), s.wheel.Get()}), Nodes{onNode});
    EXPECT_EQ(s.Found({s.car.Get(), s.wheel.Get()}, true), Nodes{inMap});
}

TEST(LookupTableNodes, StartOnlyWhereTheStartItselfAgrees) {
    const Showroom s;
    k3::Node* inMap = s.Node(L"in the map");
    s.EnterInMaps(inMap, s.car.Get());
    EXPECT_EQ(s.Found({s.car.Get()}), Nodes{});
    EXPECT_EQ(s.Found({s.car.Get()}, true), Nodes{inMap});

    inMap->SetParamVar(Param::kInstance, Var(s.car));
    s.Fields().nodeToInstance.Set(inMap, s.wheel.Get());
    EXPECT_EQ(s.Found({s.car.Get()}), Nodes{inMap});
    EXPECT_EQ(s.Found({s.car.Get()}, true), Nodes{});
}

TEST(LookupTableNodes, AreFoundWithoutChangingTheSelector) {
    const Showroom s;
    s.NodeOf(s.wheel.Get(), s.NodeOf(s.car.Get()));
    const Selector path = PathOf({s.car.Get(), s.wheel.Get()});
    s.table->GetNodesOfSelector(path, false);
    EXPECT_EQ(path.GetPathElementCount(), 2);
}

TEST(LookupTableNodes, AreDumpedBetweenLinesOfHyphens) {
    const Showroom s;
    const std::wstring line = std::wstring(76, L'-') + L"\n";
    EXPECT_EQ(s.table->DumpNodeMap(), String(line + line));

    std::wstring body;
    for (k3::Node* node :
         InSetOrder({s.NodeOf(s.car.Get()), s.NodeOf(s.wheel.Get()), s.NodeOf(s.tyre.Get())})) {
        const std::wstring id = IdOf(s.table->GetInstanceOfNode(node).Get());
        body += L"{" + id + L" -> " + id + L"}\n";
    }
    EXPECT_EQ(s.table->DumpNodeMap(), String(line + body + line));
}

TEST(LookupTableNodes, AreDumpedWithNamesCutToTheBuffer) {
    const Showroom s;
    s.NodeOf(s.car.Get())->SetName(std::wstring(300, L'x').c_str());
    const std::wstring line = std::wstring(76, L'-') + L"\n";
    EXPECT_EQ(s.table->DumpNodeMap(), String(line + L"{" + std::wstring(259, L'x') + L" -> car}\n" + line));
}

TEST(LookupTableNodes, AreDumpedWithIdsThatAreNoText) {
    const Showroom s;
    s.car->SetProperty(Prop::kLocalId, Var(17));
    s.NodeOf(s.car.Get())->SetName(L"a");
    const std::wstring line = std::wstring(76, L'-') + L"\n";
    EXPECT_EQ(s.table->DumpNodeMap(), String(line + L"{a -> 17}\n" + line));
}

}  // namespace
}  // namespace qn::test
