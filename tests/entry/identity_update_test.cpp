#include "belvakit/entry/request_container_state.hpp"
#include "corvane/corvane.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {

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
