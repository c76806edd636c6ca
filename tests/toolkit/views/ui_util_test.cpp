#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "uikit/window.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

using namespace belvakit;
using platform::Image;
using platform::ImageOrientation;

namespace {

TEST(CRVUIUtil, BuildsTheBorderedButton) {
    const auto button = CRVUIUtil::buildButtonWithFrame({10, 20, 120, 40}, "Contact us");
    EXPECT_EQ(button->frame(), (uikit::Rect{10, 20, 120, 40}));
    EXPECT_EQ(button->backgroundColor(), whiteColor(0.945));
    EXPECT_EQ(button->borderWidth(), 1.0);
    EXPECT_EQ(button->borderColor(), whiteColor(0.2627, 1.0));
    EXPECT_EQ(button->cornerRadius(), 4.0);
    EXPECT_EQ(button->titleLabel()->font(), platform::Font::systemFont(14.0));
    EXPECT_EQ(button->contentEdgeInsets, (uikit::EdgeInsets{0, 12.0, 0, 22.0}));
    EXPECT_EQ(button->currentTitle(), "Contact us");
    EXPECT_EQ(button->titleColor(uikit::ControlState::normal), whiteColor(0.2627));
    EXPECT_EQ(button->titleColor(uikit::ControlState::highlighted), whiteColor(0.2627, 0.3));
    EXPECT_EQ(button->titleColor(uikit::ControlState::disabled), whiteColor(0.2627, 0.3));
    EXPECT_EQ(button->contentHorizontalAlignment, uikit::TextAlignment::center);
    EXPECT_EQ(button->autoresizingMask(), 45u);
}

TEST(CRVUIUtil, ComparesSystemVersionsByTheirNumbers) {
    CRVUIUtil::setSystemVersion("13.1");
    EXPECT_TRUE(CRVUIUtil::isSameVersion(1)) << "only the first character counts";
    EXPECT_FALSE(CRVUIUtil::isSameVersion(13));
    EXPECT_TRUE(CRVUIUtil::isNewerVersion("9.3"));
    EXPECT_TRUE(CRVUIUtil::isNewerVersion("13.0"));
    EXPECT_TRUE(CRVUIUtil::isNewerVersion("13"));
    EXPECT_TRUE(CRVUIUtil::isOlderVersion("13.10"));
    EXPECT_TRUE(CRVUIUtil::isOlderVersion("14"));
    EXPECT_FALSE(CRVUIUtil::isOlderVersion("13.1"));
    EXPECT_FALSE(CRVUIUtil::isNewerVersion("13.1"));
    CRVUIUtil::setSystemVersion("9.3.5");
    EXPECT_TRUE(CRVUIUtil::isSameVersion(9));
    EXPECT_TRUE(CRVUIUtil::isOlderVersion("10.0"));
    EXPECT_TRUE(CRVUIUtil::isNewerVersion("7.0"));
    CRVUIUtil::setSystemVersion("");
    EXPECT_TRUE(CRVUIUtil::isSameVersion(0));
    EXPECT_TRUE(CRVUIUtil::isOlderVersion("1"));
    CRVUIUtil::setSystemVersion("13.0");
}

TEST(CRVUIUtil, ReadsOrientationAndIdiomFromTheKeyWindow) {
    {
        uikit::Window window(uikit::Environment::phoneLandscape());
        window.makeKeyAndVisible();
        EXPECT_EQ(CRVUIUtil::currentInterfaceOrientation(), 3);
        EXPECT_TRUE(CRVUIUtil::isLandscape());
        EXPECT_FALSE(CRVUIUtil::isPad());
        auto environment = uikit::Environment::tablet();
        environment.orientation = uikit::InterfaceOrientation::unknown;
        window.setEnvironment(environment);
        EXPECT_EQ(CRVUIUtil::currentInterfaceOrientation(), 1);
        EXPECT_FALSE(CRVUIUtil::isLandscape());
        EXPECT_TRUE(CRVUIUtil::isPad());
        EXPECT_EQ(CRVUIUtil::separatorHeightForScreenScale(), 0.5);
    }
    // Without a window: a phone in portrait.
    EXPECT_EQ(CRVUIUtil::currentInterfaceOrientation(), 1);
    EXPECT_FALSE(CRVUIUtil::isPad());
}

TEST(CRVUIUtil, AttachmentsNeedPortraitAmongTheHostsOrientations) {
    auto& info = CRVUIUtil::mainBundle().infoDictionary;
    EXPECT_FALSE(CRVUIUtil::shouldEnableAttachments());
    info["UISupportedInterfaceOrientations"] =
        std::vector<std::string>{"UIInterfaceOrientationLandscapeLeft", "UIInterfaceOrientationLandscapeRight"};
    EXPECT_FALSE(CRVUIUtil::shouldEnableAttachments());
    info["UISupportedInterfaceOrientations"] =
        std::vector<std::string>{"UIInterfaceOrientationLandscapeLeft", "UIInterfaceOrientationPortrait"};
    EXPECT_TRUE(CRVUIUtil::shouldEnableAttachments());
    info["UISupportedInterfaceOrientations"] = std::string("UIInterfaceOrientationPortrait");
    EXPECT_FALSE(CRVUIUtil::shouldEnableAttachments()) << "not a list";
    info.clear();
}

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

TEST(FixOrientationOfImage, MatchesTheBitmapContextForEveryOrientationOnRandomPixels) {
    for (const unsigned seed : {1u, 2u, 3u}) {
        std::mt19937 random(seed);
        for (int round = 0; round < 1000; ++round) {
            const int width = std::uniform_int_distribution(1, 9)(random);
            const int height = std::uniform_int_distribution(1, 9)(random);
            const auto orientation = static_cast<ImageOrientation>(std::uniform_int_distribution(0, 7)(random));
            auto image = std::make_shared<Image>(Image{width, height, orientation, {}});
            image->rgba.resize(static_cast<std::size_t>(width * height * 4));
            for (auto& byte : image->rgba) byte = static_cast<std::uint8_t>(random());

            const auto fixed = CRVUIUtil::fixOrientationOfImage(image);
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
    EXPECT_EQ(CRVUIUtil::fixOrientationOfImage(nullptr), nullptr);
}

TEST(FixOrientationOfImage, TurnsAPortraitPhotoUpright) {
    // Stored sideways, 3 wide and 2 high, as a camera held upright records it (orientation right):
    // the picture is 2 wide and 3 high, and its top row is the stored left column read upwards.
    auto stored = std::make_shared<Image>(Image{3, 2, ImageOrientation::right, {}});
    for (std::uint8_t i = 0; i < 6; ++i) stored->rgba.insert(stored->rgba.end(), {i, i, i, 255});
    const auto upright = CRVUIUtil::fixOrientationOfImage(stored);
    ASSERT_EQ(upright->width, 2);
    ASSERT_EQ(upright->height, 3);
    std::vector<int> order;
    for (std::size_t pixel = 0; pixel < 6; ++pixel) order.push_back(upright->rgba[pixel * 4]);
    // Stored pixels by row: 0 1 2 / 3 4 5.
    EXPECT_EQ(order, (std::vector<int>{3, 0, 4, 1, 5, 2}));
}

} // namespace
