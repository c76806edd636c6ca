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

TEST(Configurations, AnEmptyListGainsADefaultOfTheWantedType) {
    mirrowset::Configurations configurations;
    EXPECT_EQ(configurations.configuration<RequestUiConfiguration>(), nullptr);
    const auto configuration = configurations.configurationAddingDefault<RequestUiConfiguration>();
    ASSERT_NE(configuration, nullptr);
    EXPECT_TRUE(configuration->subject.empty());
    EXPECT_FALSE(configuration->ticketFormID);
    EXPECT_EQ(configurations.list().size(), 1u);
    configurations.addDefaultConfigIfNeeded<RequestUiConfiguration>();
    EXPECT_EQ(configurations.list().size(), 1u);
}

TEST(Configurations, TheFirstOfATypeWinsAndDefaultsGoAtTheEnd) {
    auto first = requestConfiguration();
    auto second = std::make_shared<RequestUiConfiguration>();
    auto article = std::make_shared<ArticleUiConfiguration>();
    mirrowset::Configurations configurations({article, first, second});
    EXPECT_EQ(configurations.configuration<RequestUiConfiguration>(), first);
    configurations.addDefaultConfigIfNeeded<HelpCenterUiConfiguration>();
    ASSERT_EQ(configurations.list().size(), 4u);
    EXPECT_NE(std::dynamic_pointer_cast<HelpCenterUiConfiguration>(configurations.list().back()), nullptr);
}

TEST(RequestUiConfiguration, EqualByEveryField) {
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
}

TEST(ArticleAndHelpCenterConfigurations, CompareAndForwardAsDeclared) {
    ArticleUiConfiguration article;
    ArticleUiConfiguration same;
    EXPECT_TRUE(article.isEqual(same));
    same.showContactOptions = false;
    EXPECT_FALSE(article.isEqual(same));
    EXPECT_EQ(&article.objcEngines(), &article.engines);

    HelpCenterUiConfiguration helpCenter;
    HelpCenterUiConfiguration other;
    EXPECT_TRUE(helpCenter.isEqual(helpCenter));
    EXPECT_FALSE(helpCenter.isEqual(other)) << "compared as objects";
    helpCenter.setLabels(std::vector<std::string>{"faq"});
    helpCenter.setGroupType(dastrel::CRVHelpCenterOverviewGroupType::category);
    helpCenter.setGroupIds({7, 8});
    EXPECT_EQ(helpCenter.overviewContentModel.labels, std::vector<std::string>{"faq"});
    EXPECT_EQ(helpCenter.overviewContentModel.groupType, dastrel::CRVHelpCenterOverviewGroupType::category);
    EXPECT_EQ(helpCenter.overviewContentModel.groupIds, (std::vector<std::int64_t>{7, 8}));
}
