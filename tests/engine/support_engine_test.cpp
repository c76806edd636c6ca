#include "belvakit/engine/support_engine.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "dastrel/support.hpp"
#include "platform/clock.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace belvakit;
using quorvel::Update;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string& text(std::string_view key) { return localized(key); }
std::string bot(std::string_view key) { return "append {bot \"Bela\": \"" + text(key) + "\"}"; }
std::string quote(const std::string& value) { return "\"" + value + "\""; }

const std::string typing = "typing \"Bela\"";
const std::string hideTyping = "hide typing";
const std::string inputOpen = "input open";
const std::string inputClosed = "input closed";
const std::string menuHidden = "menu hidden";
std::string emailHint() { return "input open hint " + quote(text(LocalizedKey::supportEngineRequestCreatedEmailPromptHint)); }

class SupportEngineTest : public testing::Test {
protected:
    void SetUp() override {
        previousClock_ = platform::setWallClock(clock_);
        helpDesk_ = sandbox::HelpDesk::make({.storageDirectory = dir_.path()});
    }
    void TearDown() override {
        engine_.reset();
        dastrel::Support::reset();
        corvane::Corvane::reset();
        platform::setWallClock(previousClock_);
    }

    void startWith(std::shared_ptr<corvane::Identity> identity, bool conversationsEnabled, std::string log = "",
                   mirrowset::ConfigurationList configurations = {}) {
        helpDesk_->conversationsSettings()->setEnabled(conversationsEnabled);
        SupportUI::initialize(helpDesk_->initializeCorvane(std::move(identity)));
        auto made = SupportEngine::engine();
        ASSERT_TRUE(std::holds_alternative<std::shared_ptr<SupportEngine>>(made));
        engine_ = std::get<std::shared_ptr<SupportEngine>>(made);
        token_ = engine_->observeUpdates([this](const Update& update) { updates_.push_back(update); });
        engine_->start(quorvel::QuorvelAPI(quorvel::ConversationLog(std::move(log)),
                                           {"bot-1", "Bela", true, std::nullopt}, std::move(configurations)));
    }

    // Runs what the help desk answered; no virtual time passes.
    void settle() { testing_support::drainMainQueue(); }
    void advance(long long ms) {
        time_.advance(platform::milliseconds(ms));
        settle();
    }
    // What was shown since the last call.
    std::vector<std::string> shown() {
        settle();
        std::vector<std::string> lines;
        for (; seen_ < updates_.size(); ++seen_) lines.push_back(quorvel::describe(updates_[seen_]));
        return lines;
    }
    void submit(const std::string& message) { engine_->onEvent({quorvel::Event::MessageSubmitted{message}}); }

    // The greeting has played; the user may type.
    void greeted() {
        ASSERT_THAT(shown(), ElementsAre(typing, inputOpen, menuHidden));
        advance(1200);
        ASSERT_THAT(shown(), ElementsAre(bot(LocalizedKey::supportEngineGreetingMessage), hideTyping));
    }

    // The desk holds the one ticket; after the typing delay the bot confirms it, conversations off.
    void confirmed(const std::string& description) {
        const auto requests = helpDesk_->tickets()->requests();
        ASSERT_EQ(requests.size(), 1u);
        EXPECT_EQ(requests[0].requestDescription, description);
        advance(1200);
        EXPECT_THAT(shown(), ElementsAre(bot(LocalizedKey::supportEngineRequestCreatedConversationsOffMessage), hideTyping));
    }

    const Update& update(std::size_t fromEnd) const { return updates_[updates_.size() - 1 - fromEnd]; }

    testing_support::TemporaryDirectory dir_;
    testing_support::VirtualTime time_;
    std::shared_ptr<platform::FixedWallClock> clock_ = std::make_shared<platform::FixedWallClock>(1700000000);
    std::shared_ptr<platform::WallClock> previousClock_;
    std::shared_ptr<sandbox::HelpDesk> helpDesk_;
    std::shared_ptr<SupportEngine> engine_;
    quorvel::ObservationToken token_;
    std::vector<Update> updates_;
    std::size_t seen_ = 0;
};

} // namespace

