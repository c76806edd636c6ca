// The send queue without screens: opens a ticket with an attachment, adds a comment, lets the
// simulated agent answer, and prints what the queue did and what the help desk holds.
#include "queue_walk.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/local_messages.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/Request/conversation/request_table_reducer.hpp"
#include "belvakit/Request/requestlist/request_list_cell_data.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/queue/request_fetcher.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "platform/calendar.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "belvakit/entry/version.hpp"
#include "platform/main_queue.hpp"
#include "platform/uuid.hpp"
#include "sandbox/help_desk.hpp"

#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace belvakit;

// Prints the outcome of every send as the shared store sees it.
void printQueueAction(const tivra::Action& action) {
    if (const auto* ticket = tivra::actionAs<Actions::TicketCreated>(action)) {
        std::cout << "  ticket created: local " << ticket->localId << " -> request " << ticket->remoteRequestId
                  << ", first comment " << ticket->remoteCommentId << ", " << ticket->attachments.size()
                  << " attachment(s)\n";
    } else if (const auto* comment = tivra::actionAs<Actions::CommentCreated>(action)) {
        std::cout << "  comment created: local " << comment->localId << " -> comment " << comment->remoteCommentId
                  << "\n";
    } else if (const auto* fetched = tivra::actionAs<Actions::NewCommentsFetched>(action)) {
        std::cout << "  fetched " << fetched->comments.size() << " new comment(s)\n";
    } else if (const auto* failed = tivra::actionAs<Actions::TicketCreationError>(action)) {
        std::cout << "  ticket creation failed: " << failed->id << "\n";
    } else if (const auto* commentFailed = tivra::actionAs<Actions::CommentCreationError>(action)) {
        std::cout << "  comment failed: " << commentFailed->id << "\n";
    } else if (const auto* uploadFailed = tivra::actionAs<Actions::AttachmentsUploadError>(action)) {
        std::cout << "  upload failed: " << uploadFailed->id << "\n";
    } else if (tivra::actionAs<RequestQueueActions::QueueCompleted>(action)) {
        std::cout << "  queue completed\n";
    }
}

std::string_view statusText(DeliveryStatus status) {
    switch (status) {
    case DeliveryStatus::notDelivered: return "queued";
    case DeliveryStatus::delivered: return "delivered";
    case DeliveryStatus::lastDelivered: return "delivered (last)";
    case DeliveryStatus::failed: return "failed";
    }
    return "";
}

// One row of the conversation table, as text.
std::string describeRow(const CellItem& row) {
    if (const auto* date = std::get_if<DateItem>(&row)) return "--- " + platform::dateDescription(date->date) + " ---";
    if (const auto* notice = std::get_if<SystemMessage>(&row)) return "(" + notice->message + ")";
    const auto& message = std::get<Message>(row);
    return message.visit([&](const auto& record) -> std::string {
        using T = std::decay_t<decltype(record)>;
        std::string text = std::string(rawValue(T::type)) + ": ";
        if constexpr (TextMessage<T>) text += record.body;
        else text += record.filename;
        if constexpr (IdentifiableUserMessage<T>) text += "  — " + record.name;
        if constexpr (DeliverableEvent<T>) text += "  [" + std::string(statusText(record.status)) + "]";
        if (isEndOfGroup(message)) text += "  |end of group";
        return text;
    });
}

// Sends one message through the queue and runs the main loop until the queue is dry.
bool send(const std::string& id, const std::string& body, std::vector<Upload::Attachment> attachments,
          int& completed) {
    std::cout << "send \"" << body << "\"" << (attachments.empty() ? "" : " with ")
              << (attachments.empty() ? "" : std::to_string(attachments.size()) + " attachment(s)") << "\n";
    RequestQueueActions::DispatchDetails details;
    details.id = id;
    details.body = body;
    details.attachments = std::move(attachments);
    // The conversation shows the message and its files at once, queued, before the queue sends them.
    Actions::NewMessages shown;
    const UserMessage text = makeUserMessage(body, id);
    shown.messages.push_back(text);
    for (const auto& attachment : details.attachments) {
        UserFile file;
        file.id = attachment.id;
        file.parentId = id;
        file.filename = attachment.filename.value_or(interpolatedFilename(attachment));
        file.size = static_cast<std::int64_t>(attachment.data.size());
        file.fileType = attachment.fileType;
        file.createdAt = text.createdAt;
        file.downloaded = true;
        shown.messages.push_back(file);
    }
    sharedStore()->dispatch(shown);
    const int before = completed;
    sharedStore()->dispatch(details);
    return platform::MainQueue::shared().runUntil([&] { return completed > before; });
}

} // namespace

