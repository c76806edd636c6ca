#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/createrequest/create_request_actions.hpp"
#include "belvakit/Request/createrequest/create_request_reducer.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "fenlow/common_theme.hpp"
#include "platform/url_opener.hpp"
#include "tivra/tivra.hpp"

#include <gtest/gtest.h>

using namespace belvakit;
using Sending = CreateRequestState::Sending;

namespace {

const platform::Color red = platform::Color::fromRGB(255, 0, 0);

CreateRequestState stateWith(Sending sending, AttachmentButtonState button = AttachmentButtonState::hidden) {
    CreateRequestState state = initialCreateRequestState();
    state.sending = sending;
    state.attachmentButtonState = button;
    return state;
}

CreateRequestActions::InitializeCreateRequest initialize(bool requiresEmail, bool requiresName, bool logo,
                                                         std::string referrerUrl) {
    CreateRequestActions::InitializeCreateRequest action;
    action.requiresEmail = requiresEmail;
    action.requiresName = requiresName;
    action.showCorvnaeLogo = logo;
    action.referrerUrl = std::move(referrerUrl);
    return action;
}

} // namespace

TEST(CreateRequestState, InitialStateIsMadeOnceWithTheThemeColourOfThatMoment) {
    const CreateRequestState& initial = initialCreateRequestState();
    EXPECT_EQ(initial.primaryColor, fenlow::CommonTheme::currentTheme().primaryColor);

    const auto theme = fenlow::CommonTheme::currentTheme();
    fenlow::CommonTheme::setCurrentTheme({red});
    EXPECT_EQ(initialCreateRequestState().primaryColor, theme.primaryColor);
    EXPECT_EQ(&initialCreateRequestState(), &initial);
    fenlow::CommonTheme::setCurrentTheme(theme);
}

TEST(CreateRequestState, EqualityIgnoresReferrerUrlAndPrimaryColourOnly) {
    const CreateRequestState base = initialCreateRequestState();
    CreateRequestState cosmetic = base;
    cosmetic.referrerUrl = "https://elsewhere.example";
    cosmetic.primaryColor = red;
    EXPECT_EQ(cosmetic, base);
    EXPECT_FALSE(tivra::EqualsFilter(base, cosmetic));

    const std::vector<void (*)(CreateRequestState&)> changes = {
        [](CreateRequestState& s) { s.requiresEmail = true; },
        [](CreateRequestState& s) { s.requiresName = true; },
        [](CreateRequestState& s) { s.showCorvaneLogo = true; },
        [](CreateRequestState& s) { s.hasEdits = true; },
        [](CreateRequestState& s) { s.sending = Sending::failure; },
        [](CreateRequestState& s) { s.attachmentButtonState = AttachmentButtonState::selected; },
        [](CreateRequestState& s) { s.formId = 2; },
        [](CreateRequestState& s) { s.sendId = "m1"; },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        CreateRequestState changed = base;
        changes[i](changed);
        EXPECT_NE(changed, base) << "field " << i;
    }
}

TEST(CreateRequestReducer, SendingFollowsTheTransitionTable) {
    const CreateRequestReducer reducer;
    const RequestQueueActions::QueueCompleted queueCompleted;
    CreateRequestActions::SendPressed send;
    send.formId = 7;
    send.id = "m1";
    for (Sending from : {Sending::unsent, Sending::sending, Sending::sent, Sending::success, Sending::failure}) {
        SCOPED_TRACE(static_cast<int>(from));
        const auto button = from == Sending::sent ? AttachmentButtonState::selected : AttachmentButtonState::hidden;
        auto state = stateWith(from, button);
        state.formId = 7;
        state.hasEdits = true;
        const auto sending = reducer.reduce(state, send);
        EXPECT_EQ(sending->sending, Sending::sending);
        EXPECT_EQ(sending->sendId, "m1");
        EXPECT_EQ(sending->attachmentButtonState, AttachmentButtonState::normal);
        EXPECT_TRUE(sending->hasEdits);
        EXPECT_EQ(reducer.reduce(state, initialize(true, true, true, "x"))->sending, Sending::unsent);
        const auto completed = reducer.reduce(state, queueCompleted);
        if (from == Sending::failure || from == Sending::sending) {
            EXPECT_FALSE(completed);  // a failure stays on screen; a send waits for its own outcome
        } else {
            ASSERT_TRUE(completed);
            EXPECT_EQ(completed->sending, Sending::sent);
        }
    }
}

