#include "platform/regular_expression.hpp"
#include "platform/trimming.hpp"
#include "platform/url.hpp"
#include "platform/url_opener.hpp"

#include <boost/url/parse.hpp>
#include <gtest/gtest.h>

#include <random>

using namespace platform;

TEST(URL, ParsesAbsoluteAndRelativeReferencesAndRefusesEmptyOrMalformedText) {
    const auto absolute = URL::parse("HTTPS://example.com/help?from=app#top");
    ASSERT_TRUE(absolute);
    EXPECT_EQ(absolute->absoluteString(), "HTTPS://example.com/help?from=app#top");
    EXPECT_EQ(absolute->scheme(), "https");

    const auto relative = URL::parse("help/page");
    ASSERT_TRUE(relative);
    EXPECT_EQ(relative->scheme(), "");

    for (const char* good : {"u", "/path", "mailto:a@b.c", "%41"}) EXPECT_TRUE(URL::parse(good)) << good;
    EXPECT_EQ(URL::parse("u")->absoluteString(), "u");
    for (const char* bad : {"", "not a url", "http://exa mple.com", "100%", "http://[::1", "a\nb", "%zz", "<x>"})
        EXPECT_FALSE(URL::parse(bad)) << bad;
}

// Common links skip the full grammar; whatever the way, the answer must be the grammar's.
TEST(URL, AcceptsExactlyWhatTheUriGrammarAccepts) {
    const std::vector<std::string> heads{"https://", "http://", "a+b.c-d://", "1x://",
                                         "x_y://",   "mailto:", "//",         "",      "h:/"};
    const std::string tails = "aZ09-._~!$&'()*+,;=:@/?#%[] \"<>\\^`{|}\x7F\xC3\xA9";
    std::mt19937 random(20261122);
    for (int i = 0; i < 20000; ++i) {
        std::string text = heads[random() % heads.size()];
        for (auto length = random() % 14; length > 0; --length) text += tails[random() % tails.size()];
        const bool grammar = !text.empty() && boost::urls::parse_uri_reference(text).has_value();
        ASSERT_EQ(URL::parse(text).has_value(), grammar) << text;
    }
    EXPECT_TRUE(URL::parse("https://help.example.com/articles/360001234?a=b&c=d#top"));
    EXPECT_FALSE(URL::parse("https://help.example.com/a#b#c"));
}

// Every test opens links through this seam, so it must never be left empty.
TEST(URL, PathComponentsStartWithTheRootAndSkipEmptySegmentsAndDecode) {
    using Parts = std::vector<std::string>;
    EXPECT_EQ(URL::parse("https://h.example/hc/en-us/articles/12-a?x=1#f")->pathComponents(),
              (Parts{"/", "hc", "en-us", "articles", "12-a"}));
    EXPECT_EQ(URL::parse("https://h.example")->pathComponents(), Parts{});
    EXPECT_EQ(URL::parse("https://h.example/")->pathComponents(), Parts{"/"});
    EXPECT_EQ(URL::parse("https://h.example//a//b/")->pathComponents(), (Parts{"/", "a", "b"}));
    EXPECT_EQ(URL::parse("a/b%20c")->pathComponents(), (Parts{"a", "b c"}));
}

TEST(URLOpener, SharedOpenerIsHeadlessUntilSwappedAndNeverNull) {
    ASSERT_NE(std::dynamic_pointer_cast<HeadlessURLOpener>(URLOpener::shared()), nullptr);
    auto recorder = std::make_shared<HeadlessURLOpener>();
    auto previous = URLOpener::setShared(recorder);
    URLOpener::shared()->open(*URL::parse("https://a.example"));
    URLOpener::shared()->open(*URL::parse("mailto:someone@example.com"));
    EXPECT_EQ(recorder->openedURLs(),
              (std::vector<URL>{*URL::parse("https://a.example"), *URL::parse("mailto:someone@example.com")}));
    EXPECT_EQ(URLOpener::setShared(nullptr), recorder);
    EXPECT_NE(URLOpener::shared(), nullptr);
    URLOpener::setShared(previous);
}

TEST(RegularExpression, MatchesOnlyTheWholeText) {
    const auto digits = RegularExpression::compile("[0-9]+");
    ASSERT_TRUE(digits);
    EXPECT_TRUE(digits->matchesWhole("2024"));
    EXPECT_FALSE(digits->matchesWhole("x2024"));
    EXPECT_FALSE(digits->matchesWhole("2024x"));
    EXPECT_FALSE(digits->matchesWhole(""));

    const auto accents = RegularExpression::compile("é{2}");
    ASSERT_TRUE(accents);
    EXPECT_TRUE(accents->matchesWhole("éé"));  // counts characters, not bytes
    EXPECT_FALSE(accents->matchesWhole("é"));

    EXPECT_FALSE(RegularExpression::compile("(unclosed"));
    EXPECT_FALSE(RegularExpression::compile("[z-a]"));
}

TEST(Trimming, RemovesUnicodeSpaceAndLineBreaksAtBothEndsOnly) {
    EXPECT_EQ(trimmingWhitespaceAndNewlines("  two  words \t\r\n"), "two  words");
    EXPECT_EQ(trimmingWhitespaceAndNewlines("\xC2\xA0x\xE3\x80\x80"), "x");          // no-break and ideographic space
    EXPECT_EQ(trimmingWhitespaceAndNewlines("\xE2\x80\xA8line\xC2\x85"), "line");    // line separator, next line
    EXPECT_EQ(trimmingWhitespaceAndNewlines(" \n\t "), "");
    EXPECT_EQ(trimmingWhitespaceAndNewlines(""), "");
    EXPECT_EQ(trimmingWhitespaceAndNewlines(" \xFF "), "\xFF");  // a broken byte is kept as content
    EXPECT_EQ(trimmingWhitespaceAndNewlines("\xE2\x80\x8B"), "\xE2\x80\x8B");  // zero-width space is no space
}
