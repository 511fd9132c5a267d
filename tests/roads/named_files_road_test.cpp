// Definitions that name files, through the module's own loading with its own generator.

#include "construction/hierarchy_generator.h"
#include "engine/runtime/context_impl.h"
#include "engine/scene/generated_content.h"
#include "engine/stream/scene_file.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"
#include "tests/support/assembly.h"
#include "tests/support/file_assembly.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using graph::HierarchyGenerator;
using graph::Instance;
using graph::Reference;
namespace Prop = graph::Prop;

class NamedFilesRoad : public testing::Test {
protected:
    /// A scene file in which a generator stands for a car with a door and, in it, a lock.
    String WriteCar() {
        const auto car = AssemblyBuilder("car").Child("door", 2).Under("door", "lock").Build();
        const auto scene = Make<k3::Scene>();
        const auto generator = CreateAs<HierarchyGenerator>(graph::ClassKey::kHierarchyGenerator);
        graph::Selector selector;
        selector.AppendPathElement(car.RootInstance());
        generator->SetSelector(selector);
        k3::Generator::Attach(scene->CreateEmptyNode(0, 0, 0), generator.Get());
        return folder_.Write("car.qn", SaveSceneToBytes(*scene, *context_));
    }
    /// Loads "top.qn", whose definition "vehicle" names a file, into the scene.
    void LoadTop(const String& file, int uses) {
        const String path = folder_.Write("top.qn", FileAssembly("top", {{"vehicle", file.ToUtf8(), uses}}));
        ASSERT_TRUE(LoadSceneFile(path, *scene_, *context_));
        top_ = scene_->GetFirstChild();
        generator_ = Cast<HierarchyGenerator>(k3::Generator::Get(top_));
        ASSERT_TRUE(generator_);
    }
    Counted<Reference> Vehicle() const {
        const auto use = generator_->GetRootReference()->GetChild(0);
        return Counted<Reference>(use->GetReference());
    }
    static std::string NameOf(const Reference& reference) {
        return reference.GetProperty(Prop::kName, 0).ToText().ToUtf8();
    }
    static int CountBelow(k3::Node& node) {
        int count = 0;
        node.Visit(
            0,
            [](k3::Node*, ParamWord counter) {
                ++*reinterpret_cast<int*>(counter);
                return true;
            },
            reinterpret_cast<ParamWord>(&count));
        return count - 1;
    }
    /// From now on each file that is read generates its own nodes before anybody sees it.
    void GenerateWhatIsRead() {
        context_->SetImportFunction([this](k3::Node& top) {
            ++imports_;
            k3::Generator::Get(&top)->Generate(&top, context_.Get());
        });
    }

    TempFolder folder_;
    Counted<ContextImpl> context_ = Make<ContextImpl>();
    Counted<k3::Scene> scene_ = Make<k3::Scene>();
    k3::Node* top_ = nullptr;
    HierarchyGenerator* generator_ = nullptr;
    int imports_ = 0;
};

TEST_F(NamedFilesRoad, GenerationShowsTheFileBelowEachUseAndReadsItOnce) {
    LoadTop(WriteCar(), 3);
    GenerateWhatIsRead();
    ASSERT_TRUE(Succeeded(generator_->Generate(top_, context_.Get())));
    EXPECT_EQ(imports_, 1);
    EXPECT_EQ(CountBelow(*top_), 3 * 5);
    EXPECT_EQ(NameOf(*Vehicle()), "car");
    EXPECT_TRUE(Vehicle()->GetTarget().IsEmpty()) << "the name is consumed";
    EXPECT_EQ(scene_->GetChildCount(), 1) << "the nodes of the file are gone again";
}

TEST_F(NamedFilesRoad, AFileWithATableOfItsOwnComesUnderTheIdOfItsDefinition) {
    LoadTop(WriteCar(), 1);
    const auto vehicle = Vehicle();
    const String id = vehicle->GetProperty(Prop::kLocalId, 0).ToText();
    GenerateWhatIsRead();
    vehicle->GetLookupTable()->SetSceneAndContext(scene_.Get(), context_.Get());
    vehicle->ReloadExternalTarget();
    EXPECT_EQ(Vehicle().Get(), vehicle.Get()) << "the definition itself is filled";
    ASSERT_EQ(vehicle->GetChildCount(), 2);
    const auto door = vehicle->GetChild(0);
    EXPECT_EQ(door->GetLookupTable(), vehicle->GetLookupTable());
    EXPECT_TRUE(door->GetProperty(Prop::kLocalId, 0).ToText().View().starts_with(id.View()));
    EXPECT_EQ(door->GetParentReference(), vehicle.Get());
    EXPECT_EQ(door->GetReference(), vehicle->GetChild(1)->GetReference()) << "what is shared stays shared";
}

TEST_F(NamedFilesRoad, AMissingFileLeavesANodeWithoutContentAndAMessage) {
    LoadTop(folder_.File("missing.qn"), 2);
    ASSERT_TRUE(Succeeded(generator_->Generate(top_, context_.Get())));
    EXPECT_EQ(CountBelow(*top_), 2);
    bool isTold = false;
    for (const auto& message : context_->GetMessages())
        isTold |=
            message.level == 3 && message.text.ToUtf8().ends_with("could not be loaded into the scene.");
    EXPECT_TRUE(isTold);
}

TEST_F(NamedFilesRoad, MissingNodesAreGeneratedWithoutOpeningFiles) {
    const String car = WriteCar();
    LoadTop(car, 2);
    GenerateWhatIsRead();
    EXPECT_EQ(k3::GenerateMissing(*scene_, context_.Get()), 1);
    EXPECT_EQ(imports_, 0);
    EXPECT_EQ(CountBelow(*top_), 2);
    EXPECT_EQ(Vehicle()->GetTarget(), Var(car)) << "the name stays";
}

}  // namespace
}  // namespace qn::test
