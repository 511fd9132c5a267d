// A file that stores its nodes takes in the files that its definitions name.

#include "engine/stream/scene_file.h"
#include "frame/entry.h"
#include "frame/host/api.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/reference.h"
#include "tests/support/file_assembly.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using namespace qn;
using test::FileAssembly;
using test::FilePart;

std::string DefinitionOf(const k3::Node& node) {
    const auto* instance = Cast<graph::Instance>(node.GetParamObject(Param::kInstance));
    const auto* reference = instance ? instance->GetReference() : nullptr;
    return reference ? reference->GetProperty(graph::Prop::kName, 0).ToText().ToUtf8() : "(none)";
}

/// A node and all below: definition, name, place.
std::string Nodes(const k3::Node& node) {
    Matrix4<double> matrix;
    node.GetMatrix(&matrix, 0);
    std::string text = DefinitionOf(node) + " '" + node.GetName().ToUtf8() + "'" +
                       (matrix.IsIdentity(0.0) ? "" : " moved") + "\n";
    for (const k3::Node* child = node.GetFirstChild(); child; child = child->GetNextSibling())
        text += Nodes(*child);
    return text;
}

class ExternalStoredNodes : public testing::Test {
protected:
    std::string File(const std::string& name) const { return folder_.File(name); }
    void Write(const std::string& name, const std::string& root, const std::vector<FilePart>& parts) {
        WriteAll(File(name), FileAssembly(root, parts));
    }
    /// "a.qn" of two "b.qn" and a "d.qn", the former of a "c.qn".
    void WriteAssembly() {
        Write("a.qn", "A", {{"b", "b.qn", 2}, {"d", "d.qn"}});
        Write("b.qn", "B", {{"c", "c.qn"}});
        Write("c.qn", "C", {});
        Write("d.qn", "D", {});
        Run({"convert", "--expand", File("a.qn"), File("nodes.qn")});
    }
    static void Run(const std::vector<std::string>& arguments) {
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err;
    }
    Counted<k3::Scene> Load(const std::string& name) const {
        auto scene = Make<k3::Scene>();
        EXPECT_TRUE(LoadSceneFile(String::FromUtf8(File(name)), *scene, *context_));
        return scene;
    }
    /// Changes the stored nodes of "nodes.qn".
    template <class Change>
    void ChangeNodes(Change&& change) const {
        const auto scene = Load("nodes.qn");
        ASSERT_TRUE(scene->GetFirstChild() && scene->GetFirstChild()->GetFirstChild());
        change(*scene->GetFirstChild());
        SceneSaveOptions save;
        save.expand = true;
        ASSERT_TRUE(SaveSceneFile(*scene, String::FromUtf8(File("nodes.qn")), *context_, save));
    }
    const test::EntryModule module_{&K3DLLFunc};
    TemporaryFolder folder_;
    Counted<Context> context_ = api->CreateContext(0, 0);
};

TEST_F(ExternalStoredNodes, ShowTheContentOfTheFiles) {
    WriteAssembly();
    Run({"convert", "--load", "all", File("nodes.qn"), File("whole.qn")});
    Run({"convert", "--load", "all", "--expand", File("a.qn"), File("expected.qn")});
    EXPECT_EQ(RunTool({"show", File("whole.qn")}).out, RunTool({"show", "--load", "all", File("a.qn")}).out);
    const std::string nodes = Nodes(*Load("whole.qn")->GetFirstChild());
    EXPECT_EQ(nodes, "A 'A'\nB 'b.1'\nC 'c.1'\nB 'b.2'\nC 'c.1'\nD 'd.1'\n");
    EXPECT_EQ(ReadAll(File("whole.qn")), ReadAll(File("expected.qn")));
    const ToolRun check = RunTool({"check", File("whole.qn")});
    EXPECT_EQ(check.exitCode, 0) << check.out;
}

TEST_F(ExternalStoredNodes, TakeInLevelAfterLevel) {
    WriteAssembly();
    Run({"convert", "--load", "1", File("nodes.qn"), File("one.qn")});
    EXPECT_EQ(Nodes(*Load("one.qn")->GetFirstChild()),
              "A 'A'\nB 'b.1'\nc 'c.1'\nB 'b.2'\nc 'c.1'\nD 'd.1'\n");
    Run({"convert", "--load", "1", File("one.qn"), File("two.qn")});
    EXPECT_EQ(Nodes(*Load("two.qn")->GetFirstChild()),
              "A 'A'\nB 'b.1'\nC 'c.1'\nB 'b.2'\nC 'c.1'\nD 'd.1'\n");
}

TEST_F(ExternalStoredNodes, GoOnToSayWhatTheirUsesDoNot) {
    WriteAssembly();
    ChangeNodes([](k3::Node& top) {
        const auto matrix = Matrix4<double>::Translation(1, 2, 3);
        k3::Node& second = *top.GetFirstChild()->GetNextSibling();
        second.SetName(L"own");
        second.SetMatrix(&matrix, 0);
        second.SetMetaValue(Var(L"note"), Var(7));
    });
    Run({"convert", "--load", "all", File("nodes.qn"), File("whole.qn")});
    const auto scene = Load("whole.qn");
    EXPECT_EQ(Nodes(*scene->GetFirstChild()), "A 'A'\nB 'b.1'\nC 'c.1'\nB 'own' moved\nC 'c.1'\nD 'd.1'\n");
    const Var metadata(scene->GetFirstChild()->GetFirstChild()->GetNextSibling()->GetMetadata(false), 1);
    ASSERT_TRUE(metadata.Lookup(L"note"));
    EXPECT_EQ(metadata.Lookup(L"note")->ToInt(), 7);
}

TEST_F(ExternalStoredNodes, OfMissingFilesStayEmpty) {
    WriteAssembly();
    std::filesystem::remove(File("c.qn"));
    EXPECT_EQ(RunTool({"convert", "--load", "all", File("nodes.qn"), File("whole.qn")}).exitCode, 5);
    EXPECT_EQ(Nodes(*Load("whole.qn")->GetFirstChild()),
              "A 'A'\nB 'b.1'\nc 'c.1'\nB 'b.2'\nc 'c.1'\nD 'd.1'\n");
}

TEST_F(ExternalStoredNodes, OfTooManyOccurrencesAreRefusedBeforeAnyIsMade) {
    Write("a.qn", "A", {{"b", "b.qn", 500}});
    Write("b.qn", "B", {{"c", "c.qn", 500}});
    Write("c.qn", "C", {{"d", "d.qn", 500}});
    Write("d.qn", "D", {});
    Run({"convert", "--expand", File("a.qn"), File("nodes.qn")});
    const ToolRun run = RunTool({"convert", "--load", "all", File("nodes.qn"), File("whole.qn")});
    EXPECT_EQ(run.exitCode, 7) << run.err;
    EXPECT_NE(run.err.find("the limit is 20000000"), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(File("whole.qn")));
}

}  // namespace
}  // namespace assembly::tests
