#include "belvakit/toolkit/appearance_applicator.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "fenlow/common_theme.hpp"
#include "test_support.hpp"
#include "uikit/appearance.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"

#include <gtest/gtest.h>

using namespace belvakit;
using platform::Color;
using platform::Font;
using platform::LogLevel;

namespace {

// Each test starts and ends on the base theme with no host appearance.
class ThemeTest : public ::testing::Test {
protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }
    static void reset() {
        CRVLegacyTheme::baseTheme()->apply();
        uikit::Appearance::reset();
    }

    template <class T>
    static std::optional<T> paletteValue(std::string_view key) {
        const auto value = CRVAppearanceApplicator::objectForKey(key);
        const T* typed = value ? std::any_cast<T>(&*value) : nullptr;
        return typed ? std::optional<T>(*typed) : std::nullopt;
    }
    using Spinner = std::shared_ptr<uikit::ActivityIndicatorView>;
    static Spinner spinner(std::string_view key) { return paletteValue<Spinner>(key).value_or(nullptr); }
};

TEST_F(ThemeTest, BaseThemeIsNewOnEachCallAndApplyingMakesItCurrent) {
    const auto theme = CRVLegacyTheme::baseTheme();
    EXPECT_NE(CRVLegacyTheme::baseTheme(), theme);
    theme->apply();
    EXPECT_EQ(CRVLegacyTheme::currentAppliedTheme(), theme);
    EXPECT_EQ(CRVAppearanceApplicator::currentTheme(), theme);
}

TEST_F(ThemeTest, PrimaryColorLivesInTheCommonTheme) {
    const auto before = fenlow::CommonTheme::currentTheme();
    Theme::currentTheme().setPrimaryColor(Color::fromRGB(10, 20, 30));
    EXPECT_EQ(fenlow::CommonTheme::currentTheme().primaryColor, Color::fromRGB(10, 20, 30));
    fenlow::CommonTheme changed = before;
    changed.primaryColor = Color::fromRGB(200, 0, 0);
    fenlow::CommonTheme::setCurrentTheme(changed);
    EXPECT_EQ(Theme::currentTheme().primaryColor(), Color::fromRGB(200, 0, 0));
    fenlow::CommonTheme::setCurrentTheme(before);
}

TEST_F(ThemeTest, DarknessIsBrightnessAtMostThreeTenthsAsAFloat) {
    EXPECT_TRUE(CRVAppearanceApplicator::isDarkColor(whiteColor(0.3)));
    EXPECT_TRUE(CRVAppearanceApplicator::isDarkColor(whiteColor(0.30000001)));  // the same as a float
    EXPECT_FALSE(CRVAppearanceApplicator::isDarkColor(whiteColor(0.3001)));
    EXPECT_TRUE(CRVAppearanceApplicator::isDarkColor(Color::black()));
    EXPECT_FALSE(CRVAppearanceApplicator::isDarkColor(Color::white()));
    // Brightness is the largest component, not an average.
    EXPECT_TRUE(CRVAppearanceApplicator::isDarkColor({0.3, 0.1, 0.0, 1}));
    EXPECT_FALSE(CRVAppearanceApplicator::isDarkColor({0.0, 0.0, 0.31, 1}));
    EXPECT_FALSE(CRVAppearanceApplicator::isDarkTheme());
}

