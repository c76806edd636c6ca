#include "belvakit/richtext/element_factory.hpp"
#include "belvakit/richtext/elements.hpp"
#include "belvakit/richtext/rich_render.hpp"
#include "platform/type_name.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

namespace {

using namespace belvakit;

// `Kind"content"[children]`, e.g. Root[Div[Text"a" Bold[Text"c"]]].
std::string describe(const Element& element) {
    std::string out = platform::unqualifiedName(typeid(element));
    if (const auto* text = dynamic_cast<const Text*>(&element); text && !text->content().empty())
        out += "\"" + std::string(text->content()) + "\"";
    if (!element.children().empty()) {
        out += "[";
        for (std::size_t i = 0; i < element.children().size(); ++i)
            out += (i ? " " : "") + describe(*element.children()[i]);
        out += "]";
    }
    return out;
}

std::string parsed(const std::string& html) {
    testing_support::CapturedLog quiet;
    const auto tree = RichRender().parse(html);
    return tree ? describe(*tree) : "nil";
}

TEST(RichRenderParseTest, BuildsTheTreeInDocumentOrderWithUnknownTagsAsText) {
    EXPECT_EQ(parsed("<div>a<b>c</b>d</div>"), "Root[Div[Text\"a\" Bold[Text\"c\"] Text\"d\"]]");
    EXPECT_EQ(parsed("<div><i>x<code>y</code></i><blockquote>q</blockquote><a>l</a></div>"),
              "Root[Div[Italic[Text\"x\" Code[Text\"y\"]] Quote[Text\"q\"] Link[Text\"l\"]]]");
    EXPECT_EQ(parsed("<div><br/><img src=\"u\"/></div>"), "Root[Div[Break Image]]");
    // Unknown tags become an empty Text holding their content.
    EXPECT_EQ(parsed("<p>x</p>"), "Root[Text[Text\"x\"]]");
    EXPECT_EQ(parsed("<ul><li>x</li></ul>"), "Root[Text[Text[Text\"x\"]]]");
}

TEST(RichRenderParseTest, FactoryMatchesTagNamesExactly) {
    const ConcreteElementFactory factory;
    const auto kind = [&](std::string_view tag) { return platform::unqualifiedName(typeid(*factory.element(tag))); };
    const std::vector<std::pair<std::string, std::string>> expected{
        {"b", "Bold"},     {"i", "Italic"}, {"code", "Code"}, {"blockquote", "Quote"}, {"br", "Break"},
        {"div", "Div"},    {"a", "Link"},   {"img", "Image"}, {"h1", "Bold"},          {"h2", "Bold"},
        {"h3", "Bold"},    {"h4", "Bold"},  {"h5", "Bold"},   {"h6", "Bold"},          {"h7", "Text"},
        {"strong", "Text"}, {"em", "Text"}, {"span", "Text"}, {"ol", "Text"},          {"I", "Text"},
        {"B", "Text"},     {"", "Text"},    {"bb", "Text"},   {"a ", "Text"}};
    const std::unique_ptr<NodeArena, NodeArenaRelease> arena(NodeArena::make());
    const auto kindInArena = [&](std::string_view tag) {
        return platform::unqualifiedName(typeid(*factory.element(tag, *arena)));
    };
    for (const auto& [tag, name] : expected) {
        EXPECT_EQ(kind(tag), name) << "<" << tag << ">";
        EXPECT_EQ(kindInArena(tag), name) << "<" << tag << "> in an arena";
    }
}

TEST(RichRenderParseTest, KeepsTextVerbatimBreakIsANewlineAndAttributesAreStored) {
    testing_support::CapturedLog quiet;
    const auto tree = RichRender().parse(
        "<div id=\"d\"><br class=\"c\"/><a href=\"h\" title=\"t\">a &amp; b\n  &#233;</a></div>");
    ASSERT_TRUE(tree);
    EXPECT_TRUE(tree->attributes().empty());
    const auto& div = *tree->children().front();
    EXPECT_EQ(div.attributes(), (ElementAttributes{{"id", "d"}}));
    EXPECT_EQ(dynamic_cast<const Break&>(*div.children()[0]).content(), "\n");
    EXPECT_EQ(div.children()[0]->attributes(), (ElementAttributes{{"class", "c"}}));
    EXPECT_EQ(div.children()[1]->attributes(), (ElementAttributes{{"href", "h"}, {"title", "t"}}));
    std::string joined;
    for (const auto& child : div.children()[1]->children()) {
        joined += dynamic_cast<Text&>(*child).content();
        EXPECT_TRUE(child->attributes().empty());
    }
    EXPECT_EQ(joined, "a & b\n  \xC3\xA9");
}

TEST(RichRenderParseTest, ParentIsABackReferenceThatOwnsNothing) {
    testing_support::CapturedLog quiet;
    std::shared_ptr<Element> text;
    std::weak_ptr<Element> root;
    {
        const auto tree = RichRender().parse("<div><b>x</b></div>");
        ASSERT_TRUE(tree);
        root = tree;
        EXPECT_EQ(tree->parent(), nullptr);
        const auto div = tree->children().front();
        const auto bold = div->children().front();
        text = bold->children().front();
        EXPECT_EQ(div->parent(), tree.get());
        EXPECT_EQ(bold->parent(), div.get());
        EXPECT_EQ(text->parent(), bold.get());
    }
    EXPECT_TRUE(root.expired()) << "a held child keeps no ancestor alive";
    EXPECT_EQ(text->parent(), nullptr) << "and forgets its parent once that is gone";
}

TEST(RichRenderParseTest, ANodeOrChildListKeptPastItsTreeStaysWhole) {
    testing_support::CapturedLog quiet;
    std::string html = "<div>";
    for (int i = 0; i < 300; ++i) html += "<b>" + std::to_string(i) + "</b>";
    html += "</div>";
    auto tree = RichRender().parse(html);
    ASSERT_TRUE(tree);
    ElementList kept = std::move(tree->children().front()->children());
    const auto grown = tree->children().front();
    for (int i = 0; i < 40; ++i) grown->children().push_back(std::make_shared<Text>("late"));
    tree.reset();

    ASSERT_EQ(kept.size(), 300u);
    for (std::size_t i = 0; i < kept.size(); ++i)
        EXPECT_EQ(describe(*kept[i]), "Bold[Text\"" + std::to_string(i) + "\"]");
    EXPECT_EQ(grown->parent(), nullptr);
    ASSERT_EQ(grown->children().size(), 40u);
    EXPECT_EQ(describe(*grown->children().back()), "Text\"late\"");
    grown->children().clear();
    kept.clear();
}

TEST(RichRenderParseTest, AnythingThatIsNotOneWellFormedElementGivesNil) {
    for (const std::string html : {"a<b>c</b>", "", "<br>", "<img src=\"u\">", "<p>a</p><p>b</p>", "<div>a&nbsp;b</div>",
                                   "<div>a & b</div>", "<b><i>x</b></i>", "<div>x", "  ", "<div>x</div>tail"}) {
        EXPECT_EQ(parsed(html), "nil") << html;
    }
    // A parser that keeps reporting after its error is declined, not trusted: still no tree.
    RichRender render;
    EXPECT_EQ(render.parse("<div>x"), nullptr);
    platform::XmlParser late("<b/>");
    render.didStartElement(late, "b", {});
    render.foundCharacters(late, "text");
    render.didEndElement(late, "b");
    EXPECT_NE(render.parse("<div>x</div>"), nullptr);
    EXPECT_EQ(RichRender::attributedString("<div>x"), std::nullopt);
}

TEST(RichRenderParseTest, DeepNestingParsesRendersAndFreesWithoutRecursion) {
    constexpr int depth = 200000;
    std::string html;
    for (int i = 0; i < depth; ++i) html += i % 2 ? "<b>" : "<div>";
    html += "x";
    for (int i = depth - 1; i >= 0; --i) html += i % 2 ? "</b>" : "</div>";

    testing_support::CapturedLog quiet;
    const auto text = RichRender::attributedString(html);
    ASSERT_TRUE(text);
    EXPECT_EQ(text->string(), "x");
}

} // namespace
