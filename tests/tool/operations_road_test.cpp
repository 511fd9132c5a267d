// Real files through three operations in a row: hierarchy with ids, check, hierarchy away again.

#include "engine/stream/scene_file.h"
#include "frame/entry.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/reference.h"
#include "tests/support/data_dir.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <sstream>

namespace assembly::tests {
namespace {

using qn::graph::Instance;
using qn::graph::Reference;
using qn::Param::kBsId;
using qn::Param::kExternalIds;
using qn::Param::kInstance;

constexpr int kUnreadable = 3, kMissing = 5;  // exit codes
constexpr const char* kGenerate = "generate_scene_instance_reference_hierarchy";
constexpr const char* kValidate = "validate_scene_hierarchy";
constexpr const char* kRemove = "remove_qfxml_hierarchy_cache";

/// A scene as the tool left it in a file.
class StoredScene {
public:
    explicit StoredScene(const std::string& file) {
        context_->SetOption(qn::kUncheckedLoad, 1);  // as it is stored, not as a repair leaves it
        const bool loaded = qn::LoadSceneFile(qn::String::FromUtf8(file), *scene_, *context_);
        EXPECT_TRUE(loaded) << context_->GetFailureText().ToUtf8();
    }

    struct Place {
        qn::k3::Node* node;
        int depth;
    };
    /// Everything below the scene, parents first.
    std::vector<Place> Nodes() const {
        std::vector<Place> nodes;
        std::vector<Place> pending{{scene_.Get(), 0}};
        while (!pending.empty()) {
            const Place place = pending.back();
            pending.pop_back();
            if (place.depth > 0) nodes.push_back(place);
            const std::size_t first = pending.size();
            for (qn::k3::Node* child = place.node->GetFirstChild(); child; child = child->GetNextSibling())
                pending.push_back({child, place.depth + 1});
            std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(first), pending.end());
        }
        return nodes;
    }

private:
    const qn::test::EntryModule module_{&K3DLLFunc};
    const qn::Counted<qn::test::RecordingContext> context_ = qn::test::MakeContext();
    const qn::Counted<qn::k3::Scene> scene_ = qn::Make<qn::k3::Scene>();
};

Instance* InstanceOf(const qn::k3::Node* node) {
    return qn::Cast<Instance>(node->GetParamVar(kInstance));
}

std::string Utf8(const qn::Var& value) {
    return value.ToText().ToUtf8();
}

/// Names with their depth, and what is on each layer: "definition / instance / node" ids.
std::string Dump(const StoredScene& scene) {
    std::ostringstream text;
    for (const auto& [node, depth] : scene.Nodes()) {
        text << std::string(static_cast<std::size_t>(2 * depth - 2), ' ') << node->GetName().ToUtf8();
        if (const Instance* const instance = InstanceOf(node))
            text << " | " << Utf8(instance->GetReference()->GetProperty(qn::graph::Prop::kBsId, 0)) << " / "
                 << Utf8(instance->GetProperty(qn::graph::Prop::kBsId, 0)) << " / "
                 << Utf8(node->GetParamVar(kBsId));
        text << "\n";
    }
    return text.str();
}

void ExpectOwnElements(const qn::k3::Node& node, std::set<std::string>& ids,
                       std::set<const Reference*>& seen) {
    static const std::regex form("s1:[0-9a-f]{32}");
    const Instance* const instance = InstanceOf(&node);
    ASSERT_NE(instance, nullptr) << node.GetName().ToUtf8();
    const Reference* const reference = instance->GetReference();
    ASSERT_NE(reference, nullptr);
    EXPECT_TRUE(seen.insert(reference).second) << "a definition of two nodes";
    for (const std::string& id :
         {Utf8(reference->GetProperty(qn::graph::Prop::kBsId, 0)),
          Utf8(instance->GetProperty(qn::graph::Prop::kBsId, 0)), Utf8(node.GetParamVar(kBsId))}) {
        EXPECT_TRUE(std::regex_match(id, form)) << id;
        EXPECT_TRUE(ids.insert(id).second) << id << " twice";
    }
    ASSERT_EQ(reference->GetChildCount(), node.GetChildCount());
    int index = 0;
    for (const qn::k3::Node* child = node.GetFirstChild(); child; child = child->GetNextSibling())
        EXPECT_EQ(reference->GetChild(index++).Get(), InstanceOf(child));
}

std::vector<std::filesystem::path> RealFiles() {
    return qn::test::QuickDataFiles({".stp", ".step", ".glb", ".gltf"});
}

class OperationsRoad : public testing::TestWithParam<std::filesystem::path> {
protected:
    void SetUp() override {
        if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
        const ToolRun made = RunTool({"run", kGenerate, GetParam().string(), "--seed", "1", "-o", built_});
        if (made.exitCode == kUnreadable || made.exitCode == kMissing)
            GTEST_SKIP() << "the file cannot be read: " << made.err;
        ASSERT_EQ(made.exitCode, 0) << made.err;
    }

