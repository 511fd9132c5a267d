#include "construction/hierarchy_generator_impl.h"

#include "engine/runtime/class_table.h"
#include "engine/stream/object_file.h"
#include "frame/host/api.h"
#include "graph/post_processing_instruction.h"
#include "tests/construction/construction_support.h"
#include "tests/support/failing_stream.h"

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using namespace qn::graph;

/// Says that it is a node, and is none.
class Impostor final : public Extension {
public:
    bool IsTypeOf(const char* name) const override { return EqualKeys(name, "k3_node"); }
};

/// A generator with car(wheel,wheel) for the top node of a scene.
struct Attached {
    Attached() { generator->SetSelector(car.Path({"car"})); }
    ResultEnum Generate(Context* given = nullptr) const { return generator->Generate(node, given); }
    LookupTableImpl& Table() const { return *Cast<LookupTableImpl>(car.Table()); }

    Assembly car = AssemblyBuilder("car").Child("wheel", 2).Build();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* node = scene->CreateEmptyNode(0, 0, 0);
    Counted<HierarchyGeneratorImpl> generator = Make<HierarchyGeneratorImpl>();
};

TEST(HierarchyGenerator, KnowsItsKeys) {
    const auto generator = Make<HierarchyGeneratorImpl>();
    EXPECT_STREQ(generator->GetInterfaceName(), "qn.graph.hierarchygenerator");
    for (const char* const key :
         {"QN.graph.hierarchygenerator", "qn.k3.generator", "k3_refsource", "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(generator->IsTypeOf(key)) << key;
    EXPECT_FALSE(generator->IsTypeOf("k3_node"));
}

TEST(HierarchyGenerator, CopiesFromGeneratorsOnly) {
    const auto generator = Make<HierarchyGeneratorImpl>();
    const auto other = Make<HierarchyGeneratorImpl>();
    other->SetParamVar(1, Var(7));
    EXPECT_EQ(generator->CopyFrom(other.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(generator->GetParamVar(1).ToInt(), 7);
    EXPECT_EQ(generator->CopyFrom(Make<ReferenceImpl>().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(generator->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

TEST(HierarchyGenerator, DoesNotCopyItsRoot) {
    const Attached attached;
    const auto copy = Make<HierarchyGeneratorImpl>();
    copy->CopyFrom(attached.generator.Get(), 0);
    EXPECT_EQ(copy->GetRootReference(), nullptr);
}

TEST(HierarchyGenerator, MakesOneNodeForEachOccurrence) {
    const Attached attached;
    EXPECT_EQ(attached.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(TreeOf(*attached.node), "car(wheel,wheel)");
    EXPECT_EQ(CarriedBy(*attached.node), attached.car.RootInstance());
    EXPECT_EQ(attached.generator->GetTargetNode(), attached.node);
}

TEST(HierarchyGenerator, RemovesTheChildrenThatWereThere) {
    const Attached attached;
    AddNode(*attached.node, "old");
    AddNode(*attached.node, "older");
    attached.Generate();
    EXPECT_EQ(TreeOf(*attached.node), "car(wheel,wheel)");
}

TEST(HierarchyGenerator, TakesRemovedChildrenOutOfLayers) {
    const Attached attached;
    k3::Layer* const layer = attached.scene->CreateLayer(L"layer");
    layer->AddNode(AddNode(*attached.node, "old"));
    attached.Generate();
    EXPECT_EQ(layer->GetMembers()->GetCount(), 0);
}

TEST(HierarchyGenerator, RefusesWhatIsNoNodeBeforeItAsksWhetherItIsClean) {
    const auto clean = Make<HierarchyGeneratorImpl>();
    EXPECT_EQ(clean->Generate(nullptr, nullptr), ResultEnum::kWrongClass);
    EXPECT_EQ(clean->Generate(Make<ReferenceImpl>().Get(), nullptr), ResultEnum::kWrongClass);
}

TEST(HierarchyGenerator, ChangesNothingForAWrongTarget) {
    const Attached attached;
    EXPECT_EQ(attached.generator->Generate(Make<ReferenceImpl>().Get(), nullptr), ResultEnum::kWrongClass);
    EXPECT_EQ(attached.generator->GetTargetNode(), nullptr);
    EXPECT_EQ(attached.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(attached.node->GetChildCount(), 2);
}

TEST(HierarchyGenerator, DoesNothingForWhatOnlyClaimsToBeANode) {
    const Attached attached;
    EXPECT_EQ(attached.generator->Generate(Make<Impostor>().Get(), nullptr), ResultEnum::kNothing);
    EXPECT_EQ(attached.generator->GetTargetNode(), nullptr);
    attached.Generate();
    EXPECT_EQ(attached.node->GetChildCount(), 2);
}

TEST(HierarchyGenerator, SucceedsForAnImpostorWhileItIsClean) {
    EXPECT_EQ(Make<HierarchyGeneratorImpl>()->Generate(Make<Impostor>().Get(), nullptr),
              ResultEnum::kSuccess);
}

TEST(HierarchyGenerator, LeavesTheChildrenAloneWhileItIsEmpty) {
    const auto scene = Make<k3::Scene>();
    k3::Node* const node = AddNode(*scene, "node");
    AddNode(*node, "child");
    EXPECT_EQ(Make<HierarchyGeneratorImpl>()->Generate(node, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(node->GetChildCount(), 1);
}

TEST(HierarchyGenerator, LeavesTheChildrenAloneTheSecondTime) {
    const Attached attached;
    attached.Generate();
    AddNode(*attached.node, "added");
    EXPECT_EQ(attached.Generate(), ResultEnum::kSuccess);
    EXPECT_EQ(attached.node->GetChildCount(), 3);
}

TEST(HierarchyGenerator, DoesNotRestoreChildrenThatWereRemoved) {
    const Attached attached;
    attached.Generate();
    attached.node->GetFirstChild()->Remove(0);
    attached.Generate();
    EXPECT_EQ(attached.node->GetChildCount(), 1);
}

TEST(HierarchyGenerator, GeneratesAgainAfterANewSelector) {
    const Attached attached;
    attached.Generate();
    attached.node->GetFirstChild()->Remove(0);
    attached.generator->SetSelector(attached.car.Path({"car"}));
    attached.Generate();
    EXPECT_EQ(attached.node->GetChildCount(), 2);
}

TEST(HierarchyGenerator, IgnoresASelectorWithoutDefinition) {
    const Attached attached;
    attached.generator->SetSelector(Selector());
    EXPECT_EQ(attached.generator->GetRootReference(), attached.car.Root());
}

TEST(HierarchyGenerator, BindsTheTableToSceneAndContext) {
    const Attached attached;
    const auto context = MakeContext();
    attached.Generate(context.Get());
    EXPECT_EQ(attached.Table().scene.Get(), attached.scene.Get());
    EXPECT_EQ(attached.Table().GetContext(), context.Get());
}

TEST(HierarchyGenerator, MakesAContextAndKeepsIt) {
    const Attached attached;
    attached.Generate();
    const Context* const made = attached.Table().GetContext();
    ASSERT_TRUE(made);
    attached.generator->SetSelector(attached.car.Path({"car"}));
    attached.Generate();
    EXPECT_EQ(attached.Table().GetContext(), made);
}

TEST(HierarchyGenerator, PrefersTheKeptContextToALaterOne) {
    const Attached attached;
    const auto first = MakeContext(), second = MakeContext();
    attached.Generate(first.Get());
    attached.generator->SetSelector(attached.car.Path({"car"}));
    attached.Generate(second.Get());
    EXPECT_EQ(attached.Table().GetContext(), first.Get());
}

TEST(HierarchyGenerator, TakesTheContextOfTheTableOfItsSelector) {
    const Attached attached;
    const auto tables = MakeContext(), given = MakeContext();
    attached.Table().SetSceneAndContext(nullptr, tables.Get());
    attached.generator->SetSelector(attached.car.Path({"car"}));
    attached.Generate(given.Get());
    EXPECT_EQ(attached.Table().GetContext(), tables.Get());
}

TEST(HierarchyGenerator, WorksWithoutATable) {
    const auto car = AssemblyBuilder("car").Child("wheel").WithoutTable().Build();
    const auto scene = Make<k3::Scene>();
    k3::Node* const node = scene->CreateEmptyNode(0, 0, 0);
    const auto generator = Make<HierarchyGeneratorImpl>();
    generator->SetSelector(car.Path({"car"}));
    EXPECT_EQ(generator->Generate(node, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(TreeOf(*node), "car(wheel)");
}

TEST(HierarchyGenerator, AppliesPendingBindingsAfterTheNodesExist) {
    const Attached attached;
    k3::Layer* const layer = attached.scene->CreateLayer(L"layer");
    attached.Table().layerMembers.At(layer).insert(Counted<Instance>(attached.car.At("wheel")));
    attached.Generate();
    ASSERT_TRUE(layer->GetMembers());
    EXPECT_EQ(layer->GetMembers()->Get(0), attached.node->GetFirstChild());
}

TEST(HierarchyGenerator, ForgetsATargetThatIsGone) {
    const auto generator = Make<HierarchyGeneratorImpl>();
    const auto car = AssemblyBuilder("car").WithoutTable().Build();
    generator->SetSelector(car.Path({"car"}));
    {
        const auto scene = Make<k3::Scene>();
        generator->Generate(scene->CreateEmptyNode(0, 0, 0), nullptr);
        EXPECT_TRUE(generator->GetTargetNode());
    }
    EXPECT_EQ(generator->GetTargetNode(), nullptr);
}

TEST(HierarchyGenerator, DoesNothingWithoutARoot) {
    const auto generator = Make<HierarchyGeneratorImpl>();
    generator->ResolveReferenceSelectors();
    generator->StoreReferenceSelectors();
    generator->RunReferenceInstructions();
    EXPECT_EQ(generator->GetRootReference(), nullptr);
    EXPECT_EQ(generator->GetGeneratedRoot(), nullptr);
}

TEST(HierarchyGenerator, StoresAndResolvesSelectorsBelowTheRoot) {
    const Attached attached;
    const auto stored = Make<PersistentSelectorImpl>();
    stored->path = {Weak<Instance>(attached.car.RootInstance()), Weak<Instance>(attached.car.At("wheel"))};
    attached.car.At("wheel")->SetProperty(Prop::kLink, Var(stored));

    attached.generator->StoreReferenceSelectors();
    EXPECT_EQ(stored->idPath.size(), 2);

    stored->path.clear();
    attached.generator->ResolveReferenceSelectors();
    ASSERT_EQ(stored->path.size(), 2u);
    EXPECT_EQ(stored->path[1].Get(), attached.car.At("wheel"));
    EXPECT_TRUE(stored->idPath.IsEmpty());
}

/// Writes down on which object it is run.
class Witness final : public Extension {
public:
    static inline Interface* target = nullptr;
    int Invoke(int, Params* arguments, Context*) override {
        target = arguments->GetParamObject(Param::kCallTarget);
        return 1;
    }
};

TEST(HierarchyGenerator, RunsTheStoredCallsOnItsNode) {
    AddEngineClass({"test.witness", &MakeOf<Witness>});
    const Attached attached;
    const auto call = attached.car.Ref("wheel")->AddInstruction();
    call->SetCommandKey(L"test.witness");
    call->SetMethodId(1);
    attached.Generate();
    attached.generator->RunReferenceInstructions();
    EXPECT_EQ(Witness::target, attached.node);
    Witness::target = nullptr;
}

TEST(HierarchyGenerator, WritesNothingAtAllOnceSavingIsDisabled) {
    const Attached attached;
    attached.generator->SetParamVar(1, Var(7));
    attached.generator->DisableSave();
    const auto stream = Make<FailingStream>();
    EXPECT_EQ(attached.generator->Save(stream.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_THAT(stream->Log(), testing::IsEmpty());
}

TEST(HierarchyGenerator, PassesOnThatTheBaseFailed) {
    const Attached attached;
    attached.generator->SetParamVar(1, Var(7));
    const auto stream = Make<FailingStream>();
    stream->FailObject(1);
    stream->FailBeginChunk(1);
    stream->FailWrite(1);
    EXPECT_NE(attached.generator->Save(stream.Get(), nullptr), ResultEnum::kSuccess);
}

TEST(HierarchyGenerator, LetsTheEngineWriteItsRoot) {
    const Attached attached;
    EXPECT_EQ(attached.generator->GetGeneratedRoot(), static_cast<Interface*>(attached.car.Root()));
}

TEST(HierarchyGenerator, HasNothingForTheEngineToWriteOnceSavingIsDisabled) {
    const Attached attached;
    attached.generator->DisableSave();
    EXPECT_EQ(attached.generator->GetGeneratedRoot(), nullptr);
}

/// The generator after a save and a load.
Counted<HierarchyGeneratorImpl> SavedAndLoaded(HierarchyGeneratorImpl& generator) {
    const auto context = MakeContext();
    const std::string bytes = SaveToBytes(generator, *context);
    return CountedCast<HierarchyGeneratorImpl>(LoadFromBytes(bytes, *context));
}

TEST(HierarchyGenerator, ComesBackWithItsRootInANewTable) {
    const Attached attached;
    const auto loaded = SavedAndLoaded(*attached.generator);
    ASSERT_TRUE(loaded);
    ASSERT_TRUE(loaded->GetRootReference());
    EXPECT_EQ(TreeOf(*loaded->GetRootReference()), "car(wheel,wheel)");
    EXPECT_TRUE(loaded->GetRootReference()->GetLookupTable());
    EXPECT_NE(loaded->GetRootReference()->GetLookupTable(), attached.car.Table());
}

TEST(HierarchyGenerator, KeepsSharedDefinitionsSharedThroughAFile) {
    const Attached attached;
    const auto loaded = SavedAndLoaded(*attached.generator);
    const Reference* const root = loaded->GetRootReference();
    EXPECT_EQ(root->GetChild(0)->GetReference(), root->GetChild(1)->GetReference());
}

TEST(HierarchyGenerator, IsStaleAfterALoad) {
    const Attached attached;
    const auto loaded = SavedAndLoaded(*attached.generator);
    const auto scene = Make<k3::Scene>();
    k3::Node* const node = scene->CreateEmptyNode(0, 0, 0);
    EXPECT_EQ(loaded->Generate(node, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(TreeOf(*node), "car(wheel,wheel)");
}

TEST(HierarchyGenerator, GivesNewLocalIdsAfterALoad) {
    const Attached attached;
    const auto loaded = SavedAndLoaded(*attached.generator);
    const Reference* const root = loaded->GetRootReference();
    EXPECT_EQ(Utf8(root->GetProperty(kLocalId, 0)), "e1");
    EXPECT_EQ(Utf8(root->GetChild(0)->GetProperty(kLocalId, 0)), "n1");
}

/// A stream whose every object chunk is the same object.
class ObjectStream final : public Stream {
public:
    explicit ObjectStream(Counted<Interface> object) : object_(std::move(object)) {}
    bool BeginChunk(unsigned) override { return false; }
    void EndChunk() override {}
    bool WriteData(const void*, int, int) override { return false; }
    bool WriteInt(int) override { return false; }
    bool WriteObjectChunk(Interface*, Context*, int) override { return false; }
    bool WriteObjectNumber(Interface*, Context*, bool) override { return false; }
    bool NextChunk() override { return false; }
    int GetChunkId() const override { return k3::Generator::kRootChunk; }
    int ReadData(void*, int, int) override { return 0; }
    bool ReadInt(int&) override { return false; }
    std::size_t Remaining() const override { return 0; }
    Counted<Interface> ReadObject(Context*) override { return object_; }
    Counted<Interface> ReadObjectNumber(Context*) override { return {}; }
    bool Fail(const String&) override { return false; }
    bool HasFailed() const override { return false; }

private:
    Counted<Interface> object_;
};

TEST(HierarchyGenerator, SkipsARootOfAnotherClass) {
    const auto generator = Make<HierarchyGeneratorImpl>();
    for (const Counted<Interface>& object : {Counted<Interface>(LooseInstance()), Counted<Interface>()}) {
        const auto stream = Make<ObjectStream>(object);
        EXPECT_EQ(generator->HandleChunk(0x1000, stream.Get(), nullptr), ResultEnum::kSuccess);
        EXPECT_EQ(generator->GetRootReference(), nullptr);
    }
}

TEST(HierarchyGenerator, ReplacesWhatItHadByTheRootThatItReads) {
    const Attached attached;
    const auto other = AssemblyBuilder("trailer").WithoutTable().Build();
    const auto stream = Make<ObjectStream>(Counted<Interface>(other.Root()));
    attached.generator->HandleChunk(0x1000, stream.Get(), nullptr);
    EXPECT_EQ(attached.generator->GetRootReference(), other.Root());
}

TEST(HierarchyGenerator, LeavesOtherChunksToTheBase) {
    const Attached attached;
    const auto stream = Make<ObjectStream>(Counted<Interface>(Make<ReferenceImpl>()));
    EXPECT_EQ(attached.generator->HandleChunk(0x1001, stream.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(attached.generator->GetRootReference(), attached.car.Root());
}

TEST(HierarchyGenerator, ComesBackEmptyWithoutARoot) {
    const auto loaded = SavedAndLoaded(*Make<HierarchyGeneratorImpl>());
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetRootReference(), nullptr);
}

}  // namespace
}  // namespace qn::test