TEST_F(SupportEngineTest, GreetsAfterTheTypingDelayThenAUserWithAnEmailGetsTheTicketAtOnce) {
    startWith(corvane::Identity::createAnonymous("Ann", "ann@example.com"), false);

    EXPECT_THAT(shown(), ElementsAre(typing, inputOpen, menuHidden));
    EXPECT_EQ(std::get<Update::ShowTyping>(updates_.front().value).agent.agentName, "Bela");
    advance(1199);
    EXPECT_THAT(shown(), IsEmpty());
    advance(1);
    EXPECT_THAT(shown(), ElementsAre(bot(LocalizedKey::supportEngineGreetingMessage), hideTyping));
    EXPECT_EQ(engine_->supportModel()->engineState(), SupportEngineState{SupportEngineState::WaitingForTicketEntry{}});
    EXPECT_FALSE(engine_->isConversationOngoing());
    EXPECT_EQ(engine_->transferOptionDescription().engineId, "support");

    // With an email and conversations off, the ticket goes at once.
    submit("My order never came");
    ASSERT_GE(updates_.size(), 2u);
    const auto appended = std::get<Update::AppendMessagingItems>(updates_[seen_].value).items.at(0);
    EXPECT_THAT(shown(), ElementsAre("append {query(pending) \"My order never came\"}", inputOpen,
                                     "update {query(sent) \"My order never came\"}", inputOpen, inputClosed, typing));
    // The pending row turns into the sent one.
    EXPECT_EQ(quorvel::itemId(std::get<Update::UpdateMessagingItem>(update(3).value).item), quorvel::itemId(appended));

    confirmed("My order never came");
    EXPECT_EQ(engine_->supportModel()->engineState(), SupportEngineState{SupportEngineState::ShowConfirmation{false}});
}

TEST_F(SupportEngineTest, ConversationsOnOfferTheRequestListWithTheHostsConfigurations) {
    auto configuration = std::make_shared<RequestUiConfiguration>();
    configuration->subject = "From the app";
    startWith(corvane::Identity::createAnonymous(), true, "", {configuration});
    greeted();

    submit("Where is my parcel?");
    EXPECT_THAT(shown(), ElementsAre("append {query(pending) \"Where is my parcel?\"}", inputOpen,
                                     "update {query(sent) \"Where is my parcel?\"}", inputOpen, inputClosed, typing));
    advance(1200);
    EXPECT_THAT(shown(), ElementsAre("append {action " +
                                         quote(text(LocalizedKey::supportEngineRequestCreatedConversationsEnabledMessage)) +
                                         " [" + text(LocalizedKey::supportEngineRequestCreatedRequestListButton) + "]}",
                                     hideTyping));
    const auto requests = helpDesk_->tickets()->requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].subject, "From the app");

    std::vector<std::string> opened;
    engine_->setRequestListOpener([&](const std::any& navigation, const mirrowset::Configurations& configs) {
        const auto* name = std::any_cast<std::string>(&navigation);
        opened.push_back(name ? *name : "?");
        EXPECT_EQ(configs.configuration<RequestUiConfiguration>(), configuration);
    });
    const auto action = std::get<quorvel::ActionResponse>(
                            std::get<Update::AppendMessagingItems>(update(1).value).items.at(0))
                            .actions.at(0);
    engine_->onEvent({quorvel::Event::ActionOptionClicked{action.id, action, std::string("navigation")}});
    engine_->onEvent({quorvel::Event::ActionOptionClicked{action.id, action, std::any()}});
    EXPECT_THAT(opened, ElementsAre("navigation"));
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(SupportEngineTest, AsksForAnEmailUntilAValidOneAndSendsThePendingTextAlone) {
    testing_support::CapturedLog log;
    startWith(corvane::Identity::createAnonymous("Ann"), false);
    greeted();

    submit("The app crashes");
    EXPECT_THAT(shown(), ElementsAre("append {query(pending) \"The app crashes\"}", inputOpen,
                                     "update {query(sent) \"The app crashes\"}", inputOpen, typing, emailHint()));
    advance(1200);
    EXPECT_THAT(shown(), ElementsAre(bot(LocalizedKey::supportEngineRequestCreatedEmailPromptMessage), hideTyping));

    for (const std::string wrong : {"ann", "ann@example.museum", "ann@example"}) {
        submit(wrong);
        EXPECT_THAT(shown(), ElementsAre("append {query(sent) " + quote(wrong) + "}", typing, emailHint()));
        advance(1200);
        EXPECT_THAT(shown(),
                    ElementsAre(bot(LocalizedKey::supportEngineRequestCreatedEmailValidationFailedMessage), hideTyping));
    }
    EXPECT_THAT(helpDesk_->tickets()->requests(), IsEmpty());

    submit("ann@example.com");
    EXPECT_THAT(shown(), ElementsAre("append {query(sent) \"ann@example.com\"}", inputOpen, inputClosed, typing));
    const auto identity = std::dynamic_pointer_cast<corvane::Anonymous>(corvane::Corvane::instance()->identity());
    ASSERT_TRUE(identity);
    EXPECT_EQ(identity->name(), "Ann");
    EXPECT_EQ(identity->email(), "ann@example.com");

    // The list isn't offered on this path, even had conversations been turned on meanwhile.
    EXPECT_EQ(engine_->supportModel()->engineState(), SupportEngineState{SupportEngineState::ShowConfirmation{false}});
    confirmed("The app crashes");
}

