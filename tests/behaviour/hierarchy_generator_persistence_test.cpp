#include "construction/hierarchy_generator.h"
#include "engine/stream/scene_file.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/support/assembly.h"
#include "tests/support/failing_stream.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr int kRootChunk = 0x1000;

Counted<HierarchyGenerator> NewGenerator() {
    return CreateAs<HierarchyGenerator>(ClassKey::kHierarchyGenerator);
}

/// A definition `car` with two uses of `wheel`, outside of any table.
Counted<Reference> FreeCar() {
    const auto car = NewUse(L"car"), wheel = NewUse(L"wheel");
    car->GetReference()->AddChild(wheel.Get());
    car->GetReference()->AddChild(wheel->GetReference()->CreateInstance().Get());
    return Counted<Reference>(car->GetReference());
}

struct Stage {
    ResultEnum Generate(Context* with) const { return generator->Generate(node, with); }
    ResultEnum Generate() const { return Generate(context.Get()); }

    Counted<HierarchyGenerator> generator = NewGenerator();
    Counted<RecordingContext> context = MakeContext();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, L"node");
};

TEST(GeneratorPersistence, WritesParametersAndMetadata) {
    const auto generator = NewGenerator(), loaded = NewGenerator();
    generator->SetParamVar(7, Var(L"value"));
    generator->SetMetaValue(Var(L"key"), Var(1));
    const auto tape = TapeOf(*generator);
    EXPECT_EQ(loaded->Load(tape.Get(), MakeContext().Get()), ResultEnum::kSuccess);
    EXPECT_EQ(loaded->GetParamVar(7), Var(L"value"));
    EXPECT_EQ(Var(loaded->GetMetadata(false)), MapOf({{Var(L"key"), Var(1)}}));
}

TEST(GeneratorPersistence, WritesNothingBesideItsBase) {
    const auto generator = NewGenerator();
    EXPECT_TRUE(TapeOf(*generator)->OwnIds().empty());
    const auto car = FreeCar();
    Feed(*generator, kRootChunk, car.Get());
    const auto base = Make<ChunkTape>();
    EXPECT_EQ(generator->Generator::Save(base.Get(), MakeContext().Get()), ResultEnum::kSuccess);
    EXPECT_EQ(TapeOf(*generator)->OwnIds(), base->OwnIds());
}

TEST(GeneratorPersistence, WritesNothingAtAllOnceDisabled) {
    const auto generator = NewGenerator();
    const auto car = FreeCar();
    generator->SetParamVar(7, Var(L"value"));
    generator->SetMetaValue(Var(L"key"), Var(1));
    Feed(*generator, kRootChunk, car.Get());
    generator->DisableSave();
    const auto stream = Make<FailingStream>();
    EXPECT_EQ(generator->Save(stream.Get(), MakeContext().Get()), ResultEnum::kSuccess);
    EXPECT_TRUE(stream->Log().empty());
}

TEST(GeneratorPersistence, SucceedsOnceDisabledOnAStreamThatFails) {
    const auto generator = NewGenerator();
    generator->SetParamVar(7, Var(L"value"));
    generator->DisableSave();
    const auto stream = Make<FailingStream>();
    stream->FailBeginChunk(1);
    stream->FailWrite(1);
    stream->FailObject(1);
    EXPECT_EQ(generator->Save(stream.Get(), MakeContext().Get()), ResultEnum::kSuccess);
}

TEST(GeneratorPersistence, PassesAFailureOn) {
    const auto generator = NewGenerator();
    const auto plain = NewReference();
    const auto results = [](ReferenceSource& source) {
        source.SetParamVar(7, Var(L"value"));
        source.SetMetaValue(Var(L"key"), Var(1));
        const auto stream = Make<FailingStream>();
        stream->FailWrite(1);
        stream->FailObject(1);
        return source.Save(stream.Get(), MakeContext().Get());
    };
    EXPECT_NE(results(*generator), ResultEnum::kSuccess);
    EXPECT_EQ(results(*generator), results(*plain)) << "the answer of the base";
}

