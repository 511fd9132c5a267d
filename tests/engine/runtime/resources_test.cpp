#include "engine/runtime/resources.h"

#include "engine/runtime/byte_stream.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

constexpr const wchar_t* kName = L"XML|ASSEMBLY";

class ResourcesTest : public testing::Test {
protected:
    ~ResourcesTest() override { RemoveResource(Module(), kName); }
    ModuleHandle Module() { return &module_; }
    std::string Read(ModuleHandle handle) {
        const auto stream = Stream::Create(handle, kName, 2);
        return stream ? ReadToEnd(*stream) : "none";
    }

private:
    int module_ = 0;
};

TEST_F(ResourcesTest, AreFoundByModuleAndName) {
    RegisterResource(Module(), kName, "<Interface/>");
    EXPECT_EQ(Read(Module()), "<Interface/>");
    int other = 0;
    EXPECT_EQ(Read(&other), "none");
    EXPECT_FALSE(Stream::Create(Module(), L"XML|OTHER", 2));
}

TEST_F(ResourcesTest, AreReadFromTheStartByEachStream) {
    RegisterResource(Module(), kName, "abc");
    EXPECT_EQ(Read(Module()), "abc");
    EXPECT_EQ(Read(Module()), "abc");
}

TEST_F(ResourcesTest, GiveWayToALaterOneOfTheSameName) {
    RegisterResource(Module(), kName, "old");
    const auto open = Stream::Create(Module(), kName, 2);
    RegisterResource(Module(), kName, "new");
    EXPECT_EQ(ReadToEnd(*open), "old");
    EXPECT_EQ(Read(Module()), "new");
}

TEST_F(ResourcesTest, CanBeTakenAway) {
    RegisterResource(Module(), kName, "abc");
    EXPECT_TRUE(RemoveResource(Module(), kName));
    EXPECT_FALSE(RemoveResource(Module(), kName));
    EXPECT_EQ(Read(Module()), "none");
}

TEST_F(ResourcesTest, WithoutModuleAreFiles) {
    const test::TempFolder folder;
    const auto stream = Stream::Create(nullptr, folder.Write("a.txt", "text").c_str(), 2);
    ASSERT_TRUE(stream);
    EXPECT_EQ(ReadToEnd(*stream), "text");
    EXPECT_FALSE(Stream::Create(nullptr, folder.File("b.txt").c_str(), 2));
    EXPECT_FALSE(Stream::Create(nullptr, nullptr, 2));
}

}  // namespace
}  // namespace qn
