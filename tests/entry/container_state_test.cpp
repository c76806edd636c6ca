#include "belvakit/entry/request_container_state.hpp"
#include "corvane/corvane.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {

TEST(RequestContainerState, ScreenTypesCompareByCaseAndTheReducerStartsAfresh) {
    EXPECT_EQ(RequestScreenType::noConversation(true, false), RequestScreenType::noConversation(false, true));
    EXPECT_NE(RequestScreenType::noConversation(true, true), RequestScreenType::loading());

    RequestContainerReducer reducer;
    RequestContainerState shown;
    shown.requestScreenType = RequestScreenType::conversation();
    shown.settings = dastrel::SupportSettings{};
    RequestContainerActions::Initalize initialize;
    initialize.requestId = "3";
    initialize.ticketClosed = true;
    const auto fresh = reducer.reduce(shown, initialize);
    ASSERT_TRUE(fresh);
    EXPECT_EQ(fresh->requestScreenType, RequestScreenType::loading());
    EXPECT_FALSE(fresh->settings);
    EXPECT_EQ(fresh->requestId, "3");
    EXPECT_TRUE(fresh->ticketClosed);

    RequestContainerActions::SettingsFetched fetched;
    fetched.screenType = RequestScreenType::noConversation(true, false);
    fetched.settings.systemMessage = "hello";
    const auto withSettings = reducer.reduce(*fresh, fetched);
    ASSERT_TRUE(withSettings);
    EXPECT_TRUE(withSettings->requestScreenType.requiresName);
    EXPECT_EQ(withSettings->settings->systemMessage, "hello");
    EXPECT_EQ(withSettings->requestId, "3");

    EXPECT_FALSE(reducer.reduce(*withSettings, RequestContainerActions::GetSettings{}));
    EXPECT_FALSE(reducer.reduce(*withSettings, RequestContainerActions::SettingsFetchFailed{}))
        << "a failed fetch leaves the screen as it is";
    RequestContainerActions::SettingsFetchFailed ended;
    ended.screenType = RequestScreenType::end();
    EXPECT_EQ(reducer.reduce(*withSettings, ended)->requestScreenType, RequestScreenType::end());
}

class IdentityUpdate : public ::testing::Test {
protected:
    void SetUp() override { core = corvane::Corvane::initialize({}); }
    void TearDown() override { corvane::Corvane::reset(); }
    const corvane::Anonymous* anonymous() const { return dynamic_cast<const corvane::Anonymous*>(core->identity().get()); }

    testing_support::CapturedLog log;
    std::shared_ptr<corvane::Corvane> core;
};

TEST_F(IdentityUpdate, KeepsWhatTheIdentityHadWhereTheFormGaveNothing) {
    core->setIdentity(corvane::Identity::createAnonymous("Ann", std::nullopt));
    updateIdentity(std::nullopt, "ann@example.com");
    ASSERT_TRUE(anonymous());
    EXPECT_EQ(anonymous()->name(), "Ann");
    EXPECT_EQ(anonymous()->email(), "ann@example.com");
    EXPECT_EQ(log.messages(platform::LogLevel::debug),
              (std::vector<std::string>{"Anonymous identity found.", "Found name: Ann in existing identity.",
                                        "No conversations screen; Updating identity with: Ann ann@example.com"}));

    log.clear();
    updateIdentity("Bo", "");
    EXPECT_EQ(anonymous()->name(), "Bo");
    EXPECT_EQ(anonymous()->email(), "ann@example.com");

    // Nothing given, nothing done.
    log.clear();
    const auto before = core->identity();
    updateIdentity(std::nullopt, "");
    EXPECT_EQ(core->identity(), before);
    EXPECT_TRUE(log.records().empty());
}

TEST_F(IdentityUpdate, LeavesAJwtAsItIsAndGivesAMissingIdentityTheFormsValues) {
    core->setIdentity(corvane::Identity::createJwt("token"));
    const auto jwt = core->identity();
    updateIdentity("Ann", "ann@example.com");
    EXPECT_EQ(core->identity(), jwt);
    EXPECT_EQ(log.messages(platform::LogLevel::debug), std::vector<std::string>{"JWT is set, not updating"});

    core->setIdentity(nullptr);
    updateIdentity("Ann", std::nullopt);
    ASSERT_TRUE(anonymous());
    EXPECT_EQ(anonymous()->name(), "Ann");
    EXPECT_FALSE(anonymous()->email());
}

} // namespace