TEST_F(SupportEngineTest, AFailedTicketOffersARetryThatSendsTheSameBodyAndIgnoresASecondClick) {
    testing_support::CapturedLog log;
    startWith(corvane::Identity::createJwt("token"), false);
    greeted();
    helpDesk_->tickets()->failNext(1);

    submit("Refund please");
    EXPECT_THAT(shown(), ElementsAre("append {query(pending) \"Refund please\"}", inputOpen,
                                     "update {query(sent) \"Refund please\"}", inputOpen, inputClosed, typing));
    EXPECT_THAT(log.messages(platform::LogLevel::error), ElementsAre("Ticket was not created. Internal Server Error"));
    advance(1200);
    const auto retryText = text(LocalizedKey::supportEngineMessageSendRetryButton);
    EXPECT_THAT(shown(), ElementsAre("append {bot \"Bela\": " + quote(text(LocalizedKey::supportEngineMessageSendErrorMessage)) +
                                         "} {options [" + retryText + "]}",
                                     hideTyping));
    const auto options = std::get<quorvel::OptionsResponse>(
        std::get<Update::AppendMessagingItems>(update(1).value).items.at(1));
    const auto calls = helpDesk_->tickets()->callCount();

    helpDesk_->tickets()->setLatency(platform::milliseconds(300));
    engine_->onEvent({quorvel::Event::ResponseOptionClicked{options.options.at(0).id, retryText}});
    engine_->onEvent({quorvel::Event::ResponseOptionClicked{options.options.at(0).id, retryText}});
    EXPECT_THAT(shown(), ElementsAre("update {query(sent) " + quote(retryText) + "}", inputClosed));
    EXPECT_EQ(quorvel::itemId(std::get<Update::UpdateMessagingItem>(update(1).value).item), options.id);
    EXPECT_EQ(helpDesk_->tickets()->callCount(), calls + 1);

    advance(300);
    EXPECT_THAT(shown(), ElementsAre(typing));
    confirmed("Refund please");
}

TEST_F(SupportEngineTest, TextIsDroppedWhileTheInputIsClosed) {
    startWith(corvane::Identity::createAnonymous("Ann", "ann@example.com"), false);
    greeted();
    helpDesk_->tickets()->setLatency(platform::milliseconds(500));

    submit("First");
    EXPECT_THAT(shown(), ElementsAre("append {query(pending) \"First\"}", inputOpen, "update {query(sent) \"First\"}",
                                     inputOpen, inputClosed));
    submit("Second");
    engine_->onEvent({quorvel::Event::ResponseOptionClicked{"any", "any"}});
    engine_->onEvent({quorvel::Event::TypingStarted{}});
    EXPECT_THAT(shown(), IsEmpty());

    advance(500 + 1200);
    EXPECT_THAT(shown(), ElementsAre(typing, bot(LocalizedKey::supportEngineRequestCreatedConversationsOffMessage), hideTyping));
    submit("Third");
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_EQ(helpDesk_->tickets()->requests().size(), 1u);
}

TEST_F(SupportEngineTest, AStartWithALogShowsNoGreetingAndSendsTheLogAsTheTicket) {
    startWith(corvane::Identity::createAnonymous("Ann", "ann@example.com"), false, "User: my card was declined");

    const auto title = text(LocalizedKey::requestsCreateRequestLeaveAMessageTitle);
    // Without an id from the user's own row, no row is updated.
    EXPECT_THAT(shown(), ElementsAre("append {query(sent) " + quote(title) + "}", inputOpen, menuHidden, inputClosed,
                                     typing));
    confirmed("User: my card was declined");
}

