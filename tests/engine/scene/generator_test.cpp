#include "tests/engine/scene/fake_generator.h"
#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

using test::FakeGenerator;

TEST(Generator, IsAttachedCountedAndLent) {
    const auto node = Make<Node>();
    const auto generator = Make<FakeGenerator>();
    Generator::Attach(node.Get(), generator.Get());
    EXPECT_EQ(Generator::Get(node.Get()), generator.Get());
    EXPECT_EQ(generator->GetRefCount(), 2);
    EXPECT_EQ(generator->attachedTo, node.Get());
}

TEST(Generator, IsPresentByItsOwnKeyOnly) {
    const auto node = Make<Node>();
    EXPECT_FALSE(Generator::IsPresent(node.Get(), "test.generator"));
    Generator::Attach(node.Get(), Make<FakeGenerator>().Get());
    EXPECT_TRUE(Generator::IsPresent(node.Get(), "TEST.generator"));
    EXPECT_FALSE(Generator::IsPresent(node.Get(), "qn.k3.generator"));
    EXPECT_FALSE(Generator::IsPresent(node.Get(), nullptr));
    EXPECT_FALSE(Generator::IsPresent(nullptr, "test.generator"));
}

TEST(Generator, TakesThePlaceOfThePresentOne) {
    const auto node = Make<Node>();
    const auto first = Make<FakeGenerator>();
    const auto second = Make<FakeGenerator>();
    Generator::Attach(node.Get(), first.Get());
    Generator::Attach(node.Get(), second.Get());
    EXPECT_EQ(Generator::Get(node.Get()), second.Get());
    EXPECT_EQ(first->detached, 1);
    EXPECT_EQ(first->GetRefCount(), 1);
}

TEST(Generator, IsDetachedOnce) {
    const auto node = Make<Node>();
    const auto generator = Make<FakeGenerator>();
    Generator::Attach(node.Get(), generator.Get());
    Generator::Detach(node.Get());
    Generator::Detach(node.Get());
    Generator::Detach(nullptr);
    EXPECT_EQ(Generator::Get(node.Get()), nullptr);
    EXPECT_EQ(generator->detached, 1);
}

}  // namespace
}  // namespace qn::k3
