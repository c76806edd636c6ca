#include "platform/attributed_string.hpp"
#include "platform/character_set.hpp"
#include "platform/font.hpp"
#include "platform/text_attributes.hpp"

#include <gtest/gtest.h>

namespace {

using platform::AttributedString;
using platform::Color;
using platform::Font;
using platform::TextAttributes;
using platform::TextRange;

const TextAttributes red{{platform::foregroundColorAttributeName, Color{1, 0, 0, 1}}};
const TextAttributes blue{{platform::foregroundColorAttributeName, Color{0, 0, 1, 1}}};

TEST(TextAttributesTest, CopiesAreIndependentAndMergeOverwrites) {
    TextAttributes base{{platform::kernAttributeName, 0.3}, {platform::fontAttributeName, Font::systemFont(12)}};
    TextAttributes copy = base;
    copy.set(platform::kernAttributeName, 1.0);
    copy.remove(platform::fontAttributeName);
    EXPECT_EQ(*base.get<double>(platform::kernAttributeName), 0.3);
    EXPECT_NE(base.get<Font>(platform::fontAttributeName), nullptr);
    EXPECT_EQ(copy.size(), 1u);

    base.merge(red);
    base.merge(TextAttributes{{platform::kernAttributeName, 2.0}});
    EXPECT_EQ(*base.get<double>(platform::kernAttributeName), 2.0);
    EXPECT_EQ(*base.get<Color>(platform::foregroundColorAttributeName), (Color{1, 0, 0, 1}));
    EXPECT_EQ(base.get<Color>(platform::kernAttributeName), nullptr) << "a value of another type is not a colour";
    EXPECT_EQ(TextAttributes({{platform::kernAttributeName, 2.0}}), TextAttributes({{platform::kernAttributeName, 2.0}}));
}

TEST(AttributedStringTest, AppendingJoinsEqualNeighboursIntoOneRun) {
    AttributedString text("ab", red);
    text.append(AttributedString("cd", TextAttributes(red)));
    text.append("ef", blue);
    text.append("", red);
    EXPECT_EQ(text.string(), "abcdef");
    const auto runs = text.runs();
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].range, (TextRange{0, 4}));
    EXPECT_EQ(runs[1].range, (TextRange{4, 2}));
    EXPECT_EQ(text.attributesAt(3), red);
    EXPECT_EQ(text.attributesAt(4), blue);
}

TEST(AttributedStringTest, DeletingKeepsTheAttributesOfWhatRemains) {
    AttributedString text("ab", red);
    text.append("cd", blue);
    text.append("ef", red);
    text.deleteCharacters({1, 4});  // b, c, d, e
    EXPECT_EQ(text.string(), "af");
    ASSERT_EQ(text.runs().size(), 1u) << "the two red ends join once the blue run is gone";
    EXPECT_EQ(text.attributesAt(1), red);

    text.deleteCharacters({1, 100});
    EXPECT_EQ(text.string(), "a");
    text.deleteCharacters({0, 1});
    EXPECT_TRUE(text.empty());
    EXPECT_TRUE(text.runs().empty());
}

TEST(FontTest, TraitsPickAFaceOfTheSameFamily) {
    const Font system = Font::systemFont(16);
    const auto bold = system.fontDescriptor().withSymbolicTraits(platform::FontTrait::bold);
    ASSERT_TRUE(bold);
    const Font boldFont = Font::withDescriptor(*bold, 0);
    EXPECT_EQ(boldFont.symbolicTraits(), platform::FontTrait::bold);
    EXPECT_EQ(boldFont.familyName(), system.familyName());
    EXPECT_EQ(boldFont.pointSize(), 16);
    EXPECT_EQ(Font::withDescriptor(*bold, 20).pointSize(), 20);
    EXPECT_NE(boldFont, system);
    EXPECT_EQ(boldFont, Font::withDescriptor(*bold, 16));

    EXPECT_FALSE(system.fontDescriptor().withSymbolicTraits(platform::FontTrait::condensed));
    ASSERT_TRUE(Font::named("Courier", 9));
    EXPECT_EQ(Font::named("Courier", 9)->symbolicTraits(), platform::FontTrait::monoSpace);
    EXPECT_FALSE(Font::named("No Such Font", 9));
}

TEST(CharacterSetTest, WhitespaceAndNewlines) {
    const auto set = platform::CharacterSet::whitespaceAndNewlines();
    for (char32_t c : {U' ', U'\t', U'\n', U'\r', U'\v', U'\f', U'\u0085', U'\u00A0', U'\u2003', U'\u2028', U'\u2029'})
        EXPECT_TRUE(set.contains(c)) << static_cast<unsigned>(c);
    for (char32_t c : {U'a', U'0', U'\u200B', U'\u00E9', U'\0'})
        EXPECT_FALSE(set.contains(c)) << static_cast<unsigned>(c);
}

} // namespace
