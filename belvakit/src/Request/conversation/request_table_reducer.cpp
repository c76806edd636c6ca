#include "belvakit/Request/conversation/request_table_reducer.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/comment_mapping.hpp"

#include <boost/unordered/unordered_flat_set.hpp>

#include <algorithm>
#include <functional>
#include <limits>
#include <set>
#include <string_view>
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
    recompute(next, state);
    return next;
}

RequestTableState withLastAction(const RequestTableState& state, ActionTypes actionType) {
    RequestTableState next = state;
    next.lastActionType = actionType;
    return next;
}

// Inline, as the merge asks it of every local row.
bool isAttachment(const Message& message) {
    return message.holds<UserImage>() || message.holds<AgentImage>() ||
           message.holds<UserFile>() || message.holds<AgentFile>();
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
        auto& message = next.tableData[found->second];
        if (!hasAttachment(message)) continue;
        message.update([&](auto& record) {
            if constexpr (AttachmentMessage<std::decay_t<decltype(record)>>) record.filename = interpolatedFilename(attachment);
        });
    }
    recompute(next, state);
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
    result.update([&](auto& record) { takeServerFields(record, remote.get<std::decay_t<decltype(record)>>()); });
    return result;
}

namespace {

constexpr std::size_t unpaired = std::numeric_limits<std::size_t>::max();

// Which remote message each local one stands for, and back: a local message pairs with the
// remote one its id maps to, or that has its id. Pairing everything before the walk is what lets
// the walk meet a pair in either order and still show it once.
struct Pairs {
    std::vector<std::size_t> remoteOfLocal;
    std::vector<std::size_t> localOfRemote;
};

Pairs pairMessages(const std::vector<Message>& remote, const std::vector<Message>& local,
                   const std::map<std::string, std::string>& map) {
    Pairs pairs{std::vector<std::size_t>(local.size(), unpaired), std::vector<std::size_t>(remote.size(), unpaired)};
    if (remote.empty()) return pairs;
    std::unordered_multimap<std::string_view, std::size_t> remoteByKey;
    remoteByKey.reserve(remote.size() * 2);
    for (std::size_t j = 0; j < remote.size(); ++j) {
        const std::string& remoteId = id(remote[j]);
        const std::string& key = mappedId(remoteId, map);
        remoteByKey.emplace(key, j);
        if (&key != &remoteId) remoteByKey.emplace(remoteId, j);
    }
    auto take = [&](std::size_t i, std::string_view key) {
        const auto [first, last] = remoteByKey.equal_range(key);
        for (auto candidate = first; candidate != last; ++candidate) {
            const std::size_t j = candidate->second;
            // A text never stands for an image: both are kept rather than one lost.
            if (pairs.localOfRemote[j] != unpaired || remote[j].index() != local[i].index()) continue;
            pairs.localOfRemote[j] = i;
            pairs.remoteOfLocal[i] = j;
            return true;
        }
        return false;
    };
    // Most local messages of a long conversation have no remote copy and no mapping: the hashes
    // of the keys set them aside without a search of the map and the index, or a look at their ids.
    const std::hash<std::string_view> hash;
    boost::unordered_flat_set<std::size_t> keyHashes;
    keyHashes.reserve(remoteByKey.size() + map.size());
    for (const auto& [key, j] : remoteByKey) keyHashes.insert(hash(key));
    for (const auto& [localId, remoteId] : map) keyHashes.insert(hash(localId));
    for (std::size_t i = 0; i < local.size(); ++i) {
        if (!keyHashes.contains(local[i].idHash())) continue;
        const std::string& localId = id(local[i]);
        const std::string& key = mappedId(localId, map);
        if (!take(i, key) && &key != &localId) take(i, localId);
    }
    return pairs;
}

// The merged form of a pair: the side whose id is a local one keeps its id and its own fields.
Message mergedPair(const Message& remote, const Message& local, const std::map<std::string, std::string>& map) {
    if (!map.contains(id(local)) && map.contains(id(remote))) return mergedMessage(local, remote);
    return mergedMessage(remote, local);
}

} // namespace

