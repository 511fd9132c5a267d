#include "frame/host/collections.h"

#include <gtest/gtest.h>
#include <string>

namespace qn {
namespace {

/// A second base without count, as hierarchy elements have.
class Side {
public:
    virtual ~Side() = default;
    virtual void* CastTo(const ClassRecord& wanted) { return &wanted == &StaticClass() ? this : nullptr; }
    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("test::Side");
        return record;
    }
};

class Both : public ReferenceSource, public Side {
public:
    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("test::Both");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<Both, ReferenceSource, Side>(this, wanted);
    }
};

TEST(ClassRecord, IsOneForEachName) {
    const std::string name = "test::SomeClass";
    EXPECT_EQ(&InternClass("test::SomeClass"), &InternClass(name.c_str()));
    EXPECT_NE(&InternClass("test::SomeClass"), &InternClass("test::Someclass"));
    EXPECT_STREQ(InternClass(name.c_str()).name, "test::SomeClass");
}

TEST(ClassRecord, StaysWhereItIsWhileOthersCome) {
    const ClassRecord& first = InternClass("test::First");
    for (int i = 0; i < 1000; ++i)
        InternClass(("test::Class" + std::to_string(i)).c_str());
    EXPECT_EQ(&InternClass("test::First"), &first);
    EXPECT_STREQ(first.name, "test::First");
}

TEST(Cast, ReachesEveryBaseAndAcrossThem) {
    const auto both = Make<Both>();
    Interface* const object = both.Get();
    EXPECT_EQ(Cast<Both>(object), both.Get());
    EXPECT_EQ(Cast<Extension>(object), both.Get());
    EXPECT_EQ(Cast<Side>(object), static_cast<Side*>(both.Get()));
    Side* const side = both.Get();
    EXPECT_EQ(Cast<Interface>(side), object);
    EXPECT_EQ(Cast<VarMap>(side), nullptr);
}

TEST(Cast, GivesNullForNullAndForOtherClasses) {
    EXPECT_EQ(Cast<VarMap>(static_cast<Interface*>(nullptr)), nullptr);
    const auto array = VarArray::Create();
    EXPECT_EQ(Cast<VarMap>(static_cast<Interface*>(array.Get())), nullptr);
    EXPECT_EQ(Cast<ReferenceTarget>(static_cast<const Interface*>(array.Get())), array.Get());
}

template <class T>
void ExpectChain(const Counted<T>& object, std::initializer_list<const char*> keys) {
    EXPECT_STREQ(object->GetInterfaceName(), *keys.begin());
    for (const char* key : keys)
        EXPECT_TRUE(object->IsTypeOf(key)) << key;
    for (const char* key : {"", "k3_node", "k3_interface"})
        EXPECT_FALSE(object->IsTypeOf(key)) << key;
    EXPECT_FALSE(object->IsTypeOf(nullptr));
}

TEST(IsTypeOf, FollowsTheBasesByTheirKeys) {
    ExpectChain(VarMap::Create(), {"k3_varmap", "K3_RefSource", "k3_reftarget", "k3_extension"});
    ExpectChain(VarArray::Create(), {"k3_vararray", "k3_refsource", "k3_reftarget", "k3_extension"});
    ExpectChain(InterfaceArray::CreateWeak(), {"k3_interfacearray", "k3_refsource", "k3_extension"});
    ExpectChain(PointerArray::Create(), {"k3_pointerarray", "k3_interfacearray", "k3_refsource"});
    ExpectChain(Make<Collection>(), {"k3_collection", "k3_interfacearray", "k3_refsource"});
    EXPECT_FALSE(VarMap::Create()->IsTypeOf("k3_vararray"));
    EXPECT_NE(Cast<InterfaceArray>(PointerArray::Create().Get()), nullptr);
    EXPECT_NE(Cast<InterfaceArray>(Make<Collection>().Get()), nullptr);
    EXPECT_EQ(Cast<PointerArray>(static_cast<Interface*>(Make<Collection>().Get())), nullptr);
}

}  // namespace
}  // namespace qn
