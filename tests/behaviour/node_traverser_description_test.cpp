#include "frame/host/object3d.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Var Metadata(const wchar_t* note) {
    return MapOf({{Var(L"note"), Var(note)}});
}

/// A node whose parameter 0x94 is a description: the outer map, in it at 0 that of the reference, in that at
/// 1 the source.
struct Described : Stage {
    Described() {
        node->SetParamVar(Param::kInstance, outer);
        outer.At(0) = inner;
    }
    Extension& Inner() const { return *inner.ToMap(); }
    /// Names the source, an object or a map.
    void From(const Var& source) { inner.At(1) = source; }

    Var outer = MapOf({{Var(L"unused"), Var(1)}});
    Var inner = MapOf({{Var(L"unused"), Var(1)}});
    Counted<k3::Object3D> object = Make<k3::Object3D>();
    k3::Node* node = Node(L"node", Node(L"top"));
};

TEST(NodeTraverserDescription, MakesAnInstanceOfAReferenceInTheTable) {
    Described d;
    d.From(Var(d.object));
    const auto made = d.InstanceOf(d.node);
    ASSERT_TRUE(made);
    ASSERT_TRUE(made->GetReference());
    EXPECT_EQ(made->GetLookupTable(), d.table.Get());
    EXPECT_TRUE(d.Fields().instances.count(made));
    EXPECT_EQ(d.table->FindInstanceById(IdOf(made.Get())).Get(), made.Get());
    EXPECT_EQ(IdOf(made->GetReference()), L"e1");
}

TEST(NodeTraverserDescription, NamesTheReferenceByTheServerIdOfTheSource) {
    Described d;
    d.object->SetParamVar(Param::kBsId, Var(L"s1:part"));
    d.From(Var(d.object));
    const auto made = d.InstanceOf(d.node);
    EXPECT_EQ(made->GetReference(), d.table->FindReferenceByBsId(L"s1:part").Get());
}

TEST(NodeTraverserDescription, FindsTheReferenceOfTheServerIdOfTheSource) {
    Described d;
    const auto known = d.table->GetOrCreateBsReference(L"part", L"s1:part");
    d.object->SetParamVar(Param::kBsId, Var(L"s1:part"));
    d.From(Var(d.object));
    EXPECT_EQ(d.InstanceOf(d.node)->GetReference(), known.Get());
}

TEST(NodeTraverserDescription, CopiesTheReferenceWhereTheSourceIsAMap) {
    Described d;
    const auto known = d.table->GetOrCreateBsReference(L"part", L"s1:part");
    known->SetProperty(Prop::kText, Var(L"text"));
    const Var source = MapOf({{Var(L"a"), Var(1)}});
    source.ToMap()->SetParamVar(Param::kBsId, Var(L"s1:part"));
    d.From(source);
    Reference* made = d.InstanceOf(d.node)->GetReference();
    EXPECT_NE(made, known.Get());
    EXPECT_EQ(made->GetProperty(Prop::kText, 0), Var(L"text"));
    EXPECT_EQ(made->GetProperty(Prop::kOrigin, 0), Var(L"s1:part"));
    EXPECT_TRUE(made->GetProperty(Prop::kBsId, 0).IsEmpty());
    EXPECT_EQ(d.table->FindReferenceByBsId(L"s1:part").Get(), known.Get());
}

