// A .gltf and its .bin: both or neither.

#include "engine/runtime/context_impl.h"
#include "exporters/gltf/gltf_export.h"
#include "frame/entry.h"
#include "frame/host/object3d.h"
#include "tests/support/assembly.h"
#include "tests/support/static_module.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qn::gltf_export {
namespace {

namespace fs = std::filesystem;

/// More than are written between two reports of progress.
constexpr int kManyParts = 20'000;

class GltfPair : public testing::Test {
protected:
    GltfPair() : module_(&K3DLLFunc) {}

    /// With one triangle, so that there is a buffer. `far` is one of its numbers.
    Result Write(int parts, float far) {
        const auto made = test::AssemblyBuilder("root").Child("part", parts).Build();
        const auto mesh = Make<k3::Mesh>();
        mesh->SetGeometry({0, 0, 0, far, 0, 0, 0, 1, 0}, {}, {0, 1, 2}, {});
        made.Ref("part")->SetTarget(Var(mesh));
        Options options;
        options.isBinary = false;
        return WriteGltf(Assembly{{{made.RootInstance(), made.Root()}}}, text_, options, *context_);
    }
    auto FileCount() const { return std::distance(fs::directory_iterator(folder_.Path()), {}); }

    test::EntryModule module_;
    test::TempFolder folder_;
    const std::string text_ = (folder_.Path() / "file.gltf").string();
    const std::string buffer_ = (folder_.Path() / "file.bin").string();
    Counted<ContextImpl> context_ = Make<ContextImpl>();
};

TEST_F(GltfPair, TakesThePlaceOfAnOlderOne) {
    ASSERT_EQ(Write(1, 1).outcome, Outcome::kDone);
    const std::string text = test::ReadBytes(text_), buffer = test::ReadBytes(buffer_);
    ASSERT_EQ(Write(2, 3).outcome, Outcome::kDone);
    EXPECT_NE(test::ReadBytes(text_), text);
    EXPECT_NE(test::ReadBytes(buffer_), buffer);
    EXPECT_EQ(FileCount(), 2);
}

TEST_F(GltfPair, KeepsTheOldBufferWhereTheTextCannotBePutInPlace) {
    ASSERT_EQ(Write(1, 1).outcome, Outcome::kDone);
    const std::string buffer = test::ReadBytes(buffer_);
    context_->SetProgressFunction([&](double) {  // in the middle of writing
        fs::remove(text_);
        return fs::create_directory(text_);
    });
    EXPECT_EQ(Write(kManyParts, 3).outcome, Outcome::kNotWritten);
    EXPECT_EQ(test::ReadBytes(buffer_), buffer);
    EXPECT_EQ(FileCount(), 2);
}

TEST_F(GltfPair, LeavesNoBufferWhereTheTextCannotBePutInPlace) {
    context_->SetProgressFunction([&](double) { return fs::create_directory(text_); });
    EXPECT_EQ(Write(kManyParts, 3).outcome, Outcome::kNotWritten);
    EXPECT_FALSE(fs::exists(buffer_));
}

TEST_F(GltfPair, LeavesABufferAloneThatTheOldTextDoesNotName) {
    folder_.Write("file.gltf", R"({"asset":{"version":"2.0"},"buffers":[{"uri":"own.bin","byteLength":4}]})");
    folder_.Write("file.bin", "other");
    const std::string text = test::ReadBytes(text_);
    const Result result = Write(1, 1);
    EXPECT_EQ(result.outcome, Outcome::kNotWritten);
    EXPECT_NE(result.error.find("file.bin"), std::string::npos) << result.error;
    EXPECT_EQ(test::ReadBytes(buffer_), "other");
    EXPECT_EQ(test::ReadBytes(text_), text);
    EXPECT_EQ(FileCount(), 2);
}

}  // namespace
}  // namespace qn::gltf_export
