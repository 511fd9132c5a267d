// Real files all the way: import, nodes, a hierarchy built from these nodes, and nodes generated again from
// it.

#include "construction/hierarchy_factory.h"
#include "construction/hierarchy_generator.h"
#include "engine/runtime/engine.h"
#include "engine/scene/generated_content.h"
#include "engine/stream/scene_file.h"
#include "frame/host/importer.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"
#include "tests/support/data_dir.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"

#include <gtest/gtest.h>

#include <map>

namespace qn::test {
namespace {

using graph::HierarchyFactory;
using graph::HierarchyGenerator;
using graph::Instance;
using graph::LookupTable;
using graph::Reference;
using graph::Selector;

constexpr unsigned kLoadFlags = 0x800002a;

/// All nodes of a subtree, parents first, siblings in order.
std::vector<k3::Node*> NodesBelow(k3::Node* top) {
    std::vector<k3::Node*> nodes;
    top->Visit(
        0,
        [](k3::Node* node, ParamWord list) {
            reinterpret_cast<std::vector<k3::Node*>*>(list)->push_back(node);
            return true;
        },
        reinterpret_cast<ParamWord>(&nodes));
    return nodes;
}

void ExpectSameNode(k3::Node* left, k3::Node* right) {
    EXPECT_EQ(left->GetName().ToUtf8(), right->GetName().ToUtf8());
    EXPECT_EQ(left->GetChildCount(), right->GetChildCount());
    EXPECT_EQ(left->GetObject(), right->GetObject());
    EXPECT_EQ(left->GetParamVar(Param::kBsId), right->GetParamVar(Param::kBsId));
    Matrix4<double> a, b;
    left->GetMatrix(&a, 0), right->GetMatrix(&b, 0);
    EXPECT_EQ(a, b);
    left->GetMatrix(&a, 1), right->GetMatrix(&b, 1);
    EXPECT_EQ(a, b);
    left->GetThirdMatrix(&a), right->GetThirdMatrix(&b);
    EXPECT_EQ(a, b);
}

void ExpectSameTree(k3::Node* left, k3::Node* right) {
    const auto a = NodesBelow(left), b = NodesBelow(right);
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size() && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE("node " + std::to_string(i) + " \"" + a[i]->GetName().ToUtf8() + "\"");
        ExpectSameNode(a[i], b[i]);
    }
}

class StepRoad : public testing::TestWithParam<std::filesystem::path> {
protected:
    void SetUp() override {
        if (!HasData()) GTEST_SKIP() << kNoData;
        scene_ = Make<k3::Scene>();
        context_ = MakeContext();
        top_ = scene_->LoadFile(String::FromUtf8(GetParam().string()).c_str(), context_.Get(), kLoadFlags,
                                Guid());
        ASSERT_TRUE(top_) << context_->GetFailureText().ToUtf8();
        generator_ = Cast<HierarchyGenerator>(k3::Generator::Get(top_));
        ASSERT_TRUE(generator_);
        ASSERT_EQ(k3::GenerateMissing(*scene_, context_.Get()), 1);
    }
    /// Generates the nodes of `instance` below a new top node of another scene.
    k3::Node* GenerateAgain(Instance* instance) {
        again_ = Make<k3::Scene>();
        k3::Node* node = again_->CreateEmptyNode(0, 0, 0);
        const auto generator = CreateAs<HierarchyGenerator>(graph::ClassKey::kHierarchyGenerator);
        Selector selector;
        selector.AppendPathElement(instance);
        generator->SetSelector(selector);
        k3::Generator::Attach(node, generator.Get());
        EXPECT_TRUE(Succeeded(generator->Generate(node, context_.Get())));
        return node;
    }
    Counted<HierarchyFactory> factory_ = CreateAs<HierarchyFactory>(graph::ClassKey::kHierarchyFactory);
    Counted<RecordingContext> context_;
    Counted<k3::Scene> scene_, again_;
    k3::Node* top_ = nullptr;
    HierarchyGenerator* generator_ = nullptr;
};

TEST_P(StepRoad, BuildsTheHierarchyOfItsOwnNodesAndGeneratesThemAgain) {
    const auto table = factory_->CreateLookupTableForScene(scene_.Get(), context_.Get());
    ASSERT_TRUE(table);
    const auto instance = table->GetInstanceOfNode(top_);
    ASSERT_TRUE(instance);
    ExpectSameTree(top_, GenerateAgain(instance.Get()));
}

TEST_P(StepRoad, BuildsAHierarchyFromPlainNodesAndGeneratesThemAgain) {
    k3::Generator::Detach(top_);
    for (k3::Node* node : NodesBelow(top_))
        node->DeleteParam(Param::kInstance);
    const auto table = factory_->CreateLookupTableForScene(scene_.Get(), context_.Get());
    ASSERT_TRUE(table);
    const auto instance = table->GetInstanceOfNode(top_);
    ASSERT_TRUE(instance);
    ExpectSameTree(top_, GenerateAgain(instance.Get()));
}

TEST_P(StepRoad, SharesADefinitionAfterTheLoadAsBefore) {
    const auto definitionsBelow = [](Reference* root) {
        std::map<Reference*, int> numbers{{root, 0}};
        std::vector<Reference*> pending{root};
        std::vector<int> shape;
        for (std::size_t at = 0; at < pending.size(); ++at) {
            for (int i = 0; i < pending[at]->GetChildCount(); ++i) {
                Reference* used = pending[at]->GetChild(i)->GetReference();
                const auto [entry, isNew] = numbers.emplace(used, static_cast<int>(numbers.size()));
                if (isNew) pending.push_back(used);
                shape.push_back(entry->second);
            }
            shape.push_back(-1);
        }
        return shape;
    };
    const std::string bytes = SaveSceneToBytes(*scene_, *context_);
    const auto loaded = Make<k3::Scene>();
    ASSERT_TRUE(LoadSceneFromBytes(bytes, L"road", *loaded, *context_))
        << context_->GetFailureText().ToUtf8();
    auto* generator = Cast<HierarchyGenerator>(k3::Generator::Get(loaded->GetFirstChild()));
    ASSERT_TRUE(generator);
    EXPECT_EQ(definitionsBelow(generator->GetRootReference()),
              definitionsBelow(generator_->GetRootReference()));
    EXPECT_TRUE(SaveSceneToBytes(*loaded, *context_) == bytes) << "the bytes differ";
}

INSTANTIATE_TEST_SUITE_P(Files, StepRoad, testing::ValuesIn(QuickDataFiles({".stp", ".step"})),
                         [](const auto& info) { return TestNameOf(info.param); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(StepRoad);

}  // namespace
}  // namespace qn::test
