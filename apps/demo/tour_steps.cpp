// The tour's script: chapters of steps, each what the user does and what must then show. A screen
// that joins the library gets its steps here.
#include "tour.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "corvane/corvane.hpp"

namespace belvademo {

namespace {

using belvakit::localized;

TourStep step(std::string name, std::string action, std::function<Failure(Tour&)> act, Expectation expect,
              double within = 10) {
    return {std::move(name), std::move(action), std::move(act), std::move(expect), within, nullptr};
}

std::function<Failure(Tour&)> tapping(std::string text) {
    return [text](Tour& tour) { return tour.tapText(text); };
}

// Types into the input and taps the button, as one gesture of the user.
Failure typeAndTap(Tour& tour, const std::string& input, const std::string& text, const std::string& button) {
    if (auto failure = tour.typeInto(input, text)) return failure;
    return tour.tapIdentifier(button);
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

// The ticket open on the screen has a comment with `body` on the help desk.
std::function<Failure(Tour&)> deskHasComment(std::string body) {
    return [body](Tour& tour) -> Failure {
        const auto ticket = DemoDesk::openTicket();
        if (!ticket) return std::string("no ticket is open");
        for (const auto& comment : tour.desk().tickets().comments(*ticket))
            if (comment.body == body) return std::nullopt;
        return "ticket " + *ticket + " has no comment \"" + body + "\"";
    };
}

TourChapter home() {
    return {"The host app",
            {step("home", "open the app", nullptr,
                  {{"DemoEntryHelpCenter", "DemoEntryMyRequests", "DemoEntryNewRequest", "DemoEntryChat"},
                   {"Orbit Planner"}})}};
}

TourChapter helpCenter() {
    return {"Help Center",
            {step("help-center", "tap \"Help Center\"", tapping("Help Center"),
                  {{}, {"Getting started", "Setting up", "Installing Orbit Planner"}}),
             step("help-center-article", "tap the article \"Installing Orbit Planner\"", tapping("Installing Orbit Planner"),
                  {{}, {"Open your device's app store", localized("ios.sdk.CRVHelpCenter.article.voting.title")}}),
             step("help-center-search", "tap Back; search for \"offline\"", [](Tour& tour) -> Failure {
                 if (auto failure = tour.back()) return failure;
                 tour.pass(0.5);
                 return tour.search("offline\n");
             }, {{"CRVsearchResultsTable", "CRVsearchResultTitle"}, {"Working offline"}}),
             step("help-center-search-article", "tap the result \"Working offline\"", tapping("Working offline"),
                  {{}, {"Changes made offline are kept on the device"}})}};
}

// A new ticket written in its conversation; the agent answers with a link to an article; a reply
// sent offline fails and is sent again.
TourChapter conversation() {
    const std::string first = "The sync stopped after the update.";
    const std::string offline = "Here is what the sync screen says: waiting.";
    const std::string answer = "Thanks, I'm on it.";
    const std::string articleText = "Changes made offline are kept on the device";
    TourChapter chapter{"New request and its conversation", {}};
    chapter.steps.push_back(step("new-request", "tap \"New request\"", tapping("New request"),
                                 {{"CRVmessageBodyField", "CRVsendButton"}, {}}));
    chapter.steps.push_back(step("new-request-sent", "type the request and tap Send", [=](Tour& tour) {
        return typeAndTap(tour, "CRVmessageBodyField", first, "CRVsendButton");
    }, {{"deliveredLabel"}, {first}, deskHasTicket(first)}));
    chapter.steps.push_back(step("agent-answer", "the agent answers; the app gets the ticket's push", [=](Tour& tour) -> Failure {
        tour.dismissKeyboard();
        const auto ticket = DemoDesk::openTicket();
        if (!ticket) return std::string("no ticket is open");
        auto answered = [&] {
            for (const auto& comment : tour.desk().tickets().comments(*ticket))
                if (comment.authorId == tour.desk().agent().userId) return true;
            return false;
        };
        if (!tour.waitFor(answered, 10)) return std::string("the agent did not answer");
        if (!DemoDesk::pushRefreshTicket(*ticket)) return std::string("no screen took the push");
        return std::nullopt;
    }, {{}, {answer, "Working offline"}}));
    auto link = step("article-from-link", "tap \"Working offline\" in the agent's answer", tapping("Working offline"),
                     {{}, {articleText}});
    link.notYet = [](Tour& tour) -> Failure {
        auto core = corvane::Corvane::instance();
        const auto url = tour.desk().articleUrl(360028, "working-offline");
        if (core && core->actionHandlerRegistry().handler(url)) return std::nullopt;
        return std::string("no handler for Help Center links while a conversation shows");
    };
    chapter.steps.push_back(link);
    chapter.steps.push_back(step("back-to-conversation", "tap Back", [](Tour& tour) -> Failure {
        // Only when the article opened over the conversation.
        return tour.showsIdentifier("CRVmessageBodyField") ? std::nullopt : tour.back();
    }, {{"CRVmessageBodyField"}, {first}}));
    chapter.steps.push_back(step("offline-send", "the desk goes offline; type a reply and tap Send", [=](Tour& tour) {
        tour.desk().setOffline(true);
        return typeAndTap(tour, "CRVmessageBodyField", offline, "CRVsendButton");
    }, {{"CRVretryButton"}, {offline, localized("ios.CRVRequests.createRequest.cellError")}}));
    chapter.steps.push_back(step("offline-retry-choice", "back online; tap the failed reply", [](Tour& tour) {
        tour.desk().setOffline(false);
        tour.dismissKeyboard();
        return tour.tapIdentifier("CRVretryButton");
    }, {{}, {localized("ios.CRVRequests.createRequest.failed.retry"), localized("ios.CRVRequests.createRequest.failed.delete")}}));
    chapter.steps.push_back(step("offline-retried", "tap Retry",
                                 tapping(localized("ios.CRVRequests.createRequest.failed.retry")),
                                 {{"deliveredLabel"}, {offline}, [=](Tour& tour) -> Failure {
                                      if (tour.showsIdentifier("CRVretryButton")) return std::string("a reply still failed");
                                      return deskHasComment(offline)(tour);
                                  }}));
    return chapter;
}

// With conversations off on the account, a new request is the form; it leaves once sent.
TourChapter newRequestForm() {
    const std::string text = "Reminders stopped arriving after the update.";
    TourChapter chapter{"New request with conversations off (the form)", {}};
    chapter.steps.push_back(step("form", "conversations off on the desk; tap \"New request\"",
                                 [](Tour& tour) {
                                     tour.desk().helpDesk().settings()->setConversationsEnabled(false);
                                     return tour.tapText("New request");
                                 },
                                 {{"CRVmessageBodyField", "CRVsendButton"},
                                  {localized("ios.CRVRequests.createRequest.description.placeholder")}}));
    chapter.steps.push_back(step("form-offline", "type the request; the desk goes offline; tap Send", [text](Tour& tour) {
        tour.desk().setOffline(true);
        if (auto failure = tour.typeInto("CRVmessageBodyField", text)) return failure;
        tour.dismissKeyboard();
        return tour.tapIdentifier("CRVsendButton");
    }, {{"CRVcreateRequestStatusView"}, {text, localized("ios.CRVRequests.createRequest.error.request")}}));
    chapter.steps.push_back(step("form-sent", "back online; tap Send again", [](Tour& tour) {
        tour.desk().setOffline(false);
        return tour.tapIdentifier("CRVsendButton");
    }, {{"DemoHome"}, {}, [text](Tour& tour) -> Failure {
        // The form is done with; the account goes back to conversations.
        tour.desk().helpDesk().settings()->setConversationsEnabled(true);
        return deskHasTicket(text)(tour);
    }}));
    return chapter;
}

// Rows kept from an earlier visit can land after the fresh ones and replace them, so the list is
// pulled before its rows are read.
TourChapter requestList() {
    const std::string subject = "How do I share a plan with my family?";
    TourChapter chapter{"My requests", {}};
    chapter.steps.push_back(step("request-list", "tap \"My requests\"", [subject](Tour& tour) -> Failure {
        // A ticket of the user's, answered, beside what this tour sent; written by the desk itself,
        // so the agent's own answer stays out of it.
        auto& desk = tour.desk();
        if (tour.notes["shared-plan"].empty()) {
            const bool answers = desk.agentAnswers();
            desk.setAgentAnswers(false);
            bool created = false;
            desk.tickets().createRequest({.requestDescription = subject}, [&](auto, auto) { created = true; });
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
                                 {{"CRVrequestListTable"}, {subject, "Open the plan, tap Share"}}));
    chapter.steps.push_back(step("request-list-push", "the agent answers; the app gets the list's push",
                                 [](Tour& tour) -> Failure {
                                     const auto id = tour.notes["shared-plan"];
                                     if (id.empty() || !tour.desk().agentWrites(id, "Did that work for you?"))
                                         return std::string("no ticket to answer");
                                     if (!DemoDesk::pushRefreshList()) return std::string("no screen took the push");
                                     return std::nullopt;
                                 },
                                 {{"CRVrequestListTable"}, {"Did that work for you?"}}));
    chapter.steps.push_back(step("request-opened", "tap the ticket", tapping(subject),
                                 {{"CRVmessageBodyField"}, {"Open the plan, tap Share", "Did that work for you?"}}));
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
                                     return typeAndTap(tour, "DemoChatInput", text, "DemoChatSend");
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
    return {home(), helpCenter(), conversation(), newRequestForm(), requestList(), chat()};
}

} // namespace belvademo
