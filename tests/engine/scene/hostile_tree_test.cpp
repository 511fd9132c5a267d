// Trees that a file lists in an order that no writer would choose: what stands above is read first.

#include "engine/scene/chunk_ids.h"
#include "engine/stream/format.h"
#include "engine/stream/object_file.h"
#include "frame/host/node.h"
#include "tests/engine/scene/scene_tests.h"
#include "tests/engine/stream/scene_file_bytes.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::k3 {
namespace {

using scene_file::BlockKind;

/// A scene file of nodes, each as the numbers of its children; objects are numbered from 1.
class NodeFile {
public:
    std::uint32_t Add(const std::vector<std::uint32_t>& children) {
        std::string numbers;
        for (const std::uint32_t child : children)
            scene_file::Put(numbers, child);
        const std::string body = children.empty() ? "" : test::ChunkBytes(NodeChunk::kChildren, numbers);
        index_ += test::IndexRowBytes(0, static_cast<std::uint32_t>(body.size()));
        bodies_ += body;
        if (bodies_.size() >= scene_file::kBlockSize) blocks_.push_back(std::exchange(bodies_, {}));
        return ++count_;
    }
    std::string Bytes(std::uint32_t root) {
        test::FileParts parts;
        parts.objects = count_, parts.classes = 1, parts.root = root;
        parts.Add(BlockKind::kClasses, test::ClassRowBytes("k3_node"));
        parts.Add(BlockKind::kIndex, index_);
        if (!bodies_.empty()) blocks_.push_back(std::exchange(bodies_, {}));
        for (const std::string& block : blocks_)
            parts.Add(BlockKind::kBodies, block);
        return parts.Bytes();
    }

private:
    std::string index_, bodies_;
    std::vector<std::string> blocks_;
    std::uint32_t count_ = 0;
};

/// Every level of a chain, read from the top down, takes up a tree that was read before. `last` is what the
/// deepest level lists.
std::string ChainThatTakesTreesUp(std::uint32_t levels, const std::vector<std::uint32_t>& last) {
    NodeFile file;
    for (std::uint32_t i = 0; i < levels; ++i) {
        const std::uint32_t leaf = file.Add({});
        file.Add({leaf});
    }
    const std::uint32_t top = 2 * levels + 1;
    for (std::uint32_t i = 0; i + 1 < levels; ++i)
        file.Add({2 * i + 2, top + i + 1});
    file.Add(last);
    return file.Bytes(top);
}

TEST(HostileTree, TakesUpTreesAtEveryLevelInLinearTime) {
    constexpr std::uint32_t kLevels = 200'000;  // a climb for each would be 20 thousand million steps
    const auto context = test::MakeContext();
    const auto top = CountedCast<Node>(LoadFromBytes(ChainThatTakesTreesUp(kLevels, {}), *context));
    ASSERT_TRUE(top) << context->GetFailureText().ToUtf8();
    std::uint32_t levels = 1;
    for (const Node* node = top.Get(); node->GetLastChild(); node = node->GetLastChild())
        ++levels;
    EXPECT_EQ(levels, kLevels);
}

TEST(HostileTree, RefusesARingAcrossManyLevels) {
    constexpr std::uint32_t kLevels = 1000;
    const std::uint32_t top = 2 * kLevels + 1;
    const auto context = test::MakeContext();
    EXPECT_FALSE(LoadFromBytes(ChainThatTakesTreesUp(kLevels, {top}), *context));
    EXPECT_NE(context->GetFailureText().ToUtf8().find("below itself"), std::string::npos);
}

}  // namespace
}  // namespace qn::k3
