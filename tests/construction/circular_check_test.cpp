#include "construction/circular_check.h"

#include "tests/construction/construction_support.h"

#include <algorithm>

namespace qn::test {
namespace {

using namespace qn::graph;

constexpr const char* kIntroduction =
    "Invalid instance/reference hierarchy - found circular reference to entity ";

TEST(HasCircularReference, IsFalseForNull) {
    EXPECT_FALSE(Factory()->HasCircularReference(nullptr, nullptr));
}

TEST(HasCircularReference, IsFalseForSharedDefinitions) {
    const auto car = AssemblyBuilder("car").Child("wheel", 4).Under("wheel", "bolt", 5).Child("bolt").Build();
    const auto log = MakeContext();
    EXPECT_FALSE(Factory()->HasCircularReference(car.Root(), log.Get()));
    EXPECT_TRUE(log->Texts().empty());
}

TEST(HasCircularReference, ReportsADefinitionWithinItselfWithThatOneDefinition) {
    const auto box = AssemblyBuilder("box").Child("box").WithoutTable().Build();
    const auto log = MakeContext();
    EXPECT_TRUE(Factory()->HasCircularReference(box.Root(), log.Get()));
    EXPECT_EQ(log->Texts(), std::vector<std::string>{kIntroduction + std::string("box via name:box")});
    EXPECT_EQ(log->Levels(), std::vector<int>{2});
}

TEST(HasCircularReference, NamesLocalAndServerIds) {
    const auto box = AssemblyBuilder("box").Child("box").WithServerIds().Build();
    const auto log = MakeContext();
    Factory()->HasCircularReference(box.Root(), log.Get());
    EXPECT_EQ(log->Texts().at(0),
              kIntroduction + std::string("box id: e1 bsid: s:box via name:box id:e1 bsid:s:box"));
}

TEST(HasCircularReference, LeavesOutWhatADefinitionDoesNotSay) {
    const auto reference = Make<ReferenceImpl>();
    reference->AddChild(reference->CreateInstance().Get());
    const auto log = MakeContext();
    EXPECT_TRUE(Factory()->HasCircularReference(reference.Get(), log.Get()));
    EXPECT_EQ(log->Texts().at(0), kIntroduction + std::string(" via "));
    reference->RemoveChildAt(0);
}

TEST(HasCircularReference, ListsTheDescentInPointerOrder) {
    const auto ring = AssemblyBuilder("a").Child("b").Under("b", "c").Under("c", "b").WithoutTable().Build();
    std::vector<std::pair<Reference*, std::string>> members;
    for (const char* const name : {"a", "b", "c"})
        members.emplace_back(ring.Ref(name), name);
    std::sort(members.begin(), members.end(), [](const auto& left, const auto& right) {
        return std::less<Reference*>()(left.first, right.first);
    });
    std::string list;
    for (const auto& [reference, name] : members)
        list += (list.empty() ? "name:" : "/name:") + name;
    const auto log = MakeContext();

    EXPECT_TRUE(Factory()->HasCircularReference(ring.Root(), log.Get()));

    EXPECT_EQ(log->Texts().at(0), kIntroduction + std::string("b via ") + list);
}

TEST(HasCircularReference, ReportsTheFirstFindOnly) {
    const auto ring = AssemblyBuilder("a").Child("a").Child("b").Under("b", "a").WithoutTable().Build();
    const auto log = MakeContext();
    EXPECT_TRUE(Factory()->HasCircularReference(ring.Root(), log.Get()));
    EXPECT_EQ(log->Texts().size(), 1u);
}

TEST(HasCircularReference, EndsWithoutALogToo) {
    const auto ring = AssemblyBuilder("a").Child("b").Under("b", "a").WithoutTable().Build();
    EXPECT_TRUE(Factory()->HasCircularReference(ring.Root(), nullptr));
}

TEST(HasCircularReference, PassesOverInstancesWithoutDefinition) {
    const auto reference = Make<ReferenceImpl>();
    reference->AddChild(LooseInstance().Get());
    EXPECT_FALSE(Factory()->HasCircularReference(reference.Get(), nullptr));
}

TEST(HasCircularReference, LooksAtEachSharedDefinitionOnce) {
    const Assembly shared(SharedShape(100'000'000'000));
    EXPECT_FALSE(Factory()->HasCircularReference(shared.Root(), MakeContext().Get()));
}

TEST(HasCircularReference, GoesDownTenThousandLevels) {
    const Assembly chain(DeepShape(10'000));
    EXPECT_FALSE(Factory()->HasCircularReference(chain.Root(), MakeContext().Get()));
}

}  // namespace
}  // namespace qn::test
