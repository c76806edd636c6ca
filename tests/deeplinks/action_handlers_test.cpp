#include "../entry/container_fixture.hpp"
#include "belvakit/deeplinks/create_request_action_handler.hpp"
#include "belvakit/deeplinks/help_center_action_handler.hpp"
#include "belvakit/entry/ui_configurations.hpp"

namespace {

using belvakit::CreateRequestActionHandler;
using platform::LogLevel;

class CreateRequestActionHandlerTest : public container_testing::ContainerTest {};

TEST_F(CreateRequestActionHandlerTest, AnswersOnlyItsOwnNameAndEqualsByName) {
    const CreateRequestActionHandler handler("open_new_request");
    EXPECT_TRUE(handler.canHandle("open_new_request"));
    EXPECT_FALSE(handler.canHandle("open_new_request2"));
    EXPECT_FALSE(handler.canHandle(""));
    EXPECT_EQ(handler.priority(), 0);
    EXPECT_TRUE(handler.isEqual(CreateRequestActionHandler("open_new_request", corvane::ActionDescription{"New", ""})));
    EXPECT_FALSE(handler.isEqual(CreateRequestActionHandler("other")));

    // Registering an equal handler replaces the first.
    auto core = startCore(corvane::Identity::createAnonymous("Ada", "ada@example.com"));
    core->actionHandlerRegistry().add(std::make_shared<CreateRequestActionHandler>("open_new_request"));
    core->actionHandlerRegistry().add(std::make_shared<CreateRequestActionHandler>("open_new_request"));
    EXPECT_EQ(core->actionHandlerRegistry().count(), 1u);
    EXPECT_NE(core->actionHandlerRegistry().handler("open_new_request"), nullptr);
}

TEST_F(CreateRequestActionHandlerTest, PresentsANewRequestInItsOwnNavigationStack) {
    startCore(corvane::Identity::createAnonymous("Ada", "ada@example.com"));
    CreateRequestActionHandler handler("open_new_request");
    const mirrowset::ConfigurationList configs{std::make_shared<belvakit::RequestUiConfiguration>()};
    handler.handle({{"controller", uikit::ViewController::Ptr(root)}, {"configs", configs}});
    run(1);

    const auto presented = std::dynamic_pointer_cast<uikit::NavigationController>(root->presentedViewController());
    ASSERT_NE(presented, nullptr);
    const auto container =
        std::dynamic_pointer_cast<belvakit::RequestContainerController>(presented->viewControllers().front());
    ASSERT_NE(container, nullptr);
    EXPECT_EQ(container->state.requestId, std::nullopt);
    EXPECT_TRUE(logged(LogLevel::debug, "Deeplinking to Create Request screen via action handler"));
}

TEST_F(CreateRequestActionHandlerTest, ADictionaryOfTheWrongShapeLogsAnErrorAndPresentsNothing) {
    CreateRequestActionHandler handler("open_new_request");
    const std::string error = "ActionInfo dictionary is not formatted correctly. Cannot handle Action.";
    const mirrowset::ConfigurationList configs;
    handler.handle({{"controller", uikit::ViewController::Ptr(root)}, {"configs", std::string("not a list")}});
    handler.handle({{"controller", std::string("not a screen")}, {"configs", configs}});
    handler.handle({{"configs", configs}});
    handler.handle({});
    run(0.5);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_EQ(log.count(LogLevel::error, error), 4u);
}

} // namespace

namespace {

using belvakit::HelpCenterActionHandler;

class HelpCenterActionHandlerTest : public container_testing::ContainerTest {
protected:
    std::map<std::string, std::any> info(const std::string& link) {
        return {{"url", *platform::URL::parse(link)},
                {"controller", uikit::ViewController::Ptr(root)},
                {"configs", mirrowset::ConfigurationList{}}};
    }
    const std::string account = "https://belva.example.com";
};

TEST_F(HelpCenterActionHandlerTest, WantsLinksUnderTheAccountByTextAndEqualsByAccount) {
    const HelpCenterActionHandler handler(account);
    EXPECT_TRUE(handler.canHandle(account + "/hc/en-us/articles/1"));
    EXPECT_TRUE(handler.canHandle(account + "x.org/anything"));
    EXPECT_FALSE(handler.canHandle("https://elsewhere.example.com/hc/articles/1"));
    EXPECT_FALSE(handler.canHandle("not a url at all"));
    EXPECT_EQ(handler.priority(), 10);
    EXPECT_EQ(handler.actionDescription(), std::nullopt);
    EXPECT_TRUE(handler.isEqual(HelpCenterActionHandler(account)));
    EXPECT_FALSE(handler.isEqual(HelpCenterActionHandler(account + "/other")));
}

TEST_F(HelpCenterActionHandlerTest, AStarterTakesTheParsedIdAndOtherwiseTheArticleIsShown) {
    HelpCenterActionHandler handler(account);
    std::vector<std::int64_t> started;
    handler.helpCenterStarter = [&](std::int64_t id, const uikit::ViewController::Ptr& controller,
                                    const mirrowset::ConfigurationList&) {
        EXPECT_EQ(controller, root);
        started.push_back(id);
    };
    handler.handle(info(account + "/hc/en-us/articles/360-how-to"));
    EXPECT_EQ(started, std::vector<std::int64_t>{360});

    startCore(corvane::Identity::createAnonymous("Ada", "ada@example.com"));
    HelpCenterActionHandler plain(account);
    plain.handle(info(account + "/hc/articles/360002"));
    run(1);
    ASSERT_EQ(navigation->viewControllers().size(), 2u);
    EXPECT_EQ(navigation->viewControllers().back()->className(), "CRVArticleViewController");
}

TEST_F(HelpCenterActionHandlerTest, MissingOrWrongTypedValuesAndLinksWithoutAnArticleReturnQuietly) {
    HelpCenterActionHandler handler(account);
    int started = 0;
    handler.helpCenterStarter = [&](std::int64_t, const uikit::ViewController::Ptr&, const mirrowset::ConfigurationList&) {
        ++started;
    };
    auto noURL = info(account + "/hc/articles/1");
    noURL.erase("url");
    handler.handle(noURL);
    auto textURL = info(account + "/hc/articles/1");
    textURL["url"] = std::string(account + "/hc/articles/1");
    handler.handle(textURL);
    auto noConfigs = info(account + "/hc/articles/1");
    noConfigs.erase("configs");
    handler.handle(noConfigs);
    handler.handle(info(account + "/hc/en-us/articles/abc-title"));
    handler.handle(info(account + "/hc/en-us/sections/12"));
    // Too short for an article: an error line, and nothing opens.
    handler.handle(info(account + "/hc"));
    EXPECT_EQ(started, 0);
    EXPECT_EQ(log.messages(LogLevel::error).size(), 1u);
    EXPECT_EQ(navigation->viewControllers().size(), 1u);
}

} // namespace
