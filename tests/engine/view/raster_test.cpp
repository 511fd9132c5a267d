#include "engine/view/raster.h"

#include "engine/view/png.h"

#include <gtest/gtest.h>
#include <png.h>

#include <limits>

namespace qn::view {
namespace {

constexpr Colour kWhite{255, 255, 255}, kRed{255, 0, 0}, kBlue{0, 0, 255};

int Count(const Raster& picture, const Colour& colour) {
    int count = 0;
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x)
            count += picture.At(x, y) == colour;
    return count;
}

std::array<ScreenPoint, 3> LowerLeft(double size, double depth) {
    return {{{0, 0, depth}, {0, size, depth}, {size, size, depth}}};
}

TEST(Raster, StartsWithItsBackground) {
    const Raster picture(4, 3, kRed);
    EXPECT_EQ(picture.Width(), 4);
    EXPECT_EQ(picture.Height(), 3);
    EXPECT_EQ(picture.Bytes().size(), 36u);
    EXPECT_EQ(Count(picture, kRed), 12);
}

TEST(Raster, FillsATriangleWhicheverWayItTurns) {
    Raster one(10, 10, kWhite), other(10, 10, kWhite);
    auto corners = LowerLeft(10, 0);
    one.Fill(corners, kRed);
    std::swap(corners[0], corners[2]);
    other.Fill(corners, kRed);
    EXPECT_EQ(one.Bytes(), other.Bytes());
    EXPECT_EQ(one.At(0, 9), kRed);
    EXPECT_EQ(one.At(9, 0), kWhite);
    EXPECT_EQ(Count(one, kRed), 55);  // half of the square and its diagonal
}

TEST(Raster, LetsTheNearerHideTheFarther) {
    Raster picture(10, 10, kWhite);
    picture.Fill(LowerLeft(10, 1), kRed);
    picture.Fill(LowerLeft(10, 0), kBlue);
    EXPECT_EQ(Count(picture, kBlue), 0);
    picture.Fill(LowerLeft(10, 2), kBlue);
    EXPECT_EQ(Count(picture, kRed), 0);
}

TEST(Raster, ClipsAtItsEdges) {
    Raster picture(4, 4, kWhite);
    picture.Fill({{{-1e9, -1e9, 0}, {1e9, -1e9, 0}, {0, 1e9, 0}}}, kRed);
    EXPECT_EQ(Count(picture, kRed), 16);
    picture.Fill({{{10, 10, 1}, {20, 10, 1}, {10, 20, 1}}}, kBlue);
    picture.Fill({{{-10, -10, 1}, {-20, -10, 1}, {-10, -20, 1}}}, kBlue);
    EXPECT_EQ(Count(picture, kBlue), 0);
}

TEST(Raster, DrawsNothingForNoNumbersAndFlatTriangles) {
    Raster picture(4, 4, kWhite);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    picture.Fill({{{nan, 0, 0}, {4, 0, 0}, {0, 4, 0}}}, kRed);
    picture.Fill({{{0, 0, 0}, {infinity, 0, 0}, {0, 4, 0}}}, kRed);
    picture.Fill({{{0, 0, 0}, {2, 2, 0}, {4, 4, 0}}}, kRed);
    picture.Dot({nan, 0, 0}, kRed);
    EXPECT_EQ(Count(picture, kWhite), 16);
}

TEST(Raster, DrawsADotInsideOnly) {
    Raster picture(4, 4, kWhite);
    picture.Dot({1.5, 2.5, 0}, kRed);
    picture.Dot({4, 0, 0}, kRed);
    picture.Dot({-0.1, 0, 0}, kRed);
    EXPECT_EQ(Count(picture, kRed), 1);
    EXPECT_EQ(picture.At(1, 2), kRed);
}

TEST(Png, ReadsBackAsTheSamePicture) {
    Raster picture(5, 3, kWhite);
    picture.Dot({1, 2, 0}, kBlue);
    const std::string bytes = EncodePng(picture);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_TRUE(png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()));
    EXPECT_EQ(image.width, 5u);
    EXPECT_EQ(image.height, 3u);
    image.format = PNG_FORMAT_RGB;
    std::vector<std::uint8_t> read(PNG_IMAGE_SIZE(image));
    ASSERT_TRUE(png_image_finish_read(&image, nullptr, read.data(), 0, nullptr));
    EXPECT_EQ(read, picture.Bytes());
    EXPECT_EQ(EncodePng(picture), bytes);
}

}  // namespace
}  // namespace qn::view
