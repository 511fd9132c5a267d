#include "tool/occurrence_walk.h"

#include "frame/host/api.h"
#include "frame/host/importer.h"
#include "tests/tool/parts_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using qn::test::AssemblyBuilder;
using testing::ElementsAre;
namespace Prop = qn::graph::Prop;

/// An assembly whose root only stands around a car with two wheels.
struct CarInContainer {
    CarInContainer() : made(AssemblyBuilder("container").Child("car").Under("car", "wheel", 2).Shape()) {
        qn::Var metadata;
        metadata.At(qn::kFileGroup).At(qn::kFileContainer) = qn::Var(true);
        made.assembly.Root()->SetProperty(Prop::kMetadata, metadata);
    }
    void Rename(std::initializer_list<qn::graph::Instance*> path, const wchar_t* name) {
        qn::graph::Selector selector;
        for (qn::graph::Instance* instance : path)
            selector.AppendPathElement(instance);
        selector.SetProperty(Prop::kName, qn::Var(name));
        made.assembly.At("wheel", 1)->AddSelector(selector);
    }
    std::vector<std::string> Names() {
        const tool::Structure structure = tool::ReadStructure(*made.scene, *qn::api->CreateContext(0, 0));
        std::vector<std::string> names;
        tool::OccurrenceWalk(structure).Run([&](const tool::Occurrence& occurrence) {
            names.emplace_back(occurrence.name);
            return true;
        });
        return names;
    }
    MadeStructure made;
};

TEST(OccurrenceWalk, LeavesOutWhatStandsAroundTheRoots) {
    EXPECT_THAT(CarInContainer().Names(), ElementsAre("", "", ""));
}

TEST(OccurrenceWalk, MatchesPathsThatBeginWithTheContainersUse) {
    CarInContainer car;
    const auto& assembly = car.made.assembly;
    car.Rename({assembly.RootInstance(), assembly.At("car"), assembly.At("wheel", 1)}, L"right");
    EXPECT_THAT(car.Names(), ElementsAre("", "", "right"));
}

TEST(OccurrenceWalk, MatchesPathsThatBeginWithARoot) {
    CarInContainer car;
    const auto& assembly = car.made.assembly;
    car.Rename({assembly.At("car"), assembly.At("wheel", 1)}, L"right");
    EXPECT_THAT(car.Names(), ElementsAre("", "", "right"));
}

}  // namespace
}  // namespace assembly::tests
