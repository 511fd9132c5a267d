#include "tests/operations/operations_support.h"

namespace qn::test {
namespace {

class BasedOn : public OperationTest {
protected:
    k3::Node* const node = AddUse("copy", MakeReference("old").Get());
    const Counted<graph::Reference> origin = MakeReference("origin");

    std::string EntityId() const { return Utf8(ReferenceOf(node)->GetProperty(kBsId, 0)); }
    bool KeepsLink() const { return ReferenceOf(node)->GetProperty(kOrigin, 0).IsSet(); }
};

TEST_F(BasedOn, GivesADefinitionTheIdOfItsOriginAndForgetsTheLink) {
    ReferenceOf(node)->SetProperty(kOrigin, Var(origin));
    EXPECT_EQ(Run(13), 1);
    EXPECT_EQ(EntityId(), "origin");
    EXPECT_FALSE(KeepsLink());
}

TEST_F(BasedOn, GivesAnInstanceTheIdOfItsOrigin) {
    const Counted<graph::Instance> source = origin->CreateInstance();
    source->SetProperty(kBsId, Var("used"));
    InstanceOf(node)->SetProperty(kOrigin, Var(source));
    operation->ReplaceBsIdsWithBasedOn(scene.Get());
    EXPECT_EQ(Utf8(InstanceOf(node)->GetProperty(kBsId, 0)), "used");
    EXPECT_TRUE(InstanceOf(node)->GetProperty(kOrigin, 0).IsEmpty());
    EXPECT_EQ(EntityId(), "old");
}

TEST_F(BasedOn, TakesATextAsTheId) {
    ReferenceOf(node)->SetProperty(kOrigin, Var("s1:text"));
    operation->ReplaceBsIdsWithBasedOn(scene.Get());
    EXPECT_EQ(EntityId(), "s1:text");
    EXPECT_FALSE(KeepsLink());
}

TEST_F(BasedOn, LeavesTheIdWhereTheOriginHasNone) {
    origin->SetProperty(kBsId, Var());
    ReferenceOf(node)->SetProperty(kOrigin, Var(origin));
    operation->ReplaceBsIdsWithBasedOn(scene.Get());
    EXPECT_EQ(EntityId(), "old");
    EXPECT_TRUE(KeepsLink());
}

TEST_F(BasedOn, LeavesAnOriginOfTheOtherClass) {
    const Counted<graph::Instance> instance = origin->CreateInstance();
    instance->SetProperty(kBsId, Var("used"));
    ReferenceOf(node)->SetProperty(kOrigin, Var(instance));
    operation->ReplaceBsIdsWithBasedOn(scene.Get());
    EXPECT_EQ(EntityId(), "old");
    EXPECT_TRUE(KeepsLink());
}

TEST_F(BasedOn, LeavesOtherValues) {
    for (const Var& value : {Var(7), Var("0"), MapOf("a", Var(1))}) {
        ReferenceOf(node)->SetProperty(kOrigin, value);
        operation->ReplaceBsIdsWithBasedOn(scene.Get());
        EXPECT_EQ(EntityId(), "old");
        EXPECT_TRUE(KeepsLink());
    }
}

TEST_F(BasedOn, LeavesElementsWithoutLink) {
    operation->ReplaceBsIdsWithBasedOn(scene.Get());
    EXPECT_EQ(EntityId(), "old");
}

TEST_F(BasedOn, ReachesNodesBelowPlainOnes) {
    k3::Node* const below = AddUse("below", nullptr, AddNode("plain"));
    ReferenceOf(below)->SetProperty(kOrigin, Var("based"));
    operation->ReplaceBsIdsWithBasedOn(scene.Get());
    EXPECT_EQ(Utf8(ReferenceOf(below)->GetProperty(kBsId, 0)), "based");
}

TEST_F(BasedOn, TakesInstancesWithoutDefinition) {
    const k3::Node* const bare = AddBareUse("bare");
    InstanceOf(bare)->SetProperty(kOrigin, Var("based"));
    operation->ReplaceBsIdsWithBasedOn(scene.Get());
    EXPECT_EQ(Utf8(InstanceOf(bare)->GetProperty(kBsId, 0)), "based");
}

}  // namespace
}  // namespace qn::test