TEST(NodeTraverserDescription, NamesTheReferenceByEntry4) {
    Described d;
    d.From(Var(d.object));
    d.inner.At(4) = Var(L"Part");
    const auto made = d.InstanceOf(d.node);
    EXPECT_EQ(made->GetReference()->GetProperty(Prop::kName, 0), Var(L"Part"));
    EXPECT_TRUE(made->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(NodeTraverserDescription, GivesTheReferenceTheMetadataOfTheSource) {
    Described d;
    d.object->SetMetadata(Metadata(L"source").ToMap());
    d.From(Var(d.object));
    const auto made = d.InstanceOf(d.node);
    EXPECT_EQ(made->GetReference()->GetProperty(Prop::kMetadata, 0), Metadata(L"source"));
    EXPECT_EQ(made->GetMetadata(false), nullptr);
}

TEST(NodeTraverserDescription, GivesTheInstanceServerIdAndMetadataOfEntryZero) {
    Described d;
    d.From(Var(d.object));
    d.Inner().SetParamVar(Param::kBsId, Var(L"s1:use"));
    d.Inner().SetMetadata(Metadata(L"use").ToMap());
    const auto made = d.InstanceOf(d.node);
    EXPECT_EQ(made->GetProperty(Prop::kBsId, 0), Var(L"s1:use"));
    EXPECT_EQ(d.table->FindInstanceByBsId(L"s1:use").Get(), made.Get());
    EXPECT_EQ(made->GetProperty(Prop::kMetadata, 0), Metadata(L"use"));
    EXPECT_EQ(made->GetReference()->GetMetadata(false), nullptr);
}

TEST(NodeTraverserDescription, FindsTheInstanceOfTheServerIdOfEntryZero) {
    Described d;
    const auto known = d.table->GetOrCreateReference(L"other")->CreateInstanceWithBsId(L"use", L"s1:use");
    d.From(Var(d.object));
    d.Inner().SetParamVar(Param::kBsId, Var(L"s1:use"));
    EXPECT_EQ(d.InstanceOf(d.node).Get(), known.Get());
}

TEST(NodeTraverserDescription, FillsTheInstanceFromTheOuterMap) {
    Described d;
    d.From(Var(d.object));
    const struct {
        int key, property;
        Var value;
    } rows[] = {{4, 0x01, Var(L"Use")},   {6, 0x02, Var(Shift(1))}, {7, 0x03, Var(Shift(2))},
                {8, 0x04, Var(Shift(3))}, {9, 0x06, Var(9)},        {0x0b, 0x07, Var(L"b")},
                {0x0c, 0x08, Var(L"c")},  {0x0a, 0x09, Var(L"a")},  {1, 0x0a, Var(L"origin")}};
    for (const auto& [key, property, value] : rows)
        d.outer.At(key) = value;
    const auto made = d.InstanceOf(d.node);
    for (const auto& [key, property, value] : rows)
        EXPECT_EQ(made->GetProperty(PropEnum{property}, 0), value) << key;
}

TEST(NodeTraverserDescription, DoesNotFillTheInstanceFromTheNode) {
    Described d;
    d.From(Var(d.object));
    d.node->SetText(L"text");
    const auto made = d.InstanceOf(d.node);
    EXPECT_TRUE(made->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_TRUE(made->GetProperty(Prop::kText, 0).IsEmpty());
    EXPECT_FALSE(SavesProperty(*made, Prop::kOpacity));
}

TEST(NodeTraverserDescription, TakesTheShortValueOfTheNodeIfItIsNotZero) {
    Described d;
    d.From(Var(d.object));
    d.node->SetShortValue(7);
    EXPECT_EQ(d.InstanceOf(d.node)->GetProperty(Prop::kShortValue, 0), Var(7));
    Described plain;
    plain.From(Var(plain.object));
    EXPECT_TRUE(plain.InstanceOf(plain.node)->GetProperty(Prop::kShortValue, 0).IsEmpty());
}

TEST(NodeTraverserDescription, StaysOnTheNodeIfThereIsATable) {
    Described d;
    d.From(Var(d.object));
    d.InstanceOf(d.node);
    EXPECT_EQ(d.node->GetParamVar(Param::kInstance).ToMap(), d.outer.ToMap());
}

TEST(NodeTraverserDescription, GivesWayToTheInstanceWithoutTable) {
    Described d;
    d.object->SetParamVar(Param::kBsId, Var(L"s1:part"));
    d.From(Var(d.object));
    d.inner.At(4) = Var(L"Part");
    d.outer.At(4) = Var(L"Use");
    const auto made = d.FreeInstanceOf(d.node);
    ASSERT_TRUE(made);
    EXPECT_EQ(Cast<Instance>(d.node->GetParamVar(Param::kInstance)), made.Get());
    EXPECT_EQ(made->GetProperty(Prop::kName, 0), Var(L"Use"));
    EXPECT_EQ(made->GetReference()->GetProperty(Prop::kName, 0), Var(L"Part"));
    EXPECT_EQ(made->GetLookupTable(), nullptr);
    EXPECT_TRUE(made->GetProperty(Prop::kLocalId, 0).IsEmpty());
}

TEST(NodeTraverserDescription, WithoutReferenceIsNone) {
    Described d;
    for (const Var& inner : {Var(), Var(L"text"), Var(d.object), ArrayOf({Var(1)})}) {
        Described other;
        other.outer.At(0) = inner;
        other.outer.At(4) = Var(L"Use");
        const auto made = other.InstanceOf(other.node);
        ASSERT_TRUE(made);
        EXPECT_EQ(made->GetProperty(Prop::kName, 0), Var(L"node")) << "made as for a node without one";
    }
}

TEST(NodeTraverserDescription, WithoutSourceStillMakesAnInstance) {
    const Described d;
    const auto made = d.InstanceOf(d.node);
    ASSERT_TRUE(made);
    ASSERT_TRUE(made->GetReference());
    EXPECT_TRUE(made->GetReference()->GetProperty(Prop::kBsId, 0).IsEmpty());
}

TEST(NodeTraverserDescription, GivesANewReferenceTheObjectOfTheNode) {
    Described d;
    d.From(Var(d.object));
    d.node->SetObject(d.object.Get());
    EXPECT_EQ(Cast<k3::Object3D>(d.InstanceOf(d.node)->GetReference()->GetTarget()), d.object.Get());
}

TEST(NodeTraverserDescription, IsNoneWhereTheServerIdOfEntryZeroNeedsATable) {
    Described d;
    d.From(Var(d.object));
    d.inner.At(4) = Var(L"Part");
    d.outer.At(4) = Var(L"Use");
    d.Inner().SetParamVar(Param::kBsId, Var(L"s1:use"));
    const auto made = d.FreeInstanceOf(d.node);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->GetProperty(Prop::kName, 0), Var(L"node")) << "made as for a node without one";
    EXPECT_TRUE(made->GetProperty(Prop::kBsId, 0).IsEmpty());
    EXPECT_EQ(Cast<Instance>(d.node->GetParamVar(Param::kInstance)), made.Get());
}

}  // namespace
}  // namespace qn::test