TEST_F(ThemeTest, ApplyingWritesThePaletteAndSpinnersFollowTheBackground) {
    const auto dark = CRVLegacyTheme::baseTheme();
    dark->primaryBackgroundColor = whiteColor(0.3);
    dark->primaryTextColor = whiteColor(0.9);
    dark->secondaryBackgroundColor = whiteColor(0.1);
    dark->separatorColor = Color::fromRGB(50, 60, 70);
    dark->subtitleFont = Font::boldSystemFont(13);
    dark->apply();
    EXPECT_TRUE(CRVAppearanceApplicator::isDarkTheme());

    // One key of each kind the theme writes.
    EXPECT_EQ(paletteValue<Color>("CRVSupportAttachmentCell:fileSizeLabelColor"), whiteColor(0.9));
    EXPECT_EQ(paletteValue<Color>("CRVArticleView:articleBackground"), whiteColor(0.3));
    EXPECT_EQ(paletteValue<Color>("CRVSupportAttachmentCell:titleLabelBackground"), whiteColor(0.1));
    EXPECT_EQ(paletteValue<Color>("UITableView:separatorColor"), Color::fromRGB(50, 60, 70));
    EXPECT_EQ(paletteValue<Font>("CRVSupportAttachmentCell:fileSizeLabelFont"), Font::boldSystemFont(13));
    EXPECT_FALSE(CRVAppearanceApplicator::objectForKey("CRVArticleView:initalArticleLoadingSpinner"));

    const auto darkSpinner = spinner("CRVArticleView:articleLoadSpinner");
    ASSERT_NE(darkSpinner, nullptr);
    EXPECT_EQ(darkSpinner->style(), 1);
    EXPECT_EQ(darkSpinner->frame(), (uikit::Rect{0, 0, 20, 20}));
    EXPECT_EQ(spinner("CRVArticleView:spinner")->style(), 1);
    // Every reader gets the same spinner until the theme changes.
    EXPECT_EQ(spinner("CRVArticleView:articleLoadSpinner"), darkSpinner);

    CRVLegacyTheme::baseTheme()->apply();
    const auto lightSpinner = spinner("CRVArticleView:articleLoadSpinner");
    EXPECT_NE(lightSpinner, darkSpinner);
    EXPECT_EQ(lightSpinner->style(), 2);
}

TEST_F(ThemeTest, ClassSettersWriteThePaletteButLeaveTheTheme) {
    CRVAppearanceApplicator::setPrimaryTextColor(Color::fromRGB(1, 2, 3));
    EXPECT_EQ(paletteValue<Color>("CRVSupportAttachmentCell:titleLabelColor"), Color::fromRGB(1, 2, 3));
    EXPECT_EQ(CRVAppearanceApplicator::primaryTextColor(), whiteColor(0.2627));
    CRVAppearanceApplicator::setPrimaryBackgroundColor(Color::black());
    EXPECT_EQ(spinner("CRVArticleView:spinner")->style(), 1);
    EXPECT_FALSE(CRVAppearanceApplicator::isDarkTheme());

    // A write without a key or a value is dropped.
    const auto size = CRVAppearanceApplicator::instance().mutableAppearancePalette.size();
    CRVAppearanceApplicator::instance().setObject(Color::black(), std::nullopt);
    CRVAppearanceApplicator::instance().setObject(std::any(), std::string("X:y"));
    EXPECT_EQ(CRVAppearanceApplicator::instance().mutableAppearancePalette.size(), size);
}

TEST_F(ThemeTest, KeysNameClassAndPropertyFontsTheirFaceAndBothWarnForWhatIsUnknown) {
    testing_support::CapturedLog log;
    EXPECT_EQ(keyForSelector("UITableView", "separatorColor"), "UITableView:separatorColor");
    EXPECT_EQ(keyForSelector("CRVSupportAttachmentCell", "titleLabelColor", "CRVArticleView"),
              "(CRVArticleView)CRVSupportAttachmentCell:titleLabelColor");
    EXPECT_TRUE(log.records().empty());
    EXPECT_EQ(keyForSelector("UITableView", "titleLabelColor"), std::nullopt);
    EXPECT_EQ(keyForSelector("NoSuchClass", "font", "UITableView"), std::nullopt);
    EXPECT_EQ(log.messages(LogLevel::warn),
              (std::vector<std::string>{"selector: titleLabelColor not found for class: UITableView",
                                        "selector: font not found for class: NoSuchClass"}));
    registerAppearanceProperties("CRVHelpCenterCell", {"accentColor"});
    EXPECT_EQ(keyForSelector("CRVHelpCenterCell", "accentColor"), "CRVHelpCenterCell:accentColor");

    // A font is found by name at eighteen points, or warned of.
    log.clear();
    EXPECT_EQ(CRVAppearanceApplicator::setFont("Helvetica-Bold"), Font::named("Helvetica-Bold", 18.0));
    EXPECT_EQ(CRVAppearanceApplicator::setFont("Comic Nothing"), std::nullopt);
    EXPECT_EQ(log.messages(LogLevel::warn), (std::vector<std::string>{"Font Comic Nothing not found, using system default"}));
}

