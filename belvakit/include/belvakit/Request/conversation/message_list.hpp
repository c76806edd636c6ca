#pragma once

#include "belvakit/Request/conversation/message.hpp"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace belvakit {

class Cache;

// A conversation as it is kept on disk, one cache entry per ticket under its local id.
struct MessageList {
    static constexpr int currentVersion = 1;

    int version = currentVersion;
    Date timeStamp = 0;
    std::vector<Message> messages;
    std::map<std::string, std::string> mapLocalToRemote;
    std::optional<std::string> remoteRequestId;
    bool ticketClosed = false;
};

// The JSON bytes of the list; nothing when a value cannot be written (a date that is not finite).
std::optional<std::string> encodeMessageList(const MessageList& list);
// The list in the bytes, of whatever version; nothing when they hold no readable list. Records that
// fail their requirements are dropped one by one.
std::optional<MessageList> decodeMessageList(std::string_view bytes);

// One message from its JSON text; nothing when any requirement of its record fails.
std::optional<Message> decodeMessage(std::string_view json);
std::string encodeMessage(const Message& message);

// Writes the conversation under `key`, without the messages still queued. No key, no cache or a
// value that cannot be written: nothing happens and the previous entry stays.
void persistConversation(const std::vector<Message>& messages, const std::optional<std::string>& key,
                         const std::optional<std::string>& remoteRequestId,
                         const std::map<std::string, std::string>& mapLocalToRemote, int version, bool ticketClosed,
                         const std::shared_ptr<Cache>& cache);
// The same for a conversation whose saved entry was not read yet: the saved messages it lacks
// stay, ahead of its own, so that writing it loses nothing the entry held.
void persistConversationOver(const std::vector<Message>& messages, const std::optional<std::string>& key,
                             const std::optional<std::string>& remoteRequestId,
                             const std::map<std::string, std::string>& mapLocalToRemote, int version,
                             bool ticketClosed, const std::shared_ptr<Cache>& cache);

// Which messages one step of a conversation touched, by id.
struct ConversationChanges {
    std::set<std::string> changed;  // new or different
    std::set<std::string> removed;
};
ConversationChanges changesBetween(const std::vector<Message>& before, const std::vector<Message>& after);

// Writes only what `changes` names over the saved entry, which keeps the rest: for a copy of the
// conversation that may be older than the entry, such as the send queue's of a closed screen.
void persistChangesOver(const std::vector<Message>& messages, const ConversationChanges& changes,
                        const std::optional<std::string>& key, const std::optional<std::string>& remoteRequestId,
                        const std::map<std::string, std::string>& mapLocalToRemote, int version, bool ticketClosed,
                        const std::shared_ptr<Cache>& cache);

using LoadConversationCompletion =
    std::function<void(std::vector<Message> messages, std::map<std::string, std::string> mapLocalToRemote,
                       std::optional<std::string> remoteRequestId, bool ticketClosed)>;

// Calls `completion` at once with what `data` holds, or with an empty conversation when it holds
// nothing readable or another version.
void loadConversation(std::string_view data, int version, const LoadConversationCompletion& completion);

// The name of an attachment that came without one.
std::string interpolatedFilename(std::string_view attachmentId, FileType fileType);

} // namespace belvakit
