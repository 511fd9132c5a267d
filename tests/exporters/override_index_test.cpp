#include "exporters/gltf/override_index.h"

#include <gtest/gtest.h>

#include <string>

namespace qn::gltf_export {
namespace {

using Path = std::vector<std::uint32_t>;

OverrideRow Named(const std::string& name, Path path) {
    OverrideRow row;
    row.name = name;
    row.use = path.back();
    row.path = std::move(path);
    return row;
}

OverrideRow MovedTo(double x, Path path) {
    OverrideRow row = Named("", std::move(path));
    row.isMoved = true;
    row.place.matrix.m[3][0] = x;
    return row;
}

std::string NameAt(const ExportModel& model, const Path& path) {
    const OverrideRow* row = OverrideIndex(model).Find(path).name;
    return row ? row->name : "";
}

TEST(OverrideIndex, FindsWhatFitsTheEndOfThePath) {
    ExportModel model;
    model.overrides = {Named("mine", {1, 2})};
    EXPECT_EQ(NameAt(model, {0, 1, 2}), "mine");
    EXPECT_EQ(NameAt(model, {1, 2}), "mine");
    EXPECT_EQ(NameAt(model, {0, 3, 2}), "");
    EXPECT_EQ(NameAt(model, {2}), "");
    EXPECT_EQ(NameAt(model, {0, 1}), "");
}

TEST(OverrideIndex, TheLongestPathWinsWhereverItStands) {
    ExportModel model;
    model.overrides = {Named("any", {2}), Named("this one", {0, 1, 2}), Named("of that", {1, 2})};
    EXPECT_EQ(NameAt(model, {0, 1, 2}), "this one");
    EXPECT_EQ(NameAt(model, {5, 1, 2}), "of that");
    EXPECT_EQ(NameAt(model, {5, 6, 2}), "any");
}

TEST(OverrideIndex, TheLastOfEqualPathsWins) {
    ExportModel model;
    model.overrides = {Named("first", {1, 2}), Named("last", {1, 2})};
    EXPECT_EQ(NameAt(model, {1, 2}), "last");
}

TEST(OverrideIndex, NamesAndPlacesAreFoundOnTheirOwn) {
    ExportModel model;
    model.overrides = {MovedTo(7, {2}), Named("mine", {1, 2})};
    const Path path{1, 2};
    const OverrideIndex index(model);
    const OverridesOfOne found = index.Find(path);
    ASSERT_TRUE(found.name && found.place);
    EXPECT_EQ(found.name->name, "mine");
    EXPECT_EQ(found.place->place.matrix.m[3][0], 7);
}

/// A search through all overrides for each occurrence would not end in time.
TEST(OverrideIndex, ThirtyThousandOverridesOfOneUseAreFoundAtOnce) {
    constexpr std::uint32_t kCount = 30'000, kShared = kCount + 1;
    ExportModel model;
    for (std::uint32_t i = 0; i < kCount; ++i)
        model.overrides.push_back(Named("x", {i, kShared}));
    const OverrideIndex index(model);
    for (std::uint32_t i = 0; i < kCount; ++i)
        ASSERT_EQ(index.Find(Path{i, kShared}).name, &model.overrides[i]);
}

}  // namespace
}  // namespace qn::gltf_export