TEST(GeneratorPersistence, TakesADefinitionAsItsRoot) {
    const Stage s;
    const auto car = FreeCar();
    EXPECT_EQ(Feed(*s.generator, kRootChunk, car.Get()), ResultEnum::kSuccess);
    EXPECT_EQ(s.generator->GetRootReference(), car.Get());
    EXPECT_EQ(s.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(Outline(*s.node), "car(wheel wheel)");
    EXPECT_EQ(DefinitionOf(*s.node), car.Get());
}

TEST(GeneratorPersistence, EntersTheDefinitionInANewTable) {
    const Stage s;
    const auto car = FreeCar();
    Feed(*s.generator, kRootChunk, car.Get());
    LookupTable* table = car->GetLookupTable();
    ASSERT_TRUE(table) << "the generator keeps it alive";
    EXPECT_EQ(car->GetProperty(Prop::kLocalId, 0), Var(L"e1"));
    EXPECT_EQ(table->FindReferenceById(L"e1"), car);
    EXPECT_EQ(table->FindInstanceById(L"n1"), car->GetChild(0));
    EXPECT_EQ(table->FindInstanceById(L"n2"), car->GetChild(1));
    EXPECT_FALSE(table->GetContext());
}

TEST(GeneratorPersistence, StartsWithAFreshUseOfTheDefinition) {
    const Stage s;
    const auto car = FreeCar();
    Feed(*s.generator, kRootChunk, car.Get());
    s.Generate();
    EXPECT_EQ(ShownBy(*s.node)->GetProperty(Prop::kLocalId, 0), Var(L"n3"));
    EXPECT_EQ(car->GetLookupTable()->FindInstanceById(L"n3").Get(), ShownBy(*s.node));
    EXPECT_FALSE(ShownBy(*s.node)->GetParentReference());
}

TEST(GeneratorPersistence, MergesDefinitionsOfOneServerId) {
    const Stage s;
    const auto car = FreeCar();
    const auto twin = NewUse(L"wheel");
    car->GetChild(0)->GetReference()->SetProperty(Prop::kBsId, Var(L"server"));
    twin->GetReference()->SetProperty(Prop::kBsId, Var(L"server"));
    car->AddChild(twin.Get());
    Feed(*s.generator, kRootChunk, car.Get());
    EXPECT_EQ(twin->GetReference(), car->GetChild(0)->GetReference());
}

TEST(GeneratorPersistence, GoesOverToTheDefinitionThatItReads) {
    const Stage s;
    const Assembly boat = AssemblyBuilder("boat").Child("sail").Build();
    const auto car = FreeCar();
    s.generator->SetSelector(boat.Path({"boat"}));
    s.Generate();
    Feed(*s.generator, kRootChunk, car.Get());
    EXPECT_NE(car->GetLookupTable(), boat.Table());
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "car(wheel wheel)");
}

TEST(GeneratorPersistence, KeepsItsContextForTheDefinitionThatItReads) {
    const Stage s;
    const Assembly boat = AssemblyBuilder("boat").Build();
    const auto car = FreeCar();
    const auto second = MakeContext();
    s.generator->SetSelector(boat.Path({"boat"}));
    s.Generate();
    Feed(*s.generator, kRootChunk, car.Get());
    s.Generate(second.Get());
    EXPECT_EQ(car->GetLookupTable()->GetContext(), s.context.Get());
}

TEST(GeneratorPersistence, PassesOverWhatIsNoDefinition) {
    const Stage s;
    const auto use = NewUse(L"use");
    for (Interface* object : {static_cast<Interface*>(nullptr), static_cast<Interface*>(use.Get()),
                              static_cast<Interface*>(s.scene.Get())}) {
        EXPECT_EQ(Feed(*s.generator, kRootChunk, object), ResultEnum::kSuccess);
        EXPECT_FALSE(s.generator->GetRootReference());
        EXPECT_EQ(s.Generate(), ResultEnum::kSuccess);
        EXPECT_EQ(Outline(*s.node), "node") << "it is still clean";
    }
}

TEST(GeneratorPersistence, KeepsItsRootWhereAChunkHoldsNoDefinition) {
    const Stage s;
    const auto car = FreeCar();
    Feed(*s.generator, kRootChunk, car.Get());
    Feed(*s.generator, kRootChunk, nullptr);
    EXPECT_EQ(s.generator->GetRootReference(), car.Get());
    s.Generate();
    EXPECT_EQ(Outline(*s.node), "car(wheel wheel)");
}

TEST(GeneratorPersistence, LeavesOtherChunksToItsBase) {
    const Stage s;
    const auto car = FreeCar();
    for (const int id : {0x0fff, 0x1001, 0x1002}) {
        EXPECT_EQ(Feed(*s.generator, id, car.Get()), ResultEnum::kSuccess) << "unknown chunks are skipped";
        EXPECT_FALSE(s.generator->GetRootReference()) << id;
    }
}

TEST(GeneratorPersistence, ComesBackWithItsNodeFromAFile) {
    const Stage s;
    const Assembly car = AssemblyBuilder("car").Child("axle", 2).Under("axle", "wheel", 2).Build();
    s.generator->SetSelector(car.Path({"car"}));
    k3::Generator::Attach(s.node, s.generator.Get());
    s.Generate();
    const std::string bytes = SaveSceneToBytes(*s.scene, *s.context);
    ASSERT_FALSE(bytes.empty());

    const auto loaded = Make<k3::Scene>();
    ASSERT_TRUE(LoadSceneFromBytes(bytes, L"test", *loaded, *s.context));
    k3::Node* node = loaded->GetFirstChild();
    ASSERT_TRUE(node);
    auto* generator = Cast<HierarchyGenerator>(k3::Generator::Get(node));
    ASSERT_TRUE(generator);
    EXPECT_TRUE(generator->GetRootReference());
    EXPECT_EQ(generator->Generate(node, s.context.Get()), ResultEnum::kSuccess);
    EXPECT_EQ(Outline(*node), "car(axle(wheel wheel) axle(wheel wheel))");
}

}  // namespace
}  // namespace qn::test