// Two forms may be open at once: each moves only on its own send, and only on that send's outcome,
// however it comes back.
TEST(CreateRequestReducer, AFormMovesOnlyOnItsOwnSendAndThatSendsOutcome) {
    const CreateRequestReducer reducer;
    auto form = stateWith(Sending::unsent);
    form.formId = 1;
    CreateRequestActions::SendPressed other;
    other.formId = 2;
    other.id = "theirs";
    EXPECT_FALSE(reducer.reduce(form, other)) << "another form's send";
    CreateRequestActions::SendPressed own;
    own.formId = 1;
    own.id = "mine";
    const auto sending = *reducer.reduce(form, own);

    const auto after = [&](const tivra::Action& outcome) { return reducer.reduce(sending, outcome).value_or(sending).sending; };
    const auto created = [](std::string id) {
        Actions::TicketCreated action;
        action.localId = std::move(id);
        return action;
    };
    const auto creationFailed = [](std::string id) {
        Actions::TicketCreationError action;
        action.id = std::move(id);
        return action;
    };
    const auto uploadFailed = [](std::string id) {
        Actions::AttachmentsUploadError action;
        action.id = std::move(id);
        return action;
    };
    const auto kept = [](std::string id, bool delivered) {
        RequestQueueActions::SendOutcomeKept action;
        action.id = std::move(id);
        action.delivered = delivered;
        return action;
    };
    for (const auto& id : {"theirs", ""}) {
        SCOPED_TRACE(std::string("outcome of '") + id + "'");
        EXPECT_EQ(after(created(id)), Sending::sending);
        EXPECT_EQ(after(creationFailed(id)), Sending::sending);
        EXPECT_EQ(after(uploadFailed(id)), Sending::sending);
        EXPECT_EQ(after(kept(id, true)), Sending::sending);
    }
    EXPECT_EQ(after(created("mine")), Sending::success);
    EXPECT_EQ(after(creationFailed("mine")), Sending::failure);
    EXPECT_EQ(after(uploadFailed("mine")), Sending::failure);
    EXPECT_EQ(after(kept("mine", true)), Sending::success);
    EXPECT_EQ(after(kept("mine", false)), Sending::failure);
    // An outcome that comes when the form no longer waits changes nothing.
    EXPECT_FALSE(reducer.reduce(*reducer.reduce(sending, created("mine")), creationFailed("mine")));
    EXPECT_FALSE(reducer.reduce(form, created("mine")));

    CreateRequestActions::Edited theirEdit;
    theirEdit.formId = 2;
    theirEdit.hasEdits = true;
    EXPECT_FALSE(reducer.reduce(form, theirEdit));
}

TEST(CreateRequestReducer, InitializeStartsAfreshFromTheReducersInitialState) {
    CreateRequestState initial = initialCreateRequestState();
    initial.primaryColor = red;
    const CreateRequestReducer reducer(initial);

    auto finished = stateWith(Sending::sent, AttachmentButtonState::selected);
    finished.hasEdits = true;
    const auto fresh = reducer.reduce(finished, initialize(true, false, true, "https://ref.example"));
    ASSERT_TRUE(fresh);
    EXPECT_TRUE(fresh->requiresEmail);
    EXPECT_FALSE(fresh->requiresName);
    EXPECT_TRUE(fresh->showCorvaneLogo);
    EXPECT_EQ(fresh->referrerUrl, "https://ref.example");
    EXPECT_FALSE(fresh->hasEdits);
    EXPECT_EQ(fresh->primaryColor, red);
    EXPECT_EQ(fresh->attachmentButtonState, AttachmentButtonState::hidden);
    EXPECT_EQ(reducer.initialState().primaryColor, red);
}

TEST(CreateRequestReducer, EditsAttachmentButtonAndSettingsRowsAndSilenceForOthers) {
    const CreateRequestReducer reducer;
    const auto state = stateWith(Sending::unsent, AttachmentButtonState::normal);

    CreateRequestActions::Edited edited;
    edited.hasEdits = true;
    EXPECT_TRUE(reducer.reduce(state, edited)->hasEdits);
    edited.hasEdits = false;
    EXPECT_FALSE(reducer.reduce(*reducer.reduce(state, CreateRequestActions::Edited{}), edited)->hasEdits);

    Actions::AttachmentButtonStateChanged picker;
    picker.isSelected = true;
    EXPECT_EQ(reducer.reduce(state, picker)->attachmentButtonState, AttachmentButtonState::selected);
    picker.isSelected = false;
    const auto selected = stateWith(Sending::unsent, AttachmentButtonState::selected);
    EXPECT_EQ(reducer.reduce(selected, picker)->attachmentButtonState, AttachmentButtonState::normal);

    Actions::SettingsFetched settings;
    settings.isAttachmentsEnabled = false;
    EXPECT_EQ(reducer.reduce(state, settings)->attachmentButtonState, AttachmentButtonState::hidden);
    settings.isAttachmentsEnabled = true;
    EXPECT_EQ(reducer.reduce(stateWith(Sending::unsent), settings)->attachmentButtonState,
              AttachmentButtonState::normal);

    EXPECT_FALSE(reducer.reduce(state, Actions::PlaceHolderTextViewEditingBegan()));
}

TEST(CreateRequestReducer, ReferOpenOpensOnlyAParsableLinkAndNeverChangesTheState) {
    const auto opener = std::make_shared<platform::HeadlessURLOpener>();
    const auto previous = platform::URLOpener::setShared(opener);
    const CreateRequestReducer reducer;
    auto state = initialCreateRequestState();
    for (const char* unusable : {"", "not a link", "http://bad host"}) {
        state.referrerUrl = unusable;
        EXPECT_FALSE(reducer.reduce(state, CreateRequestActions::ReferOpen()));
    }
    EXPECT_TRUE(opener->openedURLs().empty());

    state.referrerUrl = "https://example.com/?ref=form";
    EXPECT_FALSE(reducer.reduce(state, CreateRequestActions::ReferOpen()));
    EXPECT_EQ(opener->openedURLs(), std::vector{*platform::URL::parse("https://example.com/?ref=form")});
    platform::URLOpener::setShared(previous);
}
