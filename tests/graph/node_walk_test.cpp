#include "graph/node_walk.h"

#include "frame/host/scene_document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace qn::test {
namespace {

using graph::NextInSubtree;
using graph::WalkBelow;
using graph::WalkNodes;

k3::Node* Add(k3::Node& parent, const char* name) {
    k3::Node* const child = parent.CreateChildNode(0, 0, 0);
    child->SetName(String::FromUtf8(name).c_str());
    return child;
}

/// A scene "a(b(c) d) e".
class NodeWalk : public testing::Test {
protected:
    const Counted<k3::Scene> scene_ = Make<k3::Scene>();
    k3::Node* const a_ = Add(*scene_, "a");
    k3::Node* const b_ = Add(*a_, "b");
    k3::Node* const c_ = Add(*b_, "c");
    k3::Node* const d_ = Add(*a_, "d");
    k3::Node* const e_ = Add(*scene_, "e");
};

TEST_F(NodeWalk, MeetsParentsFirstAndStaysBelowItsRoot) {
    std::string met;
    WalkNodes(*a_, [&](const k3::Node& node) { met += node.GetName().ToUtf8(); });
    EXPECT_EQ(met, "abcd");
    EXPECT_EQ(NextInSubtree(d_, *a_), nullptr);
    EXPECT_EQ(NextInSubtree(d_, *scene_), e_);
    EXPECT_EQ(NextInSubtree(c_, *c_), nullptr);
}

TEST_F(NodeWalk, HandsDownWhatEachParentGives) {
    std::string met;
    WalkBelow(*scene_, std::string("/"), [&](const k3::Node& node, const std::string& above) {
        const std::string path = above + node.GetName().ToUtf8();
        met += path + " ";
        return std::optional(path + "/");
    });
    EXPECT_EQ(met, "/a /a/b /a/b/c /a/d /e ");
}

TEST_F(NodeWalk, LeavesOutWhatIsBelowANodeThatGivesNothing) {
    std::string met;
    WalkBelow(*scene_, 0, [&](const k3::Node& node, int level) {
        met += node.GetName().ToUtf8();
        return &node == b_ ? std::nullopt : std::optional(level + 1);
    });
    EXPECT_EQ(met, "abde");
}

TEST_F(NodeWalk, NeedsNoDeepStack) {
    constexpr int kLevels = 20000;
    k3::Node* deep = e_;
    for (int level = 0; level < kLevels; ++level)
        deep = deep->CreateChildNode(0, 0, 0);
    int deepest = 0;
    WalkBelow(*e_, 0, [&](const k3::Node&, int level) {
        deepest = std::max(deepest, level + 1);
        return std::optional(level + 1);
    });
    EXPECT_EQ(deepest, kLevels);
}

}  // namespace
}  // namespace qn::test