namespace belvademo {

int runQueueWalk() {
    const auto storage = std::filesystem::temp_directory_path() / "belva-demo";
    std::filesystem::remove_all(storage);
    auto helpDesk = sandbox::HelpDesk::make({.storageDirectory = storage});
    auto core = helpDesk->initializeCorvane(corvane::Identity::createAnonymous("Demo User", "demo@example.com"));
    SupportUI::initialize(core);
    std::cout << "BelvaKit " << libraryVersion() << " on the embedded help desk at "
              << core->accountDetails().accountUrl << "\n";

    // The simulated agent answers every comment of the user after a short while.
    auto& desk = *helpDesk->tickets();
    const auto agent = desk.addAgent("Sam from Support");
    desk.setAutoReply(agent.userId, [](const dastrel::CRVRequest&, const dastrel::CRVComment& comment) {
        return std::optional<sandbox::TicketDesk::Reply>(sandbox::TicketDesk::Reply{
            "Thanks, I am looking into \"" + comment.body + "\".", "<p>Thanks, I am looking into it.</p>",
            platform::milliseconds(200)});
    });

    int completed = 0;
    auto subscription = sharedStore()->addActionListener([&](const tivra::Action& action) {
        if (tivra::actionAs<RequestQueueActions::QueueCompleted>(action)) ++completed;
        printQueueAction(action);
    });

    const auto ticketLocalId = platform::uuidString();
    const Upload::Attachment receipt{"Order 1234, paid 2023-11-14", platform::uuidString(), FileType::txt,
                                     "receipt.txt"};
    bool ok = send(ticketLocalId, "My order never arrived.", {receipt}, completed);
    ok = ok && send(platform::uuidString(), "It was order 1234.", {}, completed);

    const auto requests = desk.requests();
    if (!ok || requests.empty()) {
        std::cout << "the help desk has no ticket; giving up\n";
        subscription.removeListener();
        return 1;
    }
    const auto requestId = requests.front().requestId;
    auto agentAnswered = [&] {
        for (const auto& comment : desk.comments(requestId))
            if (comment.authorId == agent.userId) return true;
        return false;
    };
    platform::MainQueue::shared().runUntil(agentAnswered);

    // The id map that lets the device find this conversation again after a restart.
    LocalIDStore ids;
    ids.remoteToLocal[requestId] = ticketLocalId;
    ids.addLocalId(ticketLocalId);

    std::optional<std::vector<Request::Comment>> conversation;
    RequestFetcher().fetchComments(requestId, [&](auto comments) { conversation = std::move(comments); });
    platform::MainQueue::shared().runUntil([&] { return conversation.has_value(); });

    std::cout << "\nrequest " << requestId << " (" << desk.requests().front().status << ")\n";
    for (const auto& comment : conversation.value_or(std::vector<Request::Comment>{})) {
        std::cout << "  [" << comment.id << "] " << comment.name << (comment.isAgent ? " (agent)" : "") << ": "
                  << comment.body << "\n";
        for (const auto& file : comment.attachments)
            std::cout << "      attachment " << file.fileName << ", " << file.fileSize << " bytes, " << file.fileUrl
                      << "\n";
    }

    // What the agent wrote joins the conversation the way a fetch of new comments brings it.
    Actions::NewCommentsFetched fetched;
    fetched.comments = conversation.value_or(std::vector<Request::Comment>{});
    sharedStore()->dispatch(fetched);
    std::cout << "\nconversation rows:\n";
    if (const auto* table = sharedStore()->state().valueOfType<RequestTableState>())
        for (const auto& row : table->cellItems) std::cout << "  " << describeRow(row) << "\n";

    const auto request = desk.requests().front();
    const auto cell = RequestListCellData::fromRequest(request, {agent}, false);
    std::cout << "\nlist cell: " << cell.requestTitle << " | " << rawValue(cell.requestStatus) << " | "
              << cell.displayTimestamp << " | " << cell.commentCount << " comments | last: "
              << cell.requestLastComment.value_or("") << " | agent: "
              << (cell.agentAvatarInfo ? cell.agentAvatarInfo->agentName : std::string("none")) << "\n";

    std::cout << "\nid map: request " << requestId << " -> local " << ids.remoteToLocal.at(requestId) << "\n";
    subscription.removeListener();
    return 0;
}

} // namespace belvademo
