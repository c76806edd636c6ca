#include "belvakit/deeplinks/help_center_link.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

namespace {

using belvakit::parseHelpCenterArticleId;
using platform::LogLevel;
using testing_support::CapturedLog;

const std::string account = "https://belva.example.com";

TEST(HelpCenterLink, ReadsTheArticleIdOfEveryArticleLinkShape) {
    CapturedLog log;
    EXPECT_EQ(parseHelpCenterArticleId(account + "/hc/en-us/articles/123-title", account), 123);
    EXPECT_EQ(parseHelpCenterArticleId(account + "/hc/articles/123", account), 123);
    EXPECT_EQ(parseHelpCenterArticleId(account + "/hc/articles/77-x/extra/parts", account), 77);
    EXPECT_EQ(parseHelpCenterArticleId(account + "/hc/fr/articles/9223372036854775807", account),
              9223372036854775807LL);
    // The account URL is a text prefix, so a longer host name still reaches the path.
    EXPECT_EQ(parseHelpCenterArticleId(account + "x.org/hc/articles/5", account), 5);
    EXPECT_TRUE(log.records().empty());
}

// Other hosts and ids that are no numbers give none quietly; other help center pages say so verbosely.
TEST(HelpCenterLink, OtherLinksGiveNoneWithAtMostAVerboseLine) {
    CapturedLog log;
    EXPECT_EQ(parseHelpCenterArticleId("https://elsewhere.example.com/hc/articles/1", account), std::nullopt);
    EXPECT_EQ(parseHelpCenterArticleId(account + "/hc/en-us/articles/abc-title", account), std::nullopt);
    EXPECT_EQ(parseHelpCenterArticleId(account + "/hc/en-us/articles/99999999999999999999", account), std::nullopt);
    EXPECT_EQ(parseHelpCenterArticleId("not a url", account), std::nullopt);
    EXPECT_TRUE(log.records().empty());
    for (const std::string path : {"/hc/e/articles/123", "/hc/en-us/sections/123", "/kb/en-us/articles/1-a",
                                   "/hc/en-us/articles", "/hc/x/articles/1/2/3/4"}) {
        EXPECT_EQ(parseHelpCenterArticleId(account + path, account), std::nullopt) << path;
    }
    const auto verbose = log.messages(LogLevel::verbose);
    ASSERT_EQ(verbose.size(), 5u);
    EXPECT_EQ(verbose[0], "Not a Help Center link: " + account + "/hc/e/articles/123");
    EXPECT_TRUE(log.messages(LogLevel::error).empty());
}

// Too short to hold an article: declined with an error, never a stop of the process.
TEST(HelpCenterLink, LinksTooShortForAnArticleAreLoggedAsErrorsAndDeclined) {
    CapturedLog log;
    for (const std::string path : {"", "/", "/hc", "/hc/articles"}) {
        EXPECT_EQ(parseHelpCenterArticleId(account + path, account), std::nullopt) << path;
    }
    EXPECT_EQ(log.messages(LogLevel::error).size(), 4u);
    EXPECT_TRUE(log.messages(LogLevel::verbose).empty());
}

} // namespace
