#include "../entry/container_fixture.hpp"
#include "belvakit/deeplinks/create_request_action_handler.hpp"
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
    EXPECT_EQ(std::ranges::count(log.messages(LogLevel::error), error), 4);
}

} // namespace
