#include "tests/graph/element_changes_fixture.h"

#include <map>

namespace qn::test {
namespace {

class PmiNames : public ElementChanges {
protected:
    static void NameByCad(k3::Node* node, const wchar_t* name) {
        node->SetMetadata(Metadata(L"$CADMetadata", L"InstanceName", Var(name)).ToMap());
    }
    static void MakePmi(k3::Node* node) {
        node->SetMetadata(Metadata(L"$QN.CAD.PMI", L"PMIType", Var(4)).ToMap());
    }
    static Var PmiName(const k3::Node* node) { return MetadataOf(node, L"$QN.CAD.PMI", L"InstanceName"); }
};

TEST_F(PmiNames, AreTheNamesOfTheCadSystem) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    NameByCad(node, L"Bohrung");
    Apply(node);
    EXPECT_EQ(PmiName(node), Var(L"Bohrung"));
}

TEST_F(PmiNames, ComeFromAboveOnlyForPmi) {
    k3::Node* top = ShownBelow(Top(), L"n1");
    k3::Node* pmi = ShownBelow(top, L"n2");
    k3::Node* part = ShownBelow(top, L"n3");
    NameByCad(top, L"Bohrung");
    MakePmi(pmi);
    Apply(top);
    EXPECT_EQ(PmiName(pmi), Var(L"Bohrung"));
    EXPECT_TRUE(PmiName(part).IsEmpty());
}

TEST_F(PmiNames, AreForWhatIsBelowAloneAndNotForSiblings) {
    k3::Node* top = ShownBelow(Top(), L"n1");
    k3::Node* named = ShownBelow(top, L"n2");
    k3::Node* pmi = ShownBelow(top, L"n3");
    NameByCad(top, L"above");
    NameByCad(named, L"beside");
    MakePmi(pmi);
    Apply(top);
    EXPECT_EQ(PmiName(pmi), Var(L"above"));
}

TEST_F(PmiNames, PassThroughNodesWithoutInstance) {
    k3::Node* top = ShownBelow(Top(), L"n1");
    k3::Node* pmi = ShownBelow(Below(top), L"n2");
    NameByCad(top, L"above");
    MakePmi(pmi);
    Apply(top);
    EXPECT_EQ(PmiName(pmi), Var(L"above"));
}

TEST_F(PmiNames, StartWithTheGivenPath) {
    k3::Node* pmi = ShownBelow(Top(), L"n1");
    MakePmi(pmi);
    std::map<PersistentSelector*, k3::Node*> answers, reserved;
    On(pmi)->ApplyElementChanges(pmi, L"given", answers, reserved);
    EXPECT_EQ(PmiName(pmi), Var(L"given"));
}

}  // namespace
}  // namespace qn::test
