#include "belvakit/entry/ui_configurations.hpp"
#include "mirrowset/configurations.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {
std::shared_ptr<RequestUiConfiguration> requestConfiguration() {
    auto configuration = std::make_shared<RequestUiConfiguration>();
    configuration->subject = "Printer";
    configuration->tags = {"ios", "printer"};
    configuration->customFields = {{360001, "blue"}};
    configuration->ticketFormID = 42;
    configuration->fileAttachments = {RequestAttachment("log.txt", "line", FileType::txt)};
    return configuration;
}
} // namespace

TEST(Configurations, TheFirstOfATypeWinsAndAMissingOneGainsADefaultAtTheEnd) {
    mirrowset::Configurations configurations;
    EXPECT_EQ(configurations.configuration<RequestUiConfiguration>(), nullptr);
    const auto configuration = configurations.configurationAddingDefault<RequestUiConfiguration>();
    ASSERT_NE(configuration, nullptr);
    EXPECT_TRUE(configuration->subject.empty());
    EXPECT_FALSE(configuration->ticketFormID);
    EXPECT_EQ(configurations.list().size(), 1u);
    configurations.addDefaultConfigIfNeeded<RequestUiConfiguration>();
    EXPECT_EQ(configurations.list().size(), 1u);

    // The first of a type wins and defaults go at the end.
    auto first = requestConfiguration();
    mirrowset::Configurations mixed({std::make_shared<ArticleUiConfiguration>(), first,
                                     std::make_shared<RequestUiConfiguration>()});
    EXPECT_EQ(mixed.configuration<RequestUiConfiguration>(), first);
    mixed.addDefaultConfigIfNeeded<HelpCenterUiConfiguration>();
    ASSERT_EQ(mixed.list().size(), 4u);
    EXPECT_NE(std::dynamic_pointer_cast<HelpCenterUiConfiguration>(mixed.list().back()), nullptr);
}

TEST(UiConfigurations, RequestsAndArticlesAreEqualByEveryFieldHelpCentresAsObjects) {
    EXPECT_TRUE(requestConfiguration()->isEqual(*requestConfiguration()));
    auto formZero = requestConfiguration();
    formZero->ticketFormID = 0;
    auto formAbsent = requestConfiguration();
    formAbsent->ticketFormID.reset();
    EXPECT_FALSE(formZero->isEqual(*formAbsent));

    auto otherField = requestConfiguration();
    otherField->customFields[0].value = "red";
    EXPECT_FALSE(requestConfiguration()->isEqual(*otherField));
    auto otherFile = requestConfiguration();
    otherFile->fileAttachments[0] = RequestAttachment("log.txt", "other line", FileType::txt);
    EXPECT_FALSE(requestConfiguration()->isEqual(*otherFile));
    auto otherTags = requestConfiguration();
    otherTags->tags.pop_back();
    EXPECT_FALSE(requestConfiguration()->isEqual(*otherTags));
    EXPECT_FALSE(requestConfiguration()->isEqual(ArticleUiConfiguration()));

    EXPECT_TRUE(mirrowset::Configurations({requestConfiguration()}) ==
                mirrowset::Configurations({requestConfiguration()}));
    EXPECT_FALSE(mirrowset::Configurations({requestConfiguration()}) == mirrowset::Configurations({otherTags}));

    ArticleUiConfiguration article, otherArticle;
    EXPECT_TRUE(article.isEqual(otherArticle));
    otherArticle.showContactOptions = false;
    EXPECT_FALSE(article.isEqual(otherArticle));
    HelpCenterUiConfiguration helpCenter;
    EXPECT_TRUE(helpCenter.isEqual(helpCenter));
    EXPECT_FALSE(helpCenter.isEqual(HelpCenterUiConfiguration())) << "compared as objects";
}
