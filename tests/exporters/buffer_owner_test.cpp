#include "exporters/gltf/buffer_owner.h"

#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn::gltf_export {
namespace {

const struct {
    const char* text;
    bool names;
} kTexts[] = {
    {R"({"buffers":[{"byteLength":4,"uri":"a b.bin"}]})", true},
    {R"({"buffers":[{"uri":"a%20b.bin","byteLength":4}]})", true},
    {R"({"asset":{},"buffers":[{"uri":"c.bin"},{"uri":"./%61%20b.bin"}],"nodes":[]})", true},
    {R"({"buffers":[{"byteLength":4}]})", false},
    {R"({"buffers":[{"uri":"c.bin","name":"a b.bin"}]})", false},
    {R"({"buffers":[{"uri":"sub/a b.bin"}]})", false},
    {R"({"buffers":[{"uri":"a%2"},{"uri":"a%zz"},{"extras":{"uri":"a b.bin"}}]})", false},
    {R"({"images":[{"uri":"a b.bin"}]})", false},
    {R"({"extras":{"buffers":[{"uri":"a b.bin"}]}})", false},
    {R"({"buffers":[{"uri":)", false},
    {"glTF \x02", false},
    {"", false},
};

TEST(BufferOwner, NamesWhatItsBuffersNameAlone) {
    const test::TempFolder folder;
    const std::string path = (folder.Path() / "x.gltf").string();
    for (const auto& [text, names] : kTexts) {
        folder.Write("x.gltf", text);
        EXPECT_EQ(NamesBuffer(path, "a b.bin"), names) << text;
    }
}

TEST(BufferOwner, AFileThatIsNotThereNamesNothing) {
    EXPECT_FALSE(NamesBuffer("/none/x.gltf", "a.bin"));
}

TEST(BufferOwner, ATextNestedVeryDeeplyIsGoneThrough) {
    constexpr std::size_t kLevels = 200'000;
    const test::TempFolder folder;
    folder.Write("x.gltf", R"({"extras":)" + std::string(kLevels, '[') + std::string(kLevels, ']') +
                               R"(,"buffers":[{"uri":"a.bin"}]})");
    EXPECT_TRUE(NamesBuffer((folder.Path() / "x.gltf").string(), "a.bin"));
}

}  // namespace
}  // namespace qn::gltf_export