    const TemporaryFolder folder_;
    const std::string built_ = folder_.File("built.qn"), bare_ = folder_.File("bare.qn");
};

TEST_P(OperationsRoad, GivesEveryNodeElementsOfItsOwn) {
    std::set<std::string> ids;
    std::set<const Reference*> seen;
    const StoredScene scene(built_);
    ASSERT_FALSE(scene.Nodes().empty());
    for (const auto& place : scene.Nodes())
        ExpectOwnElements(*place.node, ids, seen);
}

TEST_P(OperationsRoad, FindsTheHierarchySoundAndTakesItAwayAgain) {
    const ToolRun checked = RunTool({"run", kValidate, built_});
    EXPECT_EQ(checked.exitCode, 0) << checked.out << checked.err;
    const ToolRun removed = RunTool({"run", kRemove, built_, "-o", bare_});
    ASSERT_EQ(removed.exitCode, 0) << removed.err;

    const StoredScene before(built_), after(bare_);
    const auto old = before.Nodes(), bare = after.Nodes();
    ASSERT_EQ(bare.size(), old.size());
    for (std::size_t i = 0; i < bare.size(); ++i) {
        EXPECT_EQ(bare[i].node->GetName(), old[i].node->GetName());
        EXPECT_EQ(bare[i].depth, old[i].depth);
        for (const int id : {kInstance, kBsId, kExternalIds})
            EXPECT_TRUE(bare[i].node->GetParamVar(id).IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(RealFiles, OperationsRoad, testing::ValuesIn(RealFiles()),
                         [](const auto& file) { return qn::test::TestNameOf(file.param); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OperationsRoad);

std::string Golden(const char* name) {
    return ReadAll(std::string(ASSEMBLY_SOURCE_DIR) + "/tests/tool/golden/" + name);
}

TEST(OperationsDump, OfAKnownFileIsTheKnownText) {
    if (!qn::test::HasData()) GTEST_SKIP() << qn::test::kNoData;
    const TemporaryFolder folder;
    const std::string source = (qn::test::DataDir() / "cax-as1" / "as1-oc-214.stp").string();
    const std::string built = folder.File("built.qn"), bare = folder.File("bare.qn");
    ASSERT_EQ(RunTool({"run", kGenerate, source, "--seed", "1", "-o", built}).exitCode, 0);
    EXPECT_EQ(RunTool({"run", kValidate, built}).exitCode, 0);
    ASSERT_EQ(RunTool({"run", kRemove, built, "-o", bare}).exitCode, 0);
    EXPECT_EQ(Dump(StoredScene(built)), Golden("as1-oc-214.hierarchy.txt"));
    EXPECT_EQ(Dump(StoredScene(bare)), Golden("as1-oc-214.bare.txt"));
}

}  // namespace
}  // namespace assembly::tests
