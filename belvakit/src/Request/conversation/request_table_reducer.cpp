#include "belvakit/Request/conversation/request_table_reducer.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/comment_mapping.hpp"

#include <algorithm>
#include <limits>
#include <set>
#include <unordered_map>

namespace belvakit {

using tivra::actionAs;

namespace {

// Everything but the messages and their rows, which the caller is about to replace; copying ten
// thousand messages only to drop them is the costly part of a reduction.
RequestTableState withoutMessages(const RequestTableState& state) {
    RequestTableState next;
    next.systemMessage = state.systemMessage;
    next.ticketClosed = state.ticketClosed;
    next.mapLocalToRemote = state.mapLocalToRemote;
    next.localId = state.localId;
    next.remoteId = state.remoteId;
    next.lastActionType = state.lastActionType;
    next.finishedLoading = state.finishedLoading;
    next.maxAttachmentSize = state.maxAttachmentSize;
    return next;
}

RequestTableState withMessages(const RequestTableState& state, std::vector<Message> messages, ActionTypes actionType) {
    RequestTableState next = withoutMessages(state);
    next.tableData = std::move(messages);
    next.lastActionType = actionType;
    recompute(next);
    return next;
}

RequestTableState withLastAction(const RequestTableState& state, ActionTypes actionType) {
    RequestTableState next = state;
    next.lastActionType = actionType;
    return next;
}

// Inline, as the merge asks it of every local row.
bool isAttachment(const Message& message) {
    return std::holds_alternative<UserImage>(message) || std::holds_alternative<AgentImage>(message) ||
           std::holds_alternative<UserFile>(message) || std::holds_alternative<AgentFile>(message);
}

bool isChildOf(const Message& message, const std::string& parentId) {
    const auto* parent = parentIdOf(message);
    return parent && *parent == parentId;
}

std::set<std::string> idsOf(const std::vector<Message>& messages) {
    std::set<std::string> ids;
    for (const auto& message : messages) ids.insert(id(message));
    return ids;
}

std::vector<Message> without(const std::vector<Message>& messages, const std::set<std::string>& ids) {
    std::vector<Message> kept;
    kept.reserve(messages.size());
    for (const auto& message : messages)
        if (!ids.contains(id(message))) kept.push_back(message);
    return kept;
}

const std::string& mappedId(const std::string& id, const std::map<std::string, std::string>& map) {
    const auto found = map.find(id);
    return found == map.end() ? id : found->second;
}

// `fields` gives everything but the messages, which are `local`.
RequestTableState merged(const RequestTableState& fields, const std::vector<Message>& local,
                         const std::vector<Message>& remote) {
    return withMessages(fields, mergeMessages(remote, local, fields.mapLocalToRemote), ActionTypes::fetchedNewComments);
}

RequestTableState withSetMessages(const RequestTableState& state, std::vector<Message> messages) {
    return withMessages(state, std::move(messages), ActionTypes::setMessages);
}

RequestTableState withNamedAttachments(const RequestTableState& state, const std::vector<Upload::Attachment>& attachments) {
    RequestTableState next = withoutMessages(state);
    next.lastActionType = ActionTypes::noAction;
    next.tableData = state.tableData;
    std::unordered_map<std::string, std::size_t> indexById;
    for (std::size_t i = 0; i < next.tableData.size(); ++i) indexById[id(next.tableData[i])] = i;
    for (const auto& attachment : attachments) {
        const auto found = indexById.find(attachment.id);
        if (found == indexById.end()) continue;
        std::visit(
            [&](auto& record) {
                if constexpr (AttachmentMessage<std::decay_t<decltype(record)>>)
                    record.filename = interpolatedFilename(attachment);
            },
            next.tableData[found->second]);
    }
    recompute(next);
    return next;
}

template <class Record>
void takeServerFields(Record& local, const Record& remote) {
    if constexpr (TextMessage<Record>) {
        local.body = remote.body;
        local.htmlBody = remote.htmlBody;
    } else if constexpr (ImageMessage<Record>) {
        local.filename = remote.filename;
        local.imageUrl = remote.imageUrl;
        local.thumbnailUrl = remote.thumbnailUrl;
        local.imageSize = remote.imageSize;
    } else {
        local.filename = remote.filename;
    }
    local.createdAt = remote.createdAt;
}

} // namespace

std::string interpolatedFilename(const Upload::Attachment& attachment) {
    if (attachment.filename) return *attachment.filename;
    return "Attachment" + attachment.id + "." + std::string(extension(attachment.fileType));
}

Message mergedMessage(const Message& remote, const Message& local) {
    if (remote.index() != local.index()) return remote;
    Message result = local;
    std::visit(
        [&](auto& record) {
            using Record = std::decay_t<decltype(record)>;
            takeServerFields(record, std::get<Record>(remote));
        },
        result);
    return result;
}

std::vector<Message> mergeMessages(const std::vector<Message>& remoteMessages, const std::vector<Message>& local,
                                   const std::map<std::string, std::string>& map) {
    std::vector<Message> remote = remoteMessages;
    std::vector<Message> result;
    result.reserve(local.size() + remote.size());
    std::size_t i = 0;
    std::size_t j = 0;
    const std::string* remoteKey = nullptr;
    constexpr auto noRemoteKey = std::numeric_limits<std::size_t>::max();
    std::size_t remoteKeyOf = noRemoteKey;
    while (i < local.size()) {
        if (j >= remote.size()) {
            result.insert(result.end(), local.begin() + static_cast<std::ptrdiff_t>(i), local.end());
            return result;
        }
        const Message& localMessage = local[i];
        if (isAttachment(localMessage)) {
            // The attachments of one comment come back from the server in any order.
            if (const auto paired = map.find(id(localMessage)); paired != map.end()) {
                const auto match = std::find_if(remote.begin(), remote.end(),
                                                [&](const Message& m) { return id(m) == paired->second; });
                if (match != remote.end()) {
                    result.push_back(mergedMessage(*match, localMessage));
                    remote.erase(match);
                    remoteKeyOf = noRemoteKey;
                    ++i;
                    continue;
                }
            }
        }
        const Message& remoteMessage = remote[j];
        // A long local history often meets the same remote row: look its key up once.
        if (remoteKeyOf != j) {
            remoteKey = &mappedId(id(remoteMessage), map);
            remoteKeyOf = j;
        }
        if (mappedId(id(localMessage), map) == *remoteKey || id(localMessage) == id(remoteMessage)) {
            result.push_back(mergedMessage(remoteMessage, localMessage));
            ++i;
            ++j;
        } else if (createdAt(localMessage) < createdAt(remoteMessage)) {
            result.push_back(localMessage);
            ++i;
        } else {
            result.push_back(remoteMessage);
            ++j;
        }
    }
    result.insert(result.end(), remote.begin() + static_cast<std::ptrdiff_t>(std::min(j, remote.size())), remote.end());
    return result;
}

std::optional<RequestTableState> RequestTabelCreationSubReducer::reduce(const RequestTableState& state,
                                                                        const tivra::Action& action) const {
    const auto* ticket = actionAs<Actions::TicketCreated>(action);
    const auto* comment = actionAs<Actions::CommentCreated>(action);
    if (ticket || comment) {
        RequestTableState next = withoutMessages(state);
        next.tableData = state.tableData;
        const std::string& localId = ticket ? ticket->localId : comment->localId;
        if (ticket) {
            next.localId = ticket->localId;
            next.remoteId = ticket->remoteRequestId;
        }
        next.lastActionType = ticket ? ActionTypes::remoteTicketCreated : ActionTypes::remoteCommentCreated;
        next.mapLocalToRemote[localId] = ticket ? ticket->remoteCommentId : comment->remoteCommentId;
        for (const auto& [remoteAttachmentId, attachment] : ticket ? ticket->attachments : comment->attachments)
            next.mapLocalToRemote[attachment.id] = remoteAttachmentId;

        // Only the newest send carries the delivered label.
        for (auto& message : next.tableData)
            if (status(message) == DeliveryStatus::lastDelivered) setStatus(message, DeliveryStatus::delivered);
        Message* lastAttachment = nullptr;
        for (auto& message : next.tableData) {
            if (!isChildOf(message, localId)) continue;
            setStatus(message, DeliveryStatus::delivered);
            lastAttachment = &message;
        }
        if (lastAttachment) setStatus(*lastAttachment, DeliveryStatus::lastDelivered);
        const auto sent = std::find_if(next.tableData.begin(), next.tableData.end(),
                                       [&](const Message& m) { return id(m) == localId; });
        if (sent != next.tableData.end()) {
            setStatus(*sent, lastAttachment ? DeliveryStatus::delivered : DeliveryStatus::lastDelivered);
            setCreatedAt(*sent, ticket ? ticket->remoteCreatedAt : comment->remoteCreatedAt);
        }
        recompute(next);
        return next;
    }

    const std::string* failedId = nullptr;
    std::optional<std::string> ticketLocalId;
    if (const auto* error = actionAs<Actions::TicketCreationError>(action)) {
        failedId = &error->id;
        ticketLocalId = error->id;
    } else if (const auto* commentError = actionAs<Actions::CommentCreationError>(action)) {
        failedId = &commentError->id;
    } else if (const auto* uploadError = actionAs<Actions::AttachmentsUploadError>(action)) {
        failedId = &uploadError->id;
    }
    if (!failedId) return std::nullopt;
    RequestTableState next = withoutMessages(state);
    next.tableData = state.tableData;
    next.lastActionType = ActionTypes::noAction;
    if (ticketLocalId) next.localId = ticketLocalId;
    for (auto& message : next.tableData)
        if (id(message) == *failedId || isChildOf(message, *failedId)) setStatus(message, DeliveryStatus::failed);
    recompute(next);
    return next;
}

std::optional<RequestTableState> RequestTableReducer::reduce(const RequestTableState& state,
                                                             const tivra::Action& action) const {
    if (actionAs<Actions::InitializeRequestControllerState>(action)) return initialRequestTableState();
    if (const auto* newMessage = actionAs<Actions::NewMessage>(action)) {
        std::vector<Message> messages;
        messages.reserve(state.tableData.size() + 1);
        messages = state.tableData;
        messages.push_back(newMessage->message);
        return withMessages(state, std::move(messages), ActionTypes::noAction);
    }
    if (const auto* newMessages = actionAs<Actions::NewMessages>(action)) {
        std::vector<Message> messages;
        messages.reserve(state.tableData.size() + newMessages->messages.size());
        messages = state.tableData;
        messages.insert(messages.end(), newMessages->messages.begin(), newMessages->messages.end());
        return withMessages(state, std::move(messages), ActionTypes::noAction);
    }
    if (const auto* fetched = actionAs<Actions::AttachmentFetched>(action)) {
        const auto found = std::find_if(state.tableData.begin(), state.tableData.end(),
                                        [&](const Message& m) { return id(m) == id(fetched->message); });
        if (found == state.tableData.end()) return std::nullopt;
        std::vector<Message> messages = state.tableData;
        messages[static_cast<std::size_t>(found - state.tableData.begin())] = fetched->message;
        return withMessages(state, std::move(messages), ActionTypes::noAction);
    }
    if (auto created = creation_.reduce(state, action)) return created;
    if (const auto* prepared = actionAs<Actions::AttachmentsPrepared>(action))
        return withNamedAttachments(state, prepared->attachments);
    if (const auto* merge = actionAs<Actions::MergeMessages>(action)) return merged(state, state.tableData, merge->messages);
    if (const auto* fetched = actionAs<Actions::NewCommentsFetched>(action)) {
        std::vector<Message> remote;
        for (const auto& comment : fetched->comments) {
            auto messages = messagesFromComment(comment);
            remote.insert(remote.end(), std::make_move_iterator(messages.begin()), std::make_move_iterator(messages.end()));
        }
        return merged(state, state.tableData, remote);
    }
    if (actionAs<Actions::FetchCommentsError>(action)) return withLastAction(state, ActionTypes::fetchedNewCommentsError);
    if (const auto* set = actionAs<Actions::SetMessages>(action)) return withSetMessages(state, set->messages);
    if (actionAs<Actions::InitalFetchCommentsError>(action)) {
        RequestTableState next = state;
        next.finishedLoading = true;
        return next;
    }
    if (const auto* disk = actionAs<Actions::MessagesLoadedFromDisk>(action)) {
        RequestTableState loaded = withoutMessages(state);
        loaded.mapLocalToRemote = disk->mapLocalToRemote;
        if (state.tableData.empty()) {
            loaded.localId = disk->localId;
            return withSetMessages(loaded, disk->messages);
        }
        // The table already holds messages of this screen: the disk fills in, it doesn't rename.
        return merged(loaded, state.tableData, disk->messages);
    }
    if (const auto* network = actionAs<Actions::MessagesLoadedFromNetwork>(action)) {
        RequestTableState loaded = withoutMessages(state);
        loaded.finishedLoading = true;
        loaded.remoteId = network->requestId;
        if (!state.tableData.empty()) {
            return merged(loaded, state.tableData, network->messages);
        }
        RequestTableState next = withSetMessages(loaded, network->messages);
        if (!network->messages.empty()) next.localId = id(network->messages.front());
        return next;
    }
    if (const auto* deletion = actionAs<Actions::DeleteMessages>(action)) {
        const auto ids = idsOf(deletion->messages);
        RequestTableState next = withMessages(state, without(state.tableData, ids), ActionTypes::deleteMessages);
        for (const auto& deleted : ids) next.mapLocalToRemote.erase(deleted);
        return next;
    }
    if (const auto* move = actionAs<Actions::MoveMessagesToBottom>(action)) {
        std::vector<Message> messages = without(state.tableData, idsOf(move->messages));
        for (Message message : move->messages) {
            setStatus(message, DeliveryStatus::notDelivered);
            messages.push_back(std::move(message));
        }
        return withMessages(state, std::move(messages), ActionTypes::moveMessagesToBottom);
    }
    if (const auto* settings = actionAs<Actions::SettingsFetched>(action)) {
        RequestTableState next = state;
        next.systemMessage = settings->systemMessage;
        next.maxAttachmentSize = settings->maxAttachmentSize;
        return next;
    }
    if (const auto* remoteId = actionAs<Actions::SetRemoteId>(action)) {
        RequestTableState next = state;
        next.remoteId = remoteId->remoteRequestID;
        return next;
    }
    if (actionAs<Actions::TicketClosed>(action)) {
        RequestTableState next = state;
        next.ticketClosed = true;
        return next;
    }
    return std::nullopt;
}

} // namespace belvakit
