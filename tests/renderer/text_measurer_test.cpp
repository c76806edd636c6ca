#include "renderer/qt_text_measurer.hpp"
#include "uikit/label.hpp"

#include <gtest/gtest.h>
#include <random>

namespace {

using platform::AttributedString;
using platform::Font;

AttributedString styled(const std::string& text, const Font& font) {
    return AttributedString(text, {{platform::AttributeName::font, font}});
}

const std::string sentence = "The quick brown fox jumps over the lazy dog while the cat watches";

TEST(QtTextMeasurer, MeasuresWithTheFontsTraitsAndSize) {
    const renderer::QtTextMeasurer measurer;
    const auto regular = measurer.measure(styled("Hello, world", Font::systemFont(17)), 1000, 1);
    const auto bold = measurer.measure(styled("Hello, world", Font::boldSystemFont(17)), 1000, 1);
    const auto large = measurer.measure(styled("Hello, world", Font::systemFont(34)), 1000, 1);
    EXPECT_GT(regular.width, 60);
    EXPECT_GT(bold.width, regular.width);
    EXPECT_NEAR(large.width, 2 * regular.width, 3);
    EXPECT_GT(large.height, 1.8 * regular.height);
    EXPECT_GE(regular.height, 17);
    EXPECT_LE(regular.height, 24);
    // Runs keep their own fonts: a bold word widens only itself.
    AttributedString mixed = styled("Hello, ", Font::systemFont(17));
    mixed.append(styled("world", Font::boldSystemFont(17)));
    const auto both = measurer.measure(mixed, 1000, 1);
    EXPECT_GT(both.width, regular.width);
    EXPECT_LT(both.width, bold.width);
    // Monospaced faces give every character one advance.
    const Font mono = *Font::named("Courier", 17);
    EXPECT_EQ(measurer.measure(styled("iiii", mono), 1000, 1).width, measurer.measure(styled("MMMM", mono), 1000, 1).width);
}

TEST(QtTextMeasurer, NarrowerWidthsTakeMoreLines) {
    const renderer::QtTextMeasurer measurer;
    const auto text = styled(sentence, Font::systemFont(17));
    const auto wide = measurer.measure(text, 2000, 0);
    const auto half = measurer.measure(text, wide.width / 2 + 20, 0);
    const auto narrow = measurer.measure(text, 90, 0);
    EXPECT_GT(half.height, wide.height);
    EXPECT_GT(narrow.height, half.height);
    EXPECT_LE(narrow.width, 90);
    EXPECT_EQ(measurer.measure(text, 90, 2).height, 2 * wide.height) << "two lines at most";
    EXPECT_EQ(measurer.measure(styled("one\ntwo\nthree", Font::systemFont(17)), 2000, 0).height, 3 * wide.height);

    AttributedString spaced(sentence, {{platform::AttributeName::font, Font::systemFont(17)},
                                       {platform::AttributeName::paragraphStyle, platform::ParagraphStyle{6}}});
    EXPECT_EQ(measurer.measure(spaced, 90, 3).height, measurer.measure(text, 90, 3).height + 12);

    EXPECT_EQ(measurer.measure(AttributedString(), 100, 0), (uikit::Size{0, 0}));
    const auto careless = measurer.measure(text, std::nan(""), -4);
    EXPECT_EQ(careless.height, wide.height) << "no width is no wrapping; negative lines are any number";
}

TEST(QtTextMeasurer, InstalledItSizesTheKitsLabels) {
    const auto previous = renderer::installQtTextMeasurer();
    uikit::Label label;
    label.setText(sentence);
    label.setFont(Font::boldSystemFont(17));
    const renderer::QtTextMeasurer measurer;
    EXPECT_EQ(label.intrinsicContentSize(), measurer.measure(label.attributedText(), 1e9, 1));
    uikit::setTextMeasurer(previous);
}

// Greedy wrapping can only lose lines as room grows, and never fills more than the room.
TEST(QtTextMeasurer, WrappingHoldsForRandomText) {
    const renderer::QtTextMeasurer measurer;
    const std::vector<std::string> words{"a", "to", "the", "ticket", "conversation", "é", "agent", "W", "ok,", "mmmmm"};
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        std::string text;
        const int count = 1 + static_cast<int>(random() % 30);
        for (int i = 0; i < count; ++i) text += (i ? " " : "") + words[random() % words.size()];
        const Font font = random() % 2 ? Font::boldSystemFont(12 + random() % 10) : Font::systemFont(12 + random() % 10);
        const auto attributed = styled(text, font);
        const double narrow = 40 + random() % 200;
        const double wide = narrow + 1 + random() % 200;
        const auto atNarrow = measurer.measure(attributed, narrow, 0);
        const auto atWide = measurer.measure(attributed, wide, 0);
        ASSERT_LE(atNarrow.width, narrow) << "seed " << seed << ": " << text;
        ASSERT_GE(atNarrow.height, atWide.height) << "seed " << seed << ": " << text;
        ASSERT_LE(measurer.measure(attributed, narrow, 1).height, atNarrow.height) << "seed " << seed;
    }
}

} // namespace
