#include "belvakit/richtext/elements.hpp"
#include "belvakit/richtext/fonts.hpp"
#include "belvakit/richtext/message_text.hpp"
#include "belvakit/richtext/rich_render.hpp"
#include "belvakit/richtext/text_style.hpp"
#include "platform/named_colors.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

namespace {

using namespace belvakit;
using platform::AttributedString;
using platform::Color;
using platform::Font;
using platform::TextAttributes;

AttributedString rendered(const std::string& html) {
    testing_support::CapturedLog quiet;
    auto text = RichRender::attributedString(html);
    EXPECT_TRUE(text) << html;
    return text.value_or(AttributedString());
}

// The one font of the whole string; fails when runs differ in font.
std::optional<Font> onlyFont(const AttributedString& text) {
    std::optional<Font> font;
    for (const auto& run : text.runs()) {
        const auto* here = run.attributes.get<Font>(platform::fontAttributeName);
        if (!here) return std::nullopt;
        if (font && *font != *here) ADD_FAILURE() << "more than one font in \"" << text.string() << "\"";
        font = *here;
    }
    return font;
}

std::optional<Color> colorAt(const AttributedString& text, std::size_t index) {
    const auto* color = text.attributesAt(index).get<Color>(platform::foregroundColorAttributeName);
    return color ? std::optional(*color) : std::nullopt;
}

TEST(RichTextFontsTest, FourDistinctFacesAndFallbacks) {
    EXPECT_EQ(boldFont().symbolicTraits(), platform::FontTrait::bold);
    EXPECT_EQ(italicFont().symbolicTraits(), platform::FontTrait::italic);
    EXPECT_EQ(boldItalicFont().symbolicTraits(), platform::FontTrait::bold | platform::FontTrait::italic);
    EXPECT_EQ(codeFont().symbolicTraits(), platform::FontTrait::monoSpace);
    for (const Font& font : {boldFont(), italicFont(), boldItalicFont(), codeFont(), richTextSystemFont()})
        EXPECT_EQ(font.pointSize(), 16);
    // Other traits fall back to the named font, then to the system font.
    EXPECT_EQ(richTextFont(platform::FontTrait::condensed, "Courier"), Font::named("Courier", 16));
    EXPECT_EQ(richTextFont(platform::FontTrait::condensed, "No Such Font"), richTextSystemFont());
}

TEST(RichTextRenderTest, PlainTextCarriesTheDefaultStyle) {
    const auto text = rendered("<div>hello <span>there</span></div>");
    EXPECT_EQ(text.string(), "hello there");
    const auto runs = text.runs();
    ASSERT_EQ(runs.size(), 1u);
    const auto& style = runs.front().attributes;
    EXPECT_EQ(*style.get<Font>(platform::fontAttributeName), Font::systemFont(16));
    EXPECT_EQ(*style.get<double>(platform::kernAttributeName), 0.3);
    EXPECT_EQ(style.get<platform::ParagraphStyle>(platform::paragraphStyleAttributeName)->lineSpacing, 2.3);
    EXPECT_EQ(*style.get<Color>(platform::foregroundColorAttributeName), (Color{0, 0, 0, 0.8}));
    EXPECT_EQ(style.find(platform::linkAttributeName), nullptr);
    EXPECT_EQ(style.size(), 4u);
    EXPECT_EQ(defaultTextAttributes().find(platform::fontAttributeName), nullptr);
}

TEST(RichTextRenderTest, BoldItalicCodeAndQuoteNestOneSidedly) {
    const std::vector<std::pair<std::string, Font>> cases{
        {"<b>x</b>", boldFont()},
        {"<h1>x</h1>", boldFont()},
        {"<i>x</i>", italicFont()},
        {"<div><b><i>x</i></b></div>", boldItalicFont()},
        {"<div><i><b>x</b></i></div>", italicFont()},
        {"<b><i><b>x</b></i></b>", boldItalicFont()},
        {"<b><b>x</b></b>", boldFont()},
        {"<div><code><b>x</b></code></div>", codeFont()},
        {"<div><b><code>x</code></b></div>", codeFont()},
        {"<code><i>x</i></code>", codeFont()},
        {"<blockquote>x</blockquote>", italicFont()},
        {"<blockquote><b>x</b></blockquote>", italicFont()},
        {"<b><blockquote>x</blockquote></b>", italicFont()},
        {"<b><span><i>x</i></span></b>", boldItalicFont()},
        {"<B>x</B>", richTextSystemFont()},
    };
    for (const auto& [html, font] : cases) EXPECT_EQ(onlyFont(rendered(html)), font) << html;
}

TEST(RichTextRenderTest, CodeAndQuoteSetTheirColourForTheirSubtreeOnly) {
    const auto text = rendered("<div>a<code>b<i>c</i></code><blockquote>d</blockquote>e</div>");
    ASSERT_EQ(text.string(), "abcde");
    EXPECT_EQ(colorAt(text, 0), richTextColor());
    EXPECT_EQ(colorAt(text, 1), platform::lightGrayColor());
    EXPECT_EQ(colorAt(text, 2), platform::lightGrayColor());
    EXPECT_EQ(colorAt(text, 3), platform::grayColor());
    EXPECT_EQ(colorAt(text, 4), richTextColor());
    EXPECT_EQ(*text.attributesAt(4).get<Font>(platform::fontAttributeName), richTextSystemFont());
}

TEST(RichTextRenderTest, BreakIsANewlineInTheInheritedStyleWithoutAFont) {
    const auto text = rendered("<div>a<br/>b<b><br/></b>c</div>");
    EXPECT_EQ(text.string(), "a\nb\nc");
    EXPECT_EQ(text.attributesAt(1).find(platform::fontAttributeName), nullptr);
    EXPECT_EQ(*text.attributesAt(1).get<double>(platform::kernAttributeName), 0.3);
    EXPECT_EQ(*text.attributesAt(3).get<Font>(platform::fontAttributeName), boldFont());
    EXPECT_EQ(rendered("<br>x</br>").string(), "") << "a break's children are not shown";
}

TEST(RichTextRenderTest, LinksNeedAParsableHref) {
    const auto linked = rendered("<div>see <a href=\"https://example.com/a?b=1\">this <b>page</b></a></div>");
    EXPECT_EQ(linked.string(), "see this page");
    EXPECT_EQ(linked.attributesAt(0).find(platform::linkAttributeName), nullptr);
    for (std::size_t i : {4u, 9u}) {
        const auto* url = linked.attributesAt(i).get<platform::URL>(platform::linkAttributeName);
        ASSERT_NE(url, nullptr);
        EXPECT_EQ(url->absoluteString(), "https://example.com/a?b=1");
    }
    EXPECT_EQ(*linked.attributesAt(9).get<Font>(platform::fontAttributeName), boldFont());

    for (const std::string html : {"<div><a>x</a></div>", "<div><a href=\"not a url\">x</a></div>", "<a href=\"\">x</a>"}) {
        const auto plain = rendered(html);
        EXPECT_EQ(plain.string(), "x") << html;
        EXPECT_EQ(plain.attributesAt(0).find(platform::linkAttributeName), nullptr) << html;
    }
}

TEST(RichTextRenderTest, ImagesShowTheirSourceText) {
    const auto text = rendered("<div><b><img src=\"https://x.test/p.png\">ignored</img></b> <img>kept</img></div>");
    EXPECT_EQ(text.string(), "https://x.test/p.png kept");
    EXPECT_EQ(*text.attributesAt(0).get<Font>(platform::fontAttributeName), boldFont());
    EXPECT_EQ(*text.attributesAt(21).get<Font>(platform::fontAttributeName), richTextSystemFont());
    EXPECT_EQ(rendered("<img src=\"u\"/>").runs().front().attributes.get<Font>(platform::fontAttributeName)->fontName(),
              richTextSystemFont().fontName());
}

TEST(RichTextRenderTest, TrimsWhitespaceAndKeepsTheStyleOfTheRest) {
    const auto text = rendered("<div> <b>x</b> \n</div>");
    EXPECT_EQ(text.string(), "x");
    EXPECT_EQ(onlyFont(text), boldFont());

    const auto inner = rendered("<div>&#160;\t<i>a b</i>\n<br/>&#x2028;</div>");
    EXPECT_EQ(inner.string(), "a b");
    EXPECT_EQ(onlyFont(inner), italicFont());

    EXPECT_EQ(rendered("<div>  <br/> </div>").string(), "");
    EXPECT_EQ(rendered("<div>x\xE2\x80\x8B</div>").string(), "x\xE2\x80\x8B") << "a zero-width space is no whitespace";
}

TEST(RichTextRenderTest, SubtreesRenderWithTheStyleTheyAreGiven) {
    const auto tree = RichRender().parse("<div><b>x</b></div>");
    ASSERT_TRUE(tree);
    const TextAttributes code{{platform::fontAttributeName, codeFont()}};
    const auto& bold = *tree->children().front()->children().front();
    EXPECT_EQ(onlyFont(bold.render(code)), codeFont());
    EXPECT_EQ(onlyFont(bold.render({})), boldFont());
    EXPECT_EQ(bold.render({}).runs().front().attributes.size(), 1u) << "no default attributes below the root";
    EXPECT_EQ(onlyFont(tree->render(code)), boldFont()) << "the root ignores what it is given";
}

TEST(MessageCellTextTest, ShowsRenderedHtmlOnlyWhenItHasVisibleText) {
    testing_support::CapturedLog quiet;
    const auto plain = plainMessageText("plain body");
    EXPECT_EQ(plain.runs().size(), 1u);
    TextAttributes expected{{platform::fontAttributeName, richTextSystemFont()}};
    expected.merge(defaultTextAttributes());
    EXPECT_EQ(plain.runs().front().attributes, expected);

    EXPECT_EQ(messageCellText(true, "plain body", "<div><b>rich</b></div>").string(), "rich");
    // No html, html without visible text, or html that does not parse: the plain body.
    for (const std::optional<std::string>& html : {std::optional<std::string>(), std::optional<std::string>(""),
                                                   std::optional<std::string>("<div>  </div>"),
                                                   std::optional<std::string>("<div>a&nbsp;b</div>")}) {
        EXPECT_EQ(messageCellText(true, "plain body", html), plain) << html.value_or("(none)");
    }
    EXPECT_EQ(messageCellText(false, "plain body", "<div><b>rich</b></div>"), plain) << "a user's message stays plain";
}

} // namespace
