// The tour's script: chapters of steps, each what the user does and what must then show. A screen
// that joins the library gets its steps here.
#include "help_center_entry.hpp"
#include "tour.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/request_container_controller.hpp"

namespace belvademo {

namespace {

using belvakit::localized;

bool conversationScreenAvailable() {
    return static_cast<bool>(belvakit::RequestContainerController::defaultConversationScreenBuilder());
}

TourStep step(std::string name, std::string action, std::function<Failure(Tour&)> act, Expectation expect,
              double within = 10) {
    return {std::move(name), std::move(action), std::move(act), std::move(expect), within};
}

std::function<Failure(Tour&)> tapping(std::string text) {
    return [text](Tour& tour) { return tour.tapText(text); };
}

// Types into the input and taps the button, as one gesture of the user.
std::function<Failure(Tour&)> typingAndTapping(std::string input, std::string text, std::string button) {
    return [=](Tour& tour) -> Failure {
        if (auto failure = tour.typeInto(input, text)) return failure;
        return tour.tapIdentifier(button);
    };
}

// The help desk holds a ticket whose description is `description`; its id is noted as "ticket".
std::function<Failure(Tour&)> deskHasTicket(std::string description) {
    return [description](Tour& tour) -> Failure {
        for (const auto& request : tour.desk().tickets().requests())
            if (request.requestDescription == description) {
                tour.notes["ticket"] = request.requestId;
                return std::nullopt;
            }
        return "the help desk has no ticket \"" + description + "\"";
    };
}

TourChapter home() {
    return {"The host app",
            {step("home", "open the app", nullptr,
                  {{"DemoEntryMyRequests", "DemoEntryNewRequest", "DemoEntryChat"}, {"Orbit Planner", "My requests"}})}};
}

TourChapter helpCenter() {
    TourChapter chapter{"Help Center", {}};
    chapter.steps.push_back(step("help-center", "tap \"Help Center\"", tapping("Help Center"),
                                 {{}, {"Getting started", "Setting up"}}));
    if (helpCenterArticlesAvailable())
        chapter.steps.push_back(step("help-center-article", "tap the article \"Installing Orbit Planner\"",
                                     tapping("Installing Orbit Planner"), {{}, {"Open your device's app store"}}));
    return chapter;
}

// With conversations off on the account, a new request is the form; it leaves once sent.
TourChapter newRequestForm() {
    const std::string text = "Reminders stopped arriving after the update.";
    TourChapter chapter{"New request (the form, conversations off)", {}};
    chapter.steps.push_back(step("new-request-form", "conversations off on the desk; tap \"New request\"",
                                 [](Tour& tour) {
                                     tour.desk().helpDesk().settings()->setConversationsEnabled(false);
                                     return tour.tapText("New request");
                                 },
                                 {{"CRVmessageBodyField", "CRVsendButton"},
                                  {localized("ios.CRVRequests.createRequest.description.placeholder")}}));
    chapter.steps.push_back(step("new-request-typed", "type the request", [text](Tour& tour) {
        return tour.typeInto("CRVmessageBodyField", text);
    }, {{}, {text}}));
    chapter.steps.push_back(step("new-request-offline", "the desk goes offline; tap Send",
                                 [](Tour& tour) {
                                     tour.desk().setOffline(true);
                                     tour.dismissKeyboard();
                                     return tour.tapIdentifier("CRVsendButton");
                                 },
                                 {{"CRVcreateRequestStatusView"}, {text}}));
    chapter.steps.push_back(step("new-request-retry", "back online; tap Send again",
                                 [](Tour& tour) {
                                     tour.desk().setOffline(false);
                                     return tour.tapIdentifier("CRVsendButton");
                                 },
                                 {{"DemoHome"}, {}, deskHasTicket(text)}));
    chapter.steps.push_back(step("home-after-request", "conversations on again", [](Tour& tour) -> Failure {
        tour.desk().helpDesk().settings()->setConversationsEnabled(true);
        return std::nullopt;
    }, {{"DemoEntryMyRequests"}, {}}));
    return chapter;
}

// Rows kept from an earlier visit can land after the fresh ones and replace them, so the list is
// pulled before its rows are read.
TourChapter requestList() {
    TourChapter chapter{"My requests", {}};
    chapter.steps.push_back(step("request-list", "tap \"My requests\"", [](Tour& tour) -> Failure {
        // A ticket of the user's, answered, beside what this tour sent.
        auto& desk = tour.desk();
        if (tour.notes["shared-plan"].empty()) {
            // Written by the desk itself, so the agent's own answer stays out of it.
            const bool answers = desk.agentAnswers();
            desk.setAgentAnswers(false);
            bool created = false;
            desk.tickets().createRequest({.requestDescription = "How do I share a plan with my family?"},
                                         [&](auto, auto) { created = true; });
            tour.waitFor([&] { return created; }, 2);
            const auto id = desk.tickets().requests().back().requestId;
            desk.agentWrites(id, "Open the plan, tap Share and pick who may edit it.");
            tour.notes["shared-plan"] = id;
            desk.setAgentAnswers(answers);
        }
        return tour.tapText("My requests");
    }, {{"CRVrequestListTable"}, {}}));
    chapter.steps.push_back(step("request-list-pulled", "pull the list down",
                                 [](Tour& tour) { return tour.pullToRefresh(); },
                                 {{"CRVrequestListTable"},
                                  {"How do I share a plan with my family?", "Open the plan, tap Share"}}));
    chapter.steps.push_back(step("request-list-push", "the agent answers; the app gets the list's push",
                                 [](Tour& tour) -> Failure {
                                     const auto id = tour.notes["shared-plan"];
                                     if (id.empty() || !tour.desk().agentWrites(id, "Did that work for you?"))
                                         return std::string("no ticket to answer");
                                     if (!DemoDesk::pushRefreshList()) return std::string("no screen took the push");
                                     return std::nullopt;
                                 },
                                 {{"CRVrequestListTable"}, {"Did that work for you?"}}));
    return chapter;
}

TourChapter chat() {
    const std::string text = "My reminders stopped arriving.";
    TourChapter chapter{"Chat with the support engine", {}};
    chapter.steps.push_back(step("chat-greeting", "tap \"Chat with Bela\"", tapping("Chat with Bela"),
                                 {{"DemoChatInput"}, {localized("ios.SupportEngine.greeting.message")}}));
    chapter.steps.push_back(step("chat-send-failed", "the desk fails the next call; send a message",
                                 [=](Tour& tour) {
                                     tour.desk().tickets().failNext(1);
                                     return typingAndTapping("DemoChatInput", text, "DemoChatSend")(tour);
                                 },
                                 {{"DemoChatOption"}, {text, localized("ios.SupportEngine.messageSend.errorMessage")}}));
    chapter.steps.push_back(step("chat-retry", "tap Retry", [](Tour& tour) {
        tour.dismissKeyboard();
        return tour.tapIdentifier("DemoChatOption");
    }, {{"DemoChatAction"}, {localized("ios.SupportEngine.requestCreated.conversationsEnabledMessage")}, deskHasTicket(text)}));
    chapter.steps.push_back(step("chat-requests", "tap \"View your requests\"",
                                 [](Tour& tour) { return tour.tapIdentifier("DemoChatAction"); },
                                 {{"CRVrequestListTable"}, {}}));
    chapter.steps.push_back(step("chat-requests-pulled", "pull the list down",
                                 [](Tour& tour) { return tour.pullToRefresh(); }, {{"CRVrequestListTable"}, {text}}));
    return chapter;
}

} // namespace

std::vector<TourChapter> tourChapters() {
    std::vector<TourChapter> chapters{home()};
    if (helpCenterAvailable()) chapters.push_back(helpCenter());
    if (!conversationScreenAvailable()) chapters.push_back(newRequestForm());
    chapters.push_back(requestList());
    chapters.push_back(chat());
    return chapters;
}

} // namespace belvademo
