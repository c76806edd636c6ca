#include "platform/image.hpp"
#include "platform/image_codec.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace platform;

namespace {

// Each pixel's red and green say where it stood.
std::shared_ptr<Image> marked(int width, int height, ImageOrientation orientation = ImageOrientation::up) {
    auto image = std::const_pointer_cast<Image>(makeImage(width, height, orientation));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            auto* pixel = &image->rgba[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                        static_cast<std::size_t>(x)) * 4];
            pixel[0] = static_cast<std::uint8_t>(x * 40);
            pixel[1] = static_cast<std::uint8_t>(y * 40);
            pixel[2] = 99;
            pixel[3] = 255;
        }
    return image;
}

std::pair<int, int> origin(const Image& image, int x, int y) {
    const auto* pixel = &image.rgba[(static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                                     static_cast<std::size_t>(x)) * 4];
    return {pixel[0] / 40, pixel[1] / 40};
}

} // namespace

TEST(ImageCodec, PNGKeepsEveryPixel) {
    const auto image = marked(5, 3);
    const auto bytes = encodePNG(*image);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->substr(1, 3), "PNG");
    const auto decoded = decodeImage(*bytes);
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(decoded->width, 5);
    EXPECT_EQ(decoded->height, 3);
    EXPECT_EQ(decoded->rgba, image->rgba);
}

TEST(ImageCodec, JPEGIsCloseAndSmallerAtLowerQuality) {
    auto image = std::const_pointer_cast<Image>(makeImage(48, 48));
    for (std::size_t i = 0; i < image->rgba.size(); ++i)
        image->rgba[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>((i / 4) % 48 * 5);
    const auto high = encodeJPEG(*image, 1.0);
    const auto low = encodeJPEG(*image, 0.1);
    ASSERT_TRUE(high && low);
    EXPECT_EQ(static_cast<unsigned char>((*high)[0]), 0xFF);
    EXPECT_LT(low->size(), high->size());
    const auto decoded = decodeImage(*high);
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(decoded->width, 48);
    EXPECT_EQ(decoded->height, 48);
    for (std::size_t i : {std::size_t{0}, std::size_t{4 * 47}, std::size_t{4 * 1000 + 1}})
        EXPECT_LE(std::abs(int(decoded->rgba[i]) - int(image->rgba[i])), 6) << i;
}

TEST(ImageCodec, DamagedOrForeignBytesGiveNoImage) {
    const auto png = *encodePNG(*marked(16, 16));
    const auto jpeg = *encodeJPEG(*marked(16, 16), 0.7);
    EXPECT_EQ(decodeImage(""), nullptr);
    EXPECT_EQ(decodeImage("GIF89a......"), nullptr);
    EXPECT_EQ(decodeImage(png.substr(0, png.size() / 2)), nullptr);
    EXPECT_EQ(decodeImage(jpeg.substr(0, 20)), nullptr);
    EXPECT_FALSE(encodePNG(Image{}));
    EXPECT_FALSE(encodeJPEG(Image{2, 2, ImageOrientation::up, {1, 2, 3}}, 0.7));
}

TEST(FixOrientation, TurnsAndMirrorsThePixelsUprightAndLeavesUprightImagesAlone) {
    const ImagePtr upright = marked(3, 2);
    EXPECT_EQ(fixOrientationOfImage(upright), upright) << "the same object";
    EXPECT_EQ(fixOrientationOfImage(nullptr), nullptr);
    EXPECT_EQ(fixOrientationOfImage(std::make_shared<Image>(Image{3, 2, ImageOrientation::left, {1, 2, 3}})), nullptr)
        << "pixels short of the size";
    // Stored 3 wide and 2 high; `at` is a shown pixel and `from` the stored pixel it shows.
    const struct {
        ImageOrientation orientation;
        int width, height;
        std::pair<int, int> at, from;
    } cases[] = {
        {ImageOrientation::down, 3, 2, {0, 0}, {2, 1}},
        {ImageOrientation::right, 2, 3, {0, 0}, {0, 1}},  // turned clockwise
        {ImageOrientation::right, 2, 3, {1, 0}, {0, 0}},
        {ImageOrientation::left, 2, 3, {0, 0}, {2, 0}},  // turned counter-clockwise
        {ImageOrientation::upMirrored, 3, 2, {0, 0}, {2, 0}},
        {ImageOrientation::downMirrored, 3, 2, {0, 0}, {0, 1}},
        {ImageOrientation::rightMirrored, 2, 3, {1, 2}, {0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.orientation));
        const auto fixed = fixOrientationOfImage(marked(3, 2, c.orientation));
        EXPECT_EQ(fixed->orientation, ImageOrientation::up);
        ASSERT_EQ(fixed->width, c.width);
        ASSERT_EQ(fixed->height, c.height);
        EXPECT_EQ(origin(*fixed, c.at.first, c.at.second), c.from);
    }
}
