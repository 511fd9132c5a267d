#include "frame/host/interface.h"
#include "frame/host/collections.h"
#include "frame/host/counted.h"
#include "frame/host/guid.h"

#include <gtest/gtest.h>
#include <functional>
#include <memory>
#include <vector>

namespace qn {
namespace {

/// Tells when it dies, and may hold another object.
class Link : public Interface {
public:
    ~Link() override {
        if (onDeath) onDeath();
    }
    std::function<void()> onDeath;
    Counted<Interface> next;
};

class Named : public Interface {
public:
    const char* GetInterfaceName() const override { return "test.named"; }
    bool IsTypeOf(const char* name) const override {
        return EqualKeys(name, "test.named") || Interface::IsTypeOf(name);
    }
};

TEST(Interface, IsBornWithOneCountThatItsMakerOwns) {
    Link* const link = new Link;
    EXPECT_EQ(link->GetRefCount(), 1);
    EXPECT_EQ(link->AddRef(), 2);
    EXPECT_EQ(link->Release(), 1);
    bool dead = false;
    link->onDeath = [&] { dead = true; };
    EXPECT_EQ(link->Release(), 0);
    EXPECT_TRUE(dead);
}

TEST(Interface, IsTypeOfNoName) {
    const auto link = Make<Link>();
    for (const char* name : {"", "k3_extension", "qn::Interface"})
        EXPECT_FALSE(link->IsTypeOf(name));
    EXPECT_FALSE(link->IsTypeOf(nullptr));
    EXPECT_FALSE(link->IsTypeOf(link->GetInterfaceName()));
}

TEST(Interface, AnswersAQueryByNameWithACountAdded) {
    const auto named = Make<Named>();
    Unknown* out = nullptr;
    EXPECT_EQ(named->QueryInterface("TEST.Named", out), ResultEnum::kSuccess);
    EXPECT_EQ(static_cast<Interface*>(out), named.Get());
    EXPECT_EQ(named->GetRefCount(), 2);
    named->Release();
    EXPECT_EQ(named->QueryInterface("other", out), ResultEnum::kNothing);
    EXPECT_EQ(out, nullptr);
}

TEST(Interface, AnswersNoQueryByGuid) {
    const auto named = Make<Named>();
    Unknown* out = named.Get();
    EXPECT_EQ(named->QueryInterface(Guid(), out), ResultEnum::kNothing);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(named->GetRefCount(), 1);
}

TEST(Interface, CopiesNothing) {
    const auto from = Make<Link>(), to = Make<Link>();
    EXPECT_EQ(to->CopyFrom(from.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(to->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

TEST(WeakCell, ReadsNullBeforeAnyDestructorRuns) {
    auto link = Make<Link>();
    const Weak<Link> weak(link.Get());
    bool asked = false;
    link->onDeath = [&] {
        asked = true;
        EXPECT_EQ(weak.Get(), nullptr);
        EXPECT_FALSE(weak.Lock());
    };
    EXPECT_EQ(weak.Get(), link.Get());
    EXPECT_EQ(weak.Lock(), link.Get());
    link.Reset();
    EXPECT_TRUE(asked);
}

TEST(WeakCell, IsSharedByAllWhoWatchAndOutlivesTheObject) {
    auto link = Make<Link>();
    WeakCell* const cell = WeakPtrBase::HoldCell(link.Get());
    EXPECT_EQ(WeakPtrBase::HoldCell(link.Get()), cell);
    EXPECT_EQ(cell->holders, 3);
    WeakPtrBase::DropCell(cell);
    link.Reset();
    EXPECT_EQ(cell->object, nullptr);
    EXPECT_EQ(cell->holders, 1);
    WeakPtrBase::DropCell(cell);
    WeakPtrBase::DropCell(nullptr);
}

TEST(WeakCell, IsNullWithoutMemory) {
    const auto link = Make<Link>();
    mem::FailAllocations(0, 1);
    const Weak<Link> weak(link.Get());
    EXPECT_EQ(weak.Get(), nullptr);
    EXPECT_EQ(Weak<Link>(link.Get()).Get(), link.Get());
}

TEST(WeakCell, AddsNoCount) {
    const auto link = Make<Link>();
    const Weak<Link> weak(link.Get());
    const Weak<Link> copy(weak);
    EXPECT_EQ(link->GetRefCount(), 1);
    EXPECT_EQ(weak.Lock()->GetRefCount(), 2);
}

TEST(WeakCell, MadeWhileTheObjectDiesIsDeadAfterwards) {
    auto link = Make<Link>();
    Weak<Link> late;
    Link* const raw = link.Get();
    link->onDeath = [&] { late = raw; };
    link.Reset();
    EXPECT_EQ(late.Get(), nullptr);
}

TEST(Destruction, HappensOnceThoughTheDyingObjectIsCountedAgain) {
    auto link = Make<Link>();
    int deaths = 0;
    Link* const raw = link.Get();
    link->onDeath = [&] {
        ++deaths;
        const Counted<Interface> again(raw);
        EXPECT_EQ(raw->GetRefCount(), 0);
    };
    link.Reset();
    EXPECT_EQ(deaths, 1);
}

TEST(Destruction, TakesLongChainsApartWithoutDeepRecursion) {
    int deaths = 0;
    Counted<Interface> chain;
    for (int i = 0; i < 1000000; ++i) {
        auto link = Make<Link>();
        link->onDeath = [&] { ++deaths; };
        link->next = std::move(chain);
        chain = std::move(link);
    }
    chain.Reset();
    EXPECT_EQ(deaths, 1000000);
}

TEST(Destruction, TakesDeepValuesApartWithoutDeepRecursion) {
    Var value;
    for (int i = 0; i < 1000000; ++i) {
        const auto array = VarArray::Create();
        array->Add(value);
        value = Var(array);
    }
    value = Var();
    EXPECT_TRUE(value.IsEmpty());
}

TEST(Destruction, OfAPostponedObjectStillReadsAsDead) {
    // The last link of a chain is postponed; whoever watches it must not get it back meanwhile.
    auto last = Make<Link>();
    const Weak<Link> weak(last.Get());
    Counted<Interface> chain = last;
    last.Reset();
    for (int i = 0; i < 100; ++i) {
        auto link = Make<Link>();
        link->next = std::move(chain);
        chain = std::move(link);
    }
    bool alive = true;
    auto first = Make<Link>();
    first->next = std::move(chain);
    first->onDeath = [&] { alive = weak.Get() != nullptr; };
    first.Reset();
    EXPECT_TRUE(alive);
    EXPECT_EQ(weak.Get(), nullptr);
}

const struct {
    const char* left;
    const char* right;
    bool equal;
} kKeys[] = {{"qn.graph.instance", "QN.Graph.Instance", true},
             {"", "", true},
             {"a", "", false},
             {"", "a", false},
             {"ab", "a", false},
             {"[", "{", false},
             {"@", "`", false},
             {"\xc3\x84", "\xc3\xa4", false},
             {nullptr, "a", false},
             {"a", nullptr, false},
             {nullptr, nullptr, false}};

TEST(EqualKeys, IgnoresTheCaseOfAsciiLettersAlone) {
    for (const auto& [left, right, equal] : kKeys)
        EXPECT_EQ(EqualKeys(left, right), equal) << (left ? left : "null") << " " << (right ? right : "null");
}

}  // namespace
}  // namespace qn