std::vector<Message> mergeMessages(const std::vector<Message>& remote, const std::vector<Message>& local,
                                   const std::map<std::string, std::string>& map) {
    const Pairs pairs = pairMessages(remote, local, map);
    std::vector<bool> localDone(local.size(), false);
    std::vector<bool> remoteDone(remote.size(), false);
    std::vector<Message> result;
    result.reserve(local.size() + remote.size());

    // A local message, merged with its pair if it has one; either way both are done.
    auto appendLocal = [&](std::size_t i) {
        const std::size_t j = pairs.remoteOfLocal[i];
        if (j == unpaired) {
            result.push_back(local[i]);
        } else {
            result.push_back(mergedPair(remote[j], local[i], map));
            remoteDone[j] = true;
        }
        localDone[i] = true;
    };
    auto appendRemote = [&](std::size_t j) {
        const std::size_t i = pairs.localOfRemote[j];
        if (i == unpaired) {
            result.push_back(remote[j]);
            remoteDone[j] = true;
        } else {
            appendLocal(i);
        }
    };

    std::size_t i = 0;
    std::size_t j = 0;
    while (i < local.size()) {
        if (localDone[i]) {
            ++i;
            continue;
        }
        while (j < remote.size() && remoteDone[j]) ++j;
        if (j == remote.size()) {
            appendLocal(i++);
            continue;
        }
        const std::size_t pair = pairs.remoteOfLocal[i];
        // The attachments of one comment come back from the server in any order, so a mapped
        // attachment takes its place in the local order; so does any message paired with the row
        // under the cursor.
        const bool mappedAttachment = pair != unpaired && isAttachment(local[i]) && map.contains(id(local[i]));
        if (pair == j || mappedAttachment) {
            appendLocal(i++);
        } else if (createdAt(local[i]) < createdAt(remote[j])) {
            appendLocal(i++);
        } else {
            appendRemote(j++);
        }
    }
    for (; j < remote.size(); ++j)
        if (!remoteDone[j]) appendRemote(j);
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
            // A conversation keeps the id it has: a later message may make the ticket its first failed to.
            if (!next.localId) next.localId = ticket->localId;
            next.remoteId = ticket->remoteRequestId;
        }
        next.lastActionType = ticket ? ActionTypes::remoteTicketCreated : ActionTypes::remoteCommentCreated;
        next.mapLocalToRemote[localId] = ticket ? ticket->remoteCommentId : comment->remoteCommentId;
        for (const auto& [remoteAttachmentId, attachment] : ticket ? ticket->attachments : comment->attachments)
            next.mapLocalToRemote[attachment.id] = remoteAttachmentId;
        // A fetch may have brought the comment before this answer: the local rows, now mapped to
        // it, are the comment, and its remote copies go.
        if (std::any_of(next.tableData.begin(), next.tableData.end(), [&](const Message& m) { return id(m) == localId; })) {
            std::set<std::string> copies{ticket ? ticket->remoteCommentId : comment->remoteCommentId};
            for (const auto& [remoteAttachmentId, attachment] : ticket ? ticket->attachments : comment->attachments)
                copies.insert(remoteAttachmentId);
            std::erase_if(next.tableData, [&](const Message& m) { return copies.contains(id(m)) && !next.mapLocalToRemote.contains(id(m)); });
        }

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
        recompute(next, state);
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
    if (ticketLocalId && !next.localId) next.localId = ticketLocalId;
    for (auto& message : next.tableData)
        if (id(message) == *failedId || isChildOf(message, *failedId)) setStatus(message, DeliveryStatus::failed);
    recompute(next, state);
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
        // The table already holds messages of this screen: the disk fills in, it doesn't rename,
        // and what the table learnt of its sends since stays known. A table with no name yet takes
        // the disk's, or its sends would be kept nowhere.
        if (!loaded.localId) loaded.localId = disk->localId;
        for (const auto& [localId, remoteId] : state.mapLocalToRemote) loaded.mapLocalToRemote[localId] = remoteId;
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
    if (const auto* named = actionAs<Actions::NameConversation>(action)) {
        if (state.localId && (!named->replacing || state.localId == named->localId)) return std::nullopt;
        RequestTableState next = state;
        next.localId = named->localId;
        return next;
    }
    if (const auto* remoteId = actionAs<Actions::SetRemoteId>(action)) {
        RequestTableState next = state;
        next.remoteId = remoteId->remoteRequestID;
        if (!next.localId) next.localId = remoteId->localId;
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