TEST_F(ThemeTest, HostAppearanceWinsOverThePalette) {
    const auto themed = CRVUIUtil::appearanceValue<Color>("CRVSupportAttachmentCell", "titleLabelColor");
    EXPECT_EQ(themed, whiteColor(0.2627));
    uikit::Appearance::set("CRVSupportAttachmentCell", "titleLabelColor", Color::fromRGB(255, 0, 0));
    EXPECT_EQ(CRVUIUtil::appearanceValue<Color>("CRVSupportAttachmentCell", "titleLabelColor"),
              Color::fromRGB(255, 0, 0));

    // Inside a container, only what the host set for that container counts.
    testing_support::CapturedLog log;
    EXPECT_FALSE(CRVUIUtil::appearanceValueForClass("CRVSupportAttachmentCell", "CRVArticleView", "titleLabelColor"));
    uikit::Appearance::set("CRVSupportAttachmentCell", "titleLabelColor", Color::black(), "CRVArticleView");
    const auto contained =
        CRVUIUtil::appearanceValueForClass("CRVSupportAttachmentCell", "CRVArticleView", "titleLabelColor");
    ASSERT_TRUE(contained);
    EXPECT_EQ(std::any_cast<Color>(*contained), Color::black());
    EXPECT_EQ(log.messages(LogLevel::error),
              (std::vector<std::string>{
                  "Appearance value not found for (CRVArticleView)CRVSupportAttachmentCell:titleLabelColor"}));
}

TEST_F(ThemeTest, APaletteMissLogsOnEveryRead) {
    testing_support::CapturedLog log;
    for (int read = 0; read < 2; ++read)
        EXPECT_FALSE(CRVUIUtil::appearanceValueForClass("CRVArticleView", "initalArticleLoadingSpinner"));
    EXPECT_EQ(log.messages(LogLevel::error),
              std::vector<std::string>(2, "Appearance value not found for CRVArticleView:initalArticleLoadingSpinner"));

    // A host's spinner for it is found without a log.
    log.clear();
    auto hostSpinner = std::make_shared<uikit::ActivityIndicatorView>(0);
    uikit::Appearance::set("CRVArticleView", "initalArticleLoadingSpinner", hostSpinner);
    EXPECT_EQ((CRVUIUtil::appearanceValue<Spinner>("CRVArticleView", "initalArticleLoadingSpinner")), hostSpinner);
    EXPECT_TRUE(log.records().empty());

    // A property the class lacks: a warning for the key, then the miss with no key.
    EXPECT_FALSE(CRVUIUtil::appearanceValueForClass("UILabel", "spinner"));
    EXPECT_EQ(log.messages(LogLevel::warn),
              (std::vector<std::string>{"selector: spinner not found for class: UILabel"}));
    EXPECT_EQ(log.messages(LogLevel::error), (std::vector<std::string>{"Appearance value not found for (null)"}));

    // Asked through a view without the property: nothing, and nothing logged.
    log.clear();
    uikit::Label label;
    EXPECT_FALSE(CRVUIUtil::appearanceValueForView(label, "separatorColor"));
    EXPECT_TRUE(log.records().empty());
}

} // namespace
