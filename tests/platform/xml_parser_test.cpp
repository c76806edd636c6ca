#include "platform/xml_parser.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Writes every event as one line, joining adjacent character chunks so tests need not know how
// the parser splits text.
class Recorder final : public platform::XmlParserDelegate {
public:
    void didStartElement(platform::XmlParser& parser, std::string_view name, platform::XmlAttributes attributes) override {
        std::string line = "start " + std::string(name);
        for (const auto& [key, value] : attributes) line += " " + key + "=" + value;
        add(line);
        if (name == abortAt) parser.abortParsing();
    }
    void didEndElement(platform::XmlParser&, std::string_view name) override { add("end " + std::string(name)); }
    void foundCharacters(platform::XmlParser&, std::string_view text) override { addText("text ", text); }
    void foundCDATA(platform::XmlParser&, std::string_view block) override { addText("cdata ", block); }
    void parseErrorOccurred(platform::XmlParser&, const platform::XmlParseError& error) override {
        add("error");
        errors.push_back(error);
    }

    std::vector<std::string> events;
    std::vector<platform::XmlParseError> errors;
    std::string abortAt;

private:
    void add(std::string line) { events.push_back(std::move(line)); }
    void addText(const std::string& kind, std::string_view text) {
        if (!events.empty() && events.back().starts_with(kind))
            events.back() += text;
        else
            add(kind + std::string(text));
    }
};

struct Outcome {
    bool ok;
    std::vector<std::string> events;
    std::vector<platform::XmlParseError> errors;
};

Outcome parse(const std::string& document, const std::string& abortAt = "") {
    Recorder recorder;
    recorder.abortAt = abortAt;
    platform::XmlParser parser(document);
    parser.setDelegate(&recorder);
    const bool ok = parser.parse();
    EXPECT_EQ(ok, !parser.parserError().has_value());
    return {ok, recorder.events, recorder.errors};
}

// Resolved text, names as written (no namespace processing), CDATA apart from characters.
TEST(XmlParserTest, ReportsElementsAttributesAndTextInOrder) {
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"<a x=\"1\" y='2'>t &amp; &lt;u&gt; &#233;&#x41;<b/>\nz</a>",
         {"start a x=1 y=2", "text t & <u> \xC3\xA9" "A", "start b", "end b", "text \nz", "end a"}},
        {"<Ns:Root xmlns:Ns=\"urn:x\"><DIV Href=\"h\">x</DIV></Ns:Root>",
         {"start Ns:Root xmlns:Ns=urn:x", "start DIV Href=h", "text x", "end DIV", "end Ns:Root"}},
        {"<a><![CDATA[<x>]]>y</a>", {"start a", "cdata <x>", "text y", "end a"}},
    };
    for (const auto& [document, events] : cases) {
        const auto outcome = parse(document);
        EXPECT_TRUE(outcome.ok) << document;
        EXPECT_EQ(outcome.events, events);
    }
}

TEST(XmlParserTest, MalformedDocumentsStopAtTheFirstErrorWithOneReportOfWhatAndWhere) {
    for (const std::string document :
         {"", "text", "a<b>c</b>", "<p>a</p><p>b</p>", "<br>", "<a></b>", "<a>&</a>", "<a>&nbsp;</a>", "<a>\xFF</a>"}) {
        SCOPED_TRACE(document);
        const auto outcome = parse(document);
        EXPECT_FALSE(outcome.ok);
        ASSERT_EQ(outcome.errors.size(), 1u);
        EXPECT_EQ(outcome.events.back(), "error");
        EXPECT_FALSE(outcome.errors.front().description.empty());
    }
    // The error says what and where.
    const auto outcome = parse("<a>\n  &nbsp;</a>");
    ASSERT_EQ(outcome.errors.size(), 1u);
    EXPECT_EQ(outcome.errors.front().line, 2u);
    EXPECT_THAT(outcome.errors.front().description, HasSubstr("undefined entity"));
    EXPECT_THAT(outcome.errors.front().description, HasSubstr("line 2"));
}

TEST(XmlParserTest, OnlyPredefinedEntitiesExist) {
    // A declared entity would otherwise expand; with an external subset an unknown one is skipped silently.
    for (const std::string document : {"<!DOCTYPE a [<!ENTITY e \"boom\">]><a>&e;</a>",
                                       "<!DOCTYPE a SYSTEM \"a.dtd\"><a>x&nbsp;y</a>"}) {
        SCOPED_TRACE(document);
        const auto outcome = parse(document);
        EXPECT_FALSE(outcome.ok);
        EXPECT_THAT(outcome.events, testing::Not(testing::Contains(HasSubstr("boom"))));
        EXPECT_THAT(outcome.events, testing::Not(testing::Contains(HasSubstr("y"))));
    }
    EXPECT_TRUE(parse("<!DOCTYPE html><a>x</a>").ok);
}

TEST(XmlParserTest, AbortFromAnEventEndsTheParseWithNothingAfterItAndAParserRunsOnce) {
    const auto outcome = parse("<a><b/><c>x</c></a>", "b");
    EXPECT_FALSE(outcome.ok);
    EXPECT_THAT(outcome.events, ElementsAre("start a", "start b", "error"));

    // A parser parses only once.
    Recorder recorder;
    platform::XmlParser parser("<a>x</a>");
    parser.setDelegate(&recorder);
    EXPECT_TRUE(parser.parse());
    EXPECT_FALSE(parser.parse());
    EXPECT_THAT(recorder.events, ElementsAre("start a", "text x", "end a"));
}

} // namespace
