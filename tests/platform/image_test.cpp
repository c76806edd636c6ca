#include "platform/image.hpp"
#include "platform/image_codec.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>

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

namespace {

// The normalisation as a bitmap context does it: the transform built step by step, the image
// drawn through it into a context with y going up, and the context read back top row first.
struct Affine {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

    // A point goes through `first`, then `then`.
    static Affine concat(const Affine& first, const Affine& then) {
        return {first.a * then.a + first.b * then.c,
                first.a * then.b + first.b * then.d,
                first.c * then.a + first.d * then.c,
                first.c * then.b + first.d * then.d,
                first.tx * then.a + first.ty * then.c + then.tx,
                first.tx * then.b + first.ty * then.d + then.ty};
    }
    Affine translated(double x, double y) const { return concat({1, 0, 0, 1, x, y}, *this); }
    Affine rotated(double angle) const {
        return concat({std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle), 0, 0}, *this);
    }
    Affine scaled(double x, double y) const { return concat({x, 0, 0, y, 0, 0}, *this); }
    std::pair<double, double> inverseApply(double x, double y) const {
        const double det = a * d - b * c;
        const double dx = x - tx;
        const double dy = y - ty;
        return {(d * dx - c * dy) / det, (-b * dx + a * dy) / det};
    }
};

Image referenceUpright(const Image& image) {
    const int o = static_cast<int>(image.orientation);
    const bool swapped = o == 2 || o == 3 || o == 6 || o == 7;
    const double width = swapped ? image.height : image.width;  // the picture's size, upright
    const double height = swapped ? image.width : image.height;
    Affine transform;
    if (o == 1 || o == 5) transform = transform.translated(width, height).rotated(std::numbers::pi);
    if (o == 2 || o == 6) transform = transform.translated(width, 0).rotated(std::numbers::pi / 2);
    if (o == 3 || o == 7) transform = transform.translated(0, height).rotated(-std::numbers::pi / 2);
    if (o == 4 || o == 5) transform = transform.translated(width, 0).scaled(-1, 1);
    if (o == 6 || o == 7) transform = transform.translated(height, 0).scaled(-1, 1);

    Image out{static_cast<int>(width), static_cast<int>(height), ImageOrientation::up, {}};
    out.rgba.resize(image.rgba.size());
    for (int y = 0; y < out.height; ++y) {
        for (int x = 0; x < out.width; ++x) {
            const auto [u, v] = transform.inverseApply(x + 0.5, height - (y + 0.5));
            // The stored image stands upright in its rectangle, its first row on top.
            const int sx = static_cast<int>(std::floor(u));
            const int sy = static_cast<int>(std::floor(image.height - v));
            const auto from = (static_cast<std::size_t>(sy) * static_cast<std::size_t>(image.width) +
                               static_cast<std::size_t>(sx)) * 4;
            const auto to = (static_cast<std::size_t>(y) * static_cast<std::size_t>(out.width) +
                             static_cast<std::size_t>(x)) * 4;
            std::copy_n(image.rgba.begin() + static_cast<std::ptrdiff_t>(from), 4,
                        out.rgba.begin() + static_cast<std::ptrdiff_t>(to));
        }
    }
    return out;
}

TEST(FixOrientation, MatchesTheBitmapContextForEveryOrientationOnRandomPixels) {
    for (const unsigned seed : {1u, 2u, 3u}) {
        std::mt19937 random(seed);
        for (int round = 0; round < 1000; ++round) {
            const int width = std::uniform_int_distribution(1, 9)(random);
            const int height = std::uniform_int_distribution(1, 9)(random);
            const auto orientation = static_cast<ImageOrientation>(std::uniform_int_distribution(0, 7)(random));
            auto image = std::make_shared<Image>(Image{width, height, orientation, {}});
            image->rgba.resize(static_cast<std::size_t>(width * height * 4));
            for (auto& byte : image->rgba) byte = static_cast<std::uint8_t>(random());

            const auto fixed = fixOrientationOfImage(image);
            const Image expected = referenceUpright(*image);
            ASSERT_NE(fixed, nullptr);
            ASSERT_EQ(fixed->orientation, ImageOrientation::up);
            ASSERT_EQ(fixed->width, expected.width) << "seed " << seed << " round " << round;
            ASSERT_EQ(fixed->height, expected.height) << "seed " << seed << " round " << round;
            ASSERT_EQ(fixed->rgba, expected.rgba) << "seed " << seed << " round " << round << " orientation "
                                                  << static_cast<int>(orientation) << " " << width << "x" << height;
            if (orientation == ImageOrientation::up) ASSERT_EQ(fixed, image) << "an upright image is the same object";
            else ASSERT_NE(fixed, image);
        }
    }
    EXPECT_EQ(fixOrientationOfImage(nullptr), nullptr);
}

TEST(FixOrientation, TurnsAPortraitPhotoUprightAndRefusesImagesShortOfPixels) {
    // Stored sideways, 3 wide and 2 high, as a camera held upright records it (orientation right):
    // the picture is 2 wide and 3 high, and its top row is the stored left column read upwards.
    auto stored = std::make_shared<Image>(Image{3, 2, ImageOrientation::right, {}});
    for (std::uint8_t i = 0; i < 6; ++i) stored->rgba.insert(stored->rgba.end(), {i, i, i, 255});
    const auto upright = fixOrientationOfImage(stored);
    ASSERT_EQ(upright->width, 2);
    ASSERT_EQ(upright->height, 3);
    std::vector<int> order;
    for (std::size_t pixel = 0; pixel < 6; ++pixel) order.push_back(upright->rgba[pixel * 4]);
    // Stored pixels by row: 0 1 2 / 3 4 5.
    EXPECT_EQ(order, (std::vector<int>{3, 0, 4, 1, 5, 2}));
    EXPECT_EQ(fixOrientationOfImage(std::make_shared<Image>(Image{3, 2, ImageOrientation::left, {1, 2, 3}})), nullptr);
}

} // namespace
