#include "belvakit/engine/support_engine_settings_fetcher.hpp"

#include <gtest/gtest.h>

using belvakit::SupportEngineSettingsFetcher;

namespace {

// Answers at once with what it was given.
class FixedConversationsSettings final : public dastrel::ConversationsSettingsProviderProtocol {
public:
    explicit FixedConversationsSettings(std::optional<dastrel::CRVConversationsSettings> answer) : answer_(answer) {}
    void getConversationsSettings(std::function<void(std::optional<dastrel::CRVConversationsSettings>)> completion) override {
        completion(answer_);
    }

private:
    std::optional<dastrel::CRVConversationsSettings> answer_;
};

struct Outcome {
    bool emailRequired;
    bool conversationsEnabled;
    bool operator==(const Outcome&) const = default;
};

Outcome ask(std::optional<dastrel::CRVConversationsSettings> settings, std::shared_ptr<corvane::Identity> identity) {
    SupportEngineSettingsFetcher fetcher{std::make_shared<FixedConversationsSettings>(settings), std::move(identity)};
    std::optional<Outcome> outcome;
    fetcher.isEmailRequired([&](bool emailRequired, bool enabled) { outcome = Outcome{emailRequired, enabled}; });
    EXPECT_TRUE(outcome.has_value());
    return outcome.value_or(Outcome{false, false});
}

const dastrel::CRVConversationsSettings on{true};
const dastrel::CRVConversationsSettings off{false};

} // namespace

// Only an anonymous user without an email is asked, and only while conversations are off; a failed
// request counts as off.
TEST(SupportEngineSettingsFetcher, AsksForAnEmailOnlyWhenNeitherConversationsNorTheIdentityCanReachTheUser) {
    EXPECT_EQ(ask(on, corvane::Identity::createAnonymous()), (Outcome{false, true}));
    EXPECT_EQ(ask(on, corvane::Identity::createJwt("token")), (Outcome{false, true}));
    EXPECT_EQ(ask(off, corvane::Identity::createAnonymous("Ann")), (Outcome{true, false}));
    EXPECT_EQ(ask(off, corvane::Identity::createAnonymous("Ann", "")), (Outcome{true, false}));
    EXPECT_EQ(ask(off, corvane::Identity::createAnonymous(std::nullopt, "ann@example.com")), (Outcome{false, false}));
    EXPECT_EQ(ask(off, corvane::Identity::createJwt("token")), (Outcome{false, false}));
    EXPECT_EQ(ask(off, nullptr), (Outcome{false, false}));
    EXPECT_EQ(ask(std::nullopt, corvane::Identity::createAnonymous()), (Outcome{true, false}));
    EXPECT_EQ(ask(std::nullopt, corvane::Identity::createAnonymous("Ann", "ann@example.com")), (Outcome{false, false}));

    SupportEngineSettingsFetcher withoutProvider{nullptr, corvane::Identity::createAnonymous()};
    std::optional<Outcome> outcome;
    withoutProvider.isEmailRequired([&](bool emailRequired, bool enabled) { outcome = Outcome{emailRequired, enabled}; });
    EXPECT_EQ(outcome, (Outcome{true, false}));
}
