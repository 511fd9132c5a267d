#include "engine/scene/chunk_ids.h"
#include "engine/stream/object_file.h"
#include "frame/host/stream.h"
#include "tests/engine/scene/scene_tests.h"
#include "tests/support/recording_context.h"

#include <functional>

namespace qn::k3 {
namespace {

/// Writes under the key of an engine class what no object of that class would write.
class Liar final : public ReferenceSource {
public:
    Liar(const char* key, std::function<void(Stream*, Context*)> write)
        : key_(key), write_(std::move(write)) {}
    ResultEnum Save(Stream* stream, Context* context) override {
        write_(stream, context);
        return ResultEnum::kSuccess;
    }
    const char* GetInterfaceName() const override { return key_; }

private:
    const char* key_;
    std::function<void(Stream*, Context*)> write_;
};

/// Writes a list of children.
auto Children(std::vector<Interface*> children) {
    return [children](Stream* stream, Context* context) {
        stream->BeginChunk(NodeChunk::kChildren);
        for (Interface* child : children)
            stream->WriteObjectNumber(child, context, false);
        stream->EndChunk();
    };
}

void ExpectRefused(Interface& root) {
    const auto context = test::MakeContext();
    const std::string bytes = SaveToBytes(root, *context);
    ASSERT_FALSE(bytes.empty());
    EXPECT_FALSE(LoadFromBytes(bytes, *context));
    EXPECT_EQ(context->GetFailure(), LoadFailure::kMalformed);
}

TEST(DamagedContent, AChildListedTwiceIsRefused) {
    const auto child = Make<Node>();
    ExpectRefused(*Make<Liar>("k3_node", Children({child.Get(), child.Get()})));
}

TEST(DamagedContent, AChildOfTwoParentsIsRefused) {
    const auto shared = Make<Node>();
    const auto first = Make<Liar>("k3_node", Children({shared.Get()}));
    const auto second = Make<Liar>("k3_node", Children({shared.Get()}));
    ExpectRefused(*Make<Liar>("k3_node", Children({first.Get(), second.Get()})));
}

TEST(DamagedContent, ANodeBelowItselfIsRefused) {
    std::vector<Interface*> below;
    const auto outer =
        Make<Liar>("k3_node", [&](Stream* stream, Context* context) { Children(below)(stream, context); });
    const auto inner = Make<Liar>("k3_node", Children({outer.Get()}));
    below = {inner.Get()};
    ExpectRefused(*outer);
}

TEST(DamagedContent, AChildThatIsNoNodeIsPassedOver) {
    const auto context = test::MakeContext();
    const auto mesh = Make<Mesh>();
    const auto liar = Make<Liar>("k3_node", Children({mesh.Get(), nullptr}));
    const auto read = CountedCast<Node>(LoadFromBytes(SaveToBytes(*liar, *context), *context));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->GetChildCount(), 0);
}

TEST(DamagedContent, ASceneBelowANodeIsRefused) {
    const auto scene = Make<Scene>();
    ExpectRefused(*Make<Liar>("k3_node", Children({scene.Get()})));
}

/// A chunk of `count` floats.
auto Floats(int id, int count) {
    return [id, count](Stream* stream, Context*) {
        const std::vector<float> zeros(static_cast<std::size_t>(count));
        stream->BeginChunk(static_cast<unsigned>(id));
        stream->WriteData(zeros.data(), sizeof(float), count);
        stream->EndChunk();
    };
}

TEST(DamagedContent, AMeshWhosePartsDoNotFitIsRefused) {
    ExpectRefused(*Make<Liar>("k3_mesh", Floats(MeshChunk::kPositions, 2)));
    ExpectRefused(*Make<Liar>("k3_mesh", Floats(MeshChunk::kNormals, 3)));
    ExpectRefused(*Make<Liar>("k3_mesh", Floats(MeshChunk::kIndices, 3)));  // of vertices that are not there
}

TEST(DamagedContent, ABlockOfBrokenItemsIsRefused) {
    ExpectRefused(*Make<Liar>("k3_mesh", [](Stream* stream, Context*) {
        stream->BeginChunk(MeshChunk::kPositions);
        stream->WriteData("12345", 1, 5);
        stream->EndChunk();
    }));
}

TEST(DamagedContent, AMatrixThatEndsEarlyIsRefused) {
    ExpectRefused(*Make<Liar>("k3_node", Floats(NodeChunk::kMatrix, 3)));
}

TEST(DamagedContent, AnUnknownViewKindReadsAsOther) {
    const auto context = test::MakeContext();
    const auto liar = Make<Liar>("k3_viewport", [](Stream* stream, Context*) {
        stream->BeginChunk(ViewportChunk::kKind);
        stream->WriteInt(77);
        stream->EndChunk();
    });
    const auto read = CountedCast<Viewport>(LoadFromBytes(SaveToBytes(*liar, *context), *context));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->GetKind(), ViewKind::kOther);
}

}  // namespace
}  // namespace qn::k3
