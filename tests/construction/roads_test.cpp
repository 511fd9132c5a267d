// Roads through several classes: scene to hierarchy and back, file to scene.

#include "engine/stream/scene_file.h"
#include "tests/construction/construction_support.h"

namespace qn::test {
namespace {

using namespace qn::graph;

/// What two trees are compared by, one line for each node, parents first.
std::vector<std::string> Describe(const k3::Node& root) {
    std::vector<std::string> lines;
    std::vector<const k3::Node*> pending{&root};
    while (!pending.empty()) {
        const k3::Node& node = *pending.back();
        pending.pop_back();
        lines.push_back(node.GetName().ToUtf8() + " at " + std::to_string(ShiftOf(node)) + " shows " +
                        std::to_string(reinterpret_cast<std::uintptr_t>(node.GetObject())) + " is " +
                        Utf8(node.GetParamVar(Param::kBsId)));
        for (int i = node.GetChildCount() - 1; i >= 0; --i)
            pending.push_back(node.GetChildAt(i));
    }
    return lines;
}

/// The nodes that the factory makes, in a scene of their own, from the hierarchy that it built from `top`.
struct Again {
    explicit Again(k3::Node& top) {
        instance = Factory()->CreateInstanceInTable(&top, table.Get());
        Selector selector;
        selector.AppendPathElement(instance.Get());
        node = scene->CreateEmptyNode(0, 0, 0);
        Factory()->GenerateNodes(selector, node);
    }
    Counted<LookupTable> table = Factory()->CreateLookupTable();
    Counted<Instance> instance;
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* node = nullptr;
};

AssemblyShape CarShape() {
    return AssemblyBuilder("car")
        .Child("chassis")
        .Child("wheel", 4)
        .Under("wheel", "tyre")
        .Under("wheel", "bolt", 5)
        .Shape();
}

TEST(SceneToHierarchyAndBack, GivesTheSameNodes) {
    const auto scene = Make<k3::Scene>();
    k3::Node* const top = BuildNodes(CarShape(), *scene);
    EXPECT_EQ(Describe(*Again(*top).node), Describe(*top));
}

TEST(SceneToHierarchyAndBack, KeepsServerIdsBelowTheTop) {
    const auto scene = Make<k3::Scene>();
    k3::Node* const top = BuildNodes(CarShape(), *scene);
    top->GetLastChild()->SetParamVar(Param::kBsId, Var(L"s1:1"));
    top->GetLastChild()->GetFirstChild()->SetParamVar(Param::kBsId, Var(L"s1:2"));
    EXPECT_EQ(Describe(*Again(*top).node), Describe(*top));
}

TEST(SceneToHierarchyAndBack, KeepsAChangeOfOneOfTwoNodesOfAnInstance) {
    const auto car = AssemblyBuilder("car").Child("front").Child("rear").Under("front", "wheel").Build();
    car.Ref("rear")->AddChild(car.At("wheel"));
    const auto scene = Make<k3::Scene>();
    k3::Node* const top = scene->CreateEmptyNode(0, 0, 0);
    Factory()->GenerateNodes(car.Path({"car"}), top);
    top->GetLastChild()->GetFirstChild()->SetName(L"spare wheel");
    Cast<LookupTableImpl>(car.Table())->nodeToInstance.Clear();

    Factory()->CreateInstanceInTable(top, car.Table());
    k3::Node* const again = scene->CreateEmptyNode(0, 0, 0);
    Factory()->GenerateNodes(car.Path({"car"}), again);

    EXPECT_EQ(TreeOf(*again), "car(front(wheel),rear(spare wheel))");
}

TEST(SceneToHierarchyAndBack, WorksOnTenThousandLevels) {
    const auto scene = Make<k3::Scene>();
    k3::Node* const top = BuildNodes(DeepShape(10'000), *scene);
    EXPECT_EQ(Describe(*Again(*top).node), Describe(*top));
}

TEST(SceneToHierarchyAndBack, WorksWithAHundredThousandChildren) {
    const auto scene = Make<k3::Scene>();
    k3::Node* const top = BuildNodes(FlatShape(100'001), *scene);
    EXPECT_EQ(Describe(*Again(*top).node), Describe(*top));
}

TEST(HierarchyToSceneAndBack, GivesTheSameDefinitions) {
    const auto car = AssemblyBuilder("car").Child("chassis").Child("wheel", 2).Under("wheel", "tyre").Build();
    const auto scene = Make<k3::Scene>();
    k3::Node* const node = scene->CreateEmptyNode(0, 0, 0);
    Factory()->GenerateNodes(car.Path({"car"}), node);

    const auto instance = Factory()->CreateInstanceInTable(node, car.Table());

    EXPECT_EQ(instance, car.RootInstance());
    EXPECT_EQ(TreeOf(*car.Root()), "car(chassis,wheel(tyre),wheel(tyre))");
    EXPECT_EQ(car.Ref("wheel")->GetChildCount(), 1);
}

TEST(TableOfAScene, RebuildsWithTheSameNumberOfNodes) {
    const auto scene = Make<k3::Scene>();
    BuildNodes(CarShape(), *scene);
    const auto context = MakeContext();
    const auto table =
        CountedCast<LookupTableImpl>(Factory()->CreateLookupTableForScene(scene.Get(), context.Get()));
    const std::size_t nodes = table->nodeToInstance.Size();
    table->Rebuild();
    EXPECT_EQ(table->nodeToInstance.Size(), nodes);
}

/// A stored scene whose only node has a generator.
std::string StoredCar(Context& context, bool generated) {
    const Assembly car(CarShape());
    const auto scene = Make<k3::Scene>();
    k3::Node* const node = scene->CreateEmptyNode(0, 0, 0);
    node->SetName(L"car");
    const auto generator = Make<HierarchyGeneratorImpl>();
    generator->SetSelector(car.Path({"car"}));
    if (generated) generator->Generate(node, &context);
    k3::Generator::Attach(node, generator.Get());
    return SaveSceneToBytes(*scene, context);
}

std::string StoredAgain(const std::string& bytes, Context& context) {
    const auto scene = Make<k3::Scene>();
    EXPECT_TRUE(LoadSceneFromBytes(bytes, L"car.qn", *scene, context));
    return SaveSceneToBytes(*scene, context);
}

TEST(GeneratorInAFile, MakesTheSameNodesAfterALoad) {
    const auto context = MakeContext();
    const auto scene = Make<k3::Scene>();
    ASSERT_TRUE(LoadSceneFromBytes(StoredCar(*context, true), L"car.qn", *scene, *context));
    k3::Node* const node = scene->GetFirstChild();
    ASSERT_TRUE(k3::Generator::Get(node));

    k3::Generator::Get(node)->Generate(node, context.Get());

    const auto expected = Make<k3::Scene>();
    EXPECT_EQ(TreeOf(*node), TreeOf(*BuildNodes(CarShape(), *expected)));
}

TEST(GeneratorInAFile, IsStoredTheSameAfterALoad) {
    const auto context = MakeContext();
    const std::string bytes = StoredCar(*context, false);
    EXPECT_TRUE(StoredAgain(bytes, *context) == bytes);
}

/// The first save leaves the local id of the node's own instance out, so the second finds none.
TEST(GeneratorInAFile, IsStoredTheSameFromTheSecondSaveOnOnceItGenerated) {
    const auto context = MakeContext();
    const std::string bytes = StoredAgain(StoredCar(*context, true), *context);
    EXPECT_TRUE(StoredAgain(bytes, *context) == bytes);
}

TEST(GeneratorInAFile, LeavesItsNodesToTheFileOnceSavingIsDisabled) {
    const Assembly car(CarShape());
    const auto context = MakeContext();
    const auto scene = Make<k3::Scene>();
    k3::Node* const node = scene->CreateEmptyNode(0, 0, 0);
    const auto generator = Make<HierarchyGeneratorImpl>();
    generator->SetSelector(car.Path({"car"}));
    k3::Generator::Attach(node, generator.Get());
    generator->Generate(node, context.Get());
    generator->DisableSave();

    const auto loaded = Make<k3::Scene>();
    ASSERT_TRUE(LoadSceneFromBytes(SaveSceneToBytes(*scene, *context), L"car.qn", *loaded, *context));

    EXPECT_EQ(TreeOf(*loaded->GetFirstChild()), TreeOf(*node));
    EXPECT_EQ(k3::Generator::Get(loaded->GetFirstChild())->GetGeneratedRoot(), nullptr);
}

}  // namespace
}  // namespace qn::test
