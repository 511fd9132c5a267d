// What a file says of single occurrences holds wherever the file is shown.

#include "engine/stream/scene_file.h"
#include "frame/entry.h"
#include "frame/host/api.h"
#include "tests/support/assembly.h"
#include "tests/support/file_assembly.h"
#include "tests/support/generated_scene.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

class ExternalOverrides : public testing::Test {
protected:
    /// A car with two doors and a lock in each, of which the second has a name of its own.
    void WriteCar(bool pathHasRoot) {
        const auto car = qn::test::AssemblyBuilder("car").Child("door", 2).Under("door", "lock").Build();
        qn::graph::Selector selector;
        if (pathHasRoot) selector.AppendPathElement(car.RootInstance());
        selector.AppendPathElement(car.At("door", 1));
        selector.AppendPathElement(car.At("lock"));
        selector.SetProperty(qn::graph::Prop::kName, qn::Var(L"special"));
        car.At("lock")->AddSelector(selector);
        const auto context = qn::api->CreateContext(0, 0);
        WriteAll(folder_.File("car.qn"), qn::SaveSceneToBytes(*qn::test::GeneratedScene(car), *context));
        WriteAll(folder_.File("park.qn"), qn::test::FileAssembly("park", {{"vehicle", "car.qn", 2}}));
    }
    static void ExpectSecondLocksNamed(const std::string& shown) {
        EXPECT_EQ(shown,
                  "park\n"
                  "├─ car \"vehicle.1\" (2 uses)\n│  ├─ door (2 uses)\n│  │  └─ lock\n│  └─ door (2 uses)\n"
                  "│     └─ lock \"special\"\n"
                  "└─ car \"vehicle.2\" (2 uses)\n   ├─ door (2 uses)\n   │  └─ lock\n   └─ door (2 uses)\n"
                  "      └─ lock \"special\"\n");
    }
    const qn::test::EntryModule module_{&K3DLLFunc};
    TemporaryFolder folder_;
};

TEST_F(ExternalOverrides, HoldInEachOccurrenceOfTheFile) {
    for (const bool pathHasRoot : {false, true}) {
        WriteCar(pathHasRoot);
        ExpectSecondLocksNamed(RunTool({"show", "--load", "all", folder_.File("park.qn")}).out);
    }
}

TEST_F(ExternalOverrides, HoldInAConvertedFile) {
    for (const bool pathHasRoot : {false, true}) {
        WriteCar(pathHasRoot);
        ASSERT_EQ(
            RunTool({"convert", "--load", "all", folder_.File("park.qn"), folder_.File("whole.qn")}).exitCode,
            0);
        ExpectSecondLocksNamed(RunTool({"show", folder_.File("whole.qn")}).out);
    }
}

}  // namespace
}  // namespace assembly::tests