TEST(SupportEngineCreation, FailsWithoutTheSupportLibraryOrAnIdentity) {
    dastrel::Support::reset();
    corvane::Corvane::reset();
    auto made = SupportEngine::engine();
    ASSERT_TRUE(std::holds_alternative<SupportError>(made));
    EXPECT_EQ(std::get<SupportError>(made), SupportError::supportNotInitialized);

    testing_support::TemporaryDirectory dir;
    auto helpDesk = sandbox::HelpDesk::make({.storageDirectory = dir.path()});
    dastrel::Support::initialize(helpDesk->initializeCorvane(nullptr));
    auto reported = static_cast<SupportError>(-1);
    EXPECT_EQ(SupportEngine::engineAndReturnError(&reported), nullptr);
    EXPECT_EQ(reported, SupportError::supportNotInitialized);

    corvane::Corvane::instance()->setIdentity(corvane::Identity::createJwt("token"));
    EXPECT_NE(SupportEngine::engineAndReturnError(&reported), nullptr);
    dastrel::Support::reset();
    corvane::Corvane::reset();
}

TEST(SupportEnginePacing, TurnsFollowEachOtherInOrderOneDelayApartAndAReleasedEngineStaysQuiet) {
    testing_support::VirtualTime time;
    auto model = std::make_shared<SupportEngineModel>(nullptr, SupportEngineSettingsFetcher{}, nullptr);
    auto engine = SupportEngine::make("engine", model);
    std::vector<std::string> seen;
    auto token = engine->observeUpdates([&](const Update& update) { seen.push_back(quorvel::describe(update)); });

    const quorvel::TextResponse first{"1", "one", "Bela", true, 0, quorvel::ItemDeliveryStatus::received};
    const quorvel::TextResponse second{"2", "two", "Bela", true, 0, quorvel::ItemDeliveryStatus::received};
    engine->enqueue({first});
    engine->enqueue({second});
    EXPECT_THAT(seen, ElementsAre("typing \"\""));
    time.advance(platform::milliseconds(1200));
    EXPECT_THAT(seen, ElementsAre("typing \"\"", "append {bot \"Bela\": \"one\"}", hideTyping, "typing \"\""));
    time.advance(platform::milliseconds(1200));
    EXPECT_THAT(seen, ElementsAre("typing \"\"", "append {bot \"Bela\": \"one\"}", hideTyping, "typing \"\"",
                                  "append {bot \"Bela\": \"two\"}", hideTyping));

    token.cancel();
    auto owner = std::make_shared<int>(0);
    int ownerSaw = 0;
    engine->addObserver(owner, [&](const Update&) { ++ownerSaw; });
    engine->enqueue({first});
    EXPECT_EQ(seen.size(), 6u);
    EXPECT_EQ(ownerSaw, 1);
    owner.reset();
    time.advance(platform::milliseconds(1200));
    EXPECT_EQ(ownerSaw, 1);

    // A zero delay still waits for the main queue, and a released engine stays quiet.
    seen.clear();
    auto quick = SupportEngine::make("engine", std::make_shared<SupportEngineModel>(nullptr, SupportEngineSettingsFetcher{}, nullptr), 0);
    token = quick->observeUpdates([&](const Update& update) { seen.push_back(quorvel::describe(update)); });
    quick->enqueue({first});
    EXPECT_THAT(seen, ElementsAre("typing \"\""));
    time.advance(platform::Duration::zero());
    EXPECT_THAT(seen, ElementsAre("typing \"\"", "append {bot \"Bela\": \"one\"}", hideTyping));
    quick->enqueue({second});
    quick.reset();
    time.advance(platform::milliseconds(10));
    EXPECT_EQ(seen.size(), 4u);
    EXPECT_EQ(time.scheduler().pendingCount(), 0u);
}

TEST_F(SupportEngineTest, AReleasedEngineEndsTheDialogQuietlyWhenTheTicketAnswers) {
    startWith(corvane::Identity::createAnonymous("Ann", "ann@example.com"), false);
    greeted();
    helpDesk_->tickets()->setLatency(platform::milliseconds(500));
    submit("Anything");
    settle();
    std::weak_ptr<SupportEngineModel> model = engine_->supportModel();
    engine_.reset();
    EXPECT_TRUE(model.expired());

    advance(500 + 1200);
    EXPECT_EQ(helpDesk_->tickets()->requests().size(), 1u);
    EXPECT_EQ(time_.scheduler().pendingCount(), 0u);
}
