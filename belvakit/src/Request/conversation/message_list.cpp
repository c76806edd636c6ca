#include "belvakit/Request/conversation/message_list.hpp"

#include "belvakit/Request/conversation/message_equality.hpp"
#include "belvakit/attachments/cache.hpp"
#include "platform/clock.hpp"
#include "platform/json.hpp"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/value.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace belvakit {

namespace json = boost::json;

namespace {

// Writing: every key of a record's column, absent html body and avatar as empty strings.

template <class Record>
void writeRecord(const Record& record, bool isEndOfGroup, platform::JsonWriter& out) {
    out.beginObject();
    out.key("id");
    out.string(record.id);
    if constexpr (AttachmentMessage<Record>) {
        out.key("parentId");
        out.string(record.parentId);
        out.key("filename");
        out.string(record.filename);
    }
    out.key("type");
    out.string(rawValue(Record::type));
    if constexpr (DeliverableEvent<Record>) {
        out.key("status");
        out.number(static_cast<std::int64_t>(record.status));
    }
    if constexpr (TextMessage<Record>) {
        out.key("body");
        out.string(record.body);
        out.key("html_body");
        out.string(record.htmlBody ? std::string_view(*record.htmlBody) : std::string_view());
    }
    if constexpr (ImageMessage<Record>) {
        out.key("imageUrl");
        out.string(record.imageUrl);
        out.key("thumbnailUrl");
        out.string(record.thumbnailUrl);
        out.key("imageSize-width");
        out.number(record.imageSize.width);
        out.key("imageSize-height");
        out.number(record.imageSize.height);
    }
    if constexpr (FileMessage<Record>) {
        out.key("attachmentUrl");
        out.string(record.attachmentUrl);
        out.key("size");
        out.number(record.size);
    }
    if constexpr (AttachmentMessage<Record>) {
        out.key("fileType");
        out.number(static_cast<std::int64_t>(record.fileType));
    }
    if constexpr (FileMessage<Record>) {
        out.key("downloaded");
        out.boolean(record.downloaded);
    }
    out.key("createdAt");
    out.number(record.createdAt);
    if constexpr (IdentifiableUserMessage<Record>) {
        out.key("userID");
        out.number(record.userID);
        out.key("name");
        out.string(record.name);
        out.key("avatarURL");
        out.string(record.avatarURL ? std::string_view(*record.avatarURL) : std::string_view());
    }
    out.key("isEndOfGroup");
    out.boolean(isEndOfGroup);
    out.endObject();
}

void writeMessage(const Message& message, platform::JsonWriter& out) {
    message.visit([&](const auto& record) { writeRecord(record, isEndOfGroup(message), out); });
}

// JSON has no text for these; writing them would give a file that cannot be read back.
bool isWritable(const Message& message) {
    return message.visit([](const auto& record) {
        bool finite = std::isfinite(record.createdAt);
        if constexpr (ImageMessage<std::decay_t<decltype(record)>>)
            finite = finite && std::isfinite(record.imageSize.width) && std::isfinite(record.imageSize.height);
        return finite;
    });
}

// Reading: each requirement names a key and the exact JSON type its value must have.
class Reader {
public:
    explicit Reader(const json::object& object) : object_(object) {}

    bool string(std::string_view key, std::string& out) const {
        const auto* value = object_.if_contains(key);
        const auto* text = value ? value->if_string() : nullptr;
        if (!text) return false;
        out.assign(text->data(), text->size());
        return true;
    }
    bool string(std::string_view key, std::optional<std::string>& out) const {
        std::string text;
        if (!string(key, text)) return false;
        out = std::move(text);
        return true;
    }
    bool boolean(std::string_view key, bool& out) const {
        const auto* value = object_.if_contains(key);
        const auto* flag = value ? value->if_bool() : nullptr;
        if (!flag) return false;
        out = *flag;
        return true;
    }
    bool integer(std::string_view key, std::int64_t& out) const {
        const auto* value = object_.if_contains(key);
        if (!value) return false;
        if (const auto* signedValue = value->if_int64()) {
            out = *signedValue;
            return true;
        }
        if (const auto* unsignedValue = value->if_uint64()) {
            if (*unsignedValue > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return false;
            out = static_cast<std::int64_t>(*unsignedValue);
            return true;
        }
        return false;
    }
    // Any JSON number, converted as the platform's number type would be.
    bool number(std::string_view key, std::int64_t& out) const {
        const auto* value = object_.if_contains(key);
        if (!value) return false;
        if (integer(key, out)) return true;
        const auto* real = value->if_double();
        if (!real || !std::isfinite(*real) || std::fabs(*real) >= 9.2e18) return false;
        out = static_cast<std::int64_t>(*real);
        return true;
    }
    bool floating(std::string_view key, double& out) const {
        const auto* value = object_.if_contains(key);
        if (!value || !value->is_number()) return false;
        out = value->is_double() ? value->get_double()
              : value->is_int64() ? static_cast<double>(value->get_int64())
                                  : static_cast<double>(value->get_uint64());
        return true;
    }
    bool status(std::string_view key, DeliveryStatus& out) const {
        std::int64_t raw = 0;
        if (!integer(key, raw)) return false;
        const auto status = deliveryStatusFromRawValue(raw);
        if (!status) return false;
        out = *status;
        return true;
    }
    bool fileType(std::string_view key, FileType& out) const {
        std::int64_t raw = 0;
        if (!integer(key, raw)) return false;
        const auto type = fileTypeFromRawValue(raw);
        if (!type) return false;
        out = *type;
        return true;
    }

private:
    const json::object& object_;
};

template <class Record>
std::optional<Message> readRecord(const json::object& object) {
    const Reader in(object);
    Record record;
    bool endOfGroup = false;
    bool ok = in.string("id", record.id) && in.floating("createdAt", record.createdAt) &&
              in.boolean("isEndOfGroup", endOfGroup);
    if constexpr (AttachmentMessage<Record>)
        ok = ok && in.string("parentId", record.parentId) && in.string("filename", record.filename) &&
             in.fileType("fileType", record.fileType);
    if constexpr (DeliverableEvent<Record>) ok = ok && in.status("status", record.status);
    if constexpr (TextMessage<Record>)
        ok = ok && in.string("body", record.body) && in.string("html_body", record.htmlBody);
    if constexpr (ImageMessage<Record>)
        ok = ok && in.string("imageUrl", record.imageUrl) && in.string("thumbnailUrl", record.thumbnailUrl) &&
             in.floating("imageSize-width", record.imageSize.width) &&
             in.floating("imageSize-height", record.imageSize.height);
    if constexpr (FileMessage<Record>)
        ok = ok && in.string("attachmentUrl", record.attachmentUrl) && in.integer("size", record.size) &&
             in.boolean("downloaded", record.downloaded);
    if constexpr (IdentifiableUserMessage<Record>)
        ok = ok && in.number("userID", record.userID) && in.string("name", record.name) &&
             in.string("avatarURL", record.avatarURL);
    if (!ok) return std::nullopt;
    return Message(std::move(record), endOfGroup);
}

std::optional<Message> readMessage(const json::object& object) {
    const auto* typeValue = object.if_contains("type");
    const auto* typeText = typeValue ? typeValue->if_string() : nullptr;
    if (!typeText) return std::nullopt;
    const auto eventType = eventTypeFromRawValue(*typeText);
    if (!eventType) return std::nullopt;
    switch (*eventType) {
    case EventType::userMessage: return readRecord<UserMessage>(object);
    case EventType::agentMessage: return readRecord<AgentMessage>(object);
    case EventType::userImage: return readRecord<UserImage>(object);
    case EventType::agentImage: return readRecord<AgentImage>(object);
    case EventType::userFile: return readRecord<UserFile>(object);
    case EventType::agentFile: return readRecord<AgentFile>(object);
    case EventType::date:
    case EventType::systemMessage: return std::nullopt;
    }
    return std::nullopt;
}

std::optional<MessageList> readList(const json::value& root) {
    const auto* object = root.if_object();
    if (!object) return std::nullopt;
    const Reader in(*object);
    MessageList list;
    std::int64_t version = 0;
    if (!in.integer("version", version) || version < std::numeric_limits<int>::min() ||
        version > std::numeric_limits<int>::max())
        return std::nullopt;
    list.version = static_cast<int>(version);
    if (!in.floating("timeStamp", list.timeStamp)) return std::nullopt;

    const auto* mapValue = object->if_contains("mapLocalToRemote");
    const auto* map = mapValue ? mapValue->if_object() : nullptr;
    if (!map) return std::nullopt;
    for (const auto& [local, remote] : *map) {
        const auto* remoteText = remote.if_string();
        if (!remoteText) return std::nullopt;
        list.mapLocalToRemote.emplace(std::string(local), std::string(*remoteText));
    }

    const auto* messagesValue = object->if_contains("messages");
    const auto* messages = messagesValue ? messagesValue->if_array() : nullptr;
    if (!messages) return std::nullopt;
    for (const auto& element : *messages)
        if (!element.is_object()) return std::nullopt;
    if (!in.boolean("ticketClosed", list.ticketClosed)) return std::nullopt;

    std::string remoteRequestId;
    if (in.string("remoteRequestId", remoteRequestId)) list.remoteRequestId = std::move(remoteRequestId);

    list.messages.reserve(messages->size());
    for (const auto& element : *messages)
        if (auto message = readMessage(element.get_object())) list.messages.push_back(std::move(*message));
    return list;
}

// The frame of a list around the messages that `keep` accepts.
template <class Keep>
std::optional<std::string> encodeConversation(int version, Date timeStamp, const std::vector<Message>& messages,
                                              const std::map<std::string, std::string>& mapLocalToRemote,
                                              const std::optional<std::string>& remoteRequestId, bool ticketClosed,
                                              const Keep& keep) {
    if (!std::isfinite(timeStamp)) return std::nullopt;
    std::size_t kept = 0;
    for (const auto& message : messages) {
        if (!keep(message)) continue;
        if (!isWritable(message)) return std::nullopt;
        ++kept;
    }
    std::string text;
    text.reserve(kept * 400 + mapLocalToRemote.size() * 64 + 256);
    platform::JsonWriter out(text);
    out.beginObject();
    out.key("version");
    out.number(static_cast<std::int64_t>(version));
    out.key("timeStamp");
    out.number(timeStamp);
    out.key("messages");
    out.beginArray();
    for (const auto& message : messages)
        if (keep(message)) writeMessage(message, out);
    out.endArray();
    out.key("mapLocalToRemote");
    out.beginObject();
    for (const auto& [local, remote] : mapLocalToRemote) {
        out.key(local);
        out.string(remote);
    }
    out.endObject();
    out.key("ticketClosed");
    out.boolean(ticketClosed);
    if (remoteRequestId) {
        out.key("remoteRequestId");
        out.string(*remoteRequestId);
    }
    out.endObject();
    return text;
}

} // namespace

std::string encodeMessage(const Message& message) {
    std::string text;
    platform::JsonWriter out(text);
    writeMessage(message, out);
    return text;
}

std::optional<Message> decodeMessage(std::string_view text) {
    const auto value = platform::parseJson(text);
    if (!value || !value->is_object()) return std::nullopt;
    return readMessage(value->get_object());
}

std::optional<std::string> encodeMessageList(const MessageList& list) {
    return encodeConversation(list.version, list.timeStamp, list.messages, list.mapLocalToRemote,
                              list.remoteRequestId, list.ticketClosed, [](const Message&) { return true; });
}

std::optional<MessageList> decodeMessageList(std::string_view bytes) {
    // Most conversations are short: their document fits this buffer, and takes nothing from the heap.
    unsigned char buffer[4096];
    json::monotonic_resource arena(buffer, sizeof buffer);
    const auto root = platform::parseJson(bytes, json::storage_ptr(&arena));
    if (!root) return std::nullopt;
    return readList(*root);
}

void persistConversation(const std::vector<Message>& messages, const std::optional<std::string>& key,
                         const std::optional<std::string>& remoteRequestId,
                         const std::map<std::string, std::string>& mapLocalToRemote, int version, bool ticketClosed,
                         const std::shared_ptr<Cache>& cache) {
    // Encoding a long conversation costs: nothing is encoded that has nowhere to go.
    if (!key || !cache) return;
    // The send queue owns unsent messages until they succeed or fail.
    const auto sent = [](const Message& message) { return status(message) != DeliveryStatus::notDelivered; };
    auto bytes = encodeConversation(version, platform::now(), messages, mapLocalToRemote, remoteRequestId, ticketClosed, sent);
    if (!bytes) return;
    cache->store(*key, std::move(*bytes));
}

namespace {

MessageList sentMessages(const std::vector<Message>& messages, const std::optional<std::string>& remoteRequestId,
                         const std::map<std::string, std::string>& mapLocalToRemote, int version, bool ticketClosed) {
    MessageList list;
    list.version = version;
    for (const auto& message : messages)
        if (status(message) != DeliveryStatus::notDelivered) list.messages.push_back(message);
    list.mapLocalToRemote = mapLocalToRemote;
    list.remoteRequestId = remoteRequestId;
    list.ticketClosed = ticketClosed;
    return list;
}

void dropRemoteTwins(MessageList& list) {
    // A local message mapped to a remote comment is that comment: a fetch's copy of it goes.
    std::set<std::string_view> present;
    for (const auto& message : list.messages) present.insert(id(message));
    std::set<std::string_view> twins;
    for (const auto& [local, remote] : list.mapLocalToRemote)
        if (local != remote && present.contains(local)) twins.insert(remote);
    std::erase_if(list.messages, [&](const Message& message) { return twins.contains(id(message)); });
}

// Writes `list` under `key` on the cache's own thread, after `merge` took what it wants of the
// saved entry, when that is a readable list of the same version.
template <class Merge>
void writeOver(const std::string& key, MessageList list, const std::shared_ptr<Cache>& cache, Merge merge) {
    cache->update(key, [list = std::move(list), merge = std::move(merge)](std::optional<std::string> bytes) mutable {
        if (auto saved = decodeMessageList(bytes.value_or("")); saved && saved->version == list.version) {
            merge(list.messages, saved->messages);
            list.mapLocalToRemote.merge(saved->mapLocalToRemote);
            if (!list.remoteRequestId) list.remoteRequestId = std::move(saved->remoteRequestId);
            list.ticketClosed = list.ticketClosed || saved->ticketClosed;
            dropRemoteTwins(list);
        }
        list.timeStamp = platform::now();
        return encodeMessageList(list);
    });
}

auto byId(const std::string& wanted) {
    return [&wanted](const Message& message) { return id(message) == wanted; };
}

} // namespace

void persistConversationOver(const std::vector<Message>& messages, const std::optional<std::string>& key,
                             const std::optional<std::string>& remoteRequestId,
                             const std::map<std::string, std::string>& mapLocalToRemote, int version,
                             bool ticketClosed, const std::shared_ptr<Cache>& cache) {
    if (!key || !cache) return;
    writeOver(*key, sentMessages(messages, remoteRequestId, mapLocalToRemote, version, ticketClosed), cache,
              [](std::vector<Message>& mine, std::vector<Message>& saved) {
                  std::vector<Message> merged;
                  for (auto& message : saved)
                      if (std::ranges::none_of(mine, byId(id(message)))) merged.push_back(std::move(message));
                  merged.insert(merged.end(), std::make_move_iterator(mine.begin()), std::make_move_iterator(mine.end()));
                  mine = std::move(merged);
              });
}

void persistChangesOver(const std::vector<Message>& messages, const ConversationChanges& changes,
                        const std::optional<std::string>& key, const std::optional<std::string>& remoteRequestId,
                        const std::map<std::string, std::string>& mapLocalToRemote, int version, bool ticketClosed,
                        const std::shared_ptr<Cache>& cache) {
    if (!key || !cache) return;
    writeOver(*key, sentMessages(messages, remoteRequestId, mapLocalToRemote, version, ticketClosed), cache,
              [changes](std::vector<Message>& mine, std::vector<Message>& saved) {
                  for (const auto& gone : changes.removed) std::erase_if(saved, byId(gone));
                  for (const auto& wanted : changes.changed) {
                      const auto own = std::ranges::find_if(mine, byId(wanted));
                      if (own == mine.end()) continue;  // still queued: the send queue keeps it
                      if (auto there = std::ranges::find_if(saved, byId(wanted)); there != saved.end())
                          *there = *own;
                      else
                          saved.push_back(*own);
                  }
                  mine = std::move(saved);
              });
}

ConversationChanges changesBetween(const std::vector<Message>& before, const std::vector<Message>& after) {
    ConversationChanges changes;
    std::unordered_map<std::string_view, const Message*> earlier;
    for (const auto& message : before) earlier.emplace(id(message), &message);
    for (const auto& message : after) {
        const auto found = earlier.find(id(message));
        if (found == earlier.end() || !(found->second->sharesRecordWith(message) || rowsEqual(*found->second, message)))
            changes.changed.insert(id(message));
        if (found != earlier.end()) earlier.erase(found);
    }
    for (const auto& [gone, message] : earlier) changes.removed.insert(std::string(gone));
    return changes;
}

void loadConversation(std::string_view data, int version, const LoadConversationCompletion& completion) {
    auto list = decodeMessageList(data);
    if (!list || list->version != version) {
        completion({}, {}, std::nullopt, false);
        return;
    }
    completion(std::move(list->messages), std::move(list->mapLocalToRemote), std::move(list->remoteRequestId),
               list->ticketClosed);
}

std::string interpolatedFilename(std::string_view attachmentId, FileType fileType) {
    std::string name = "Attachment";
    name.append(attachmentId).append(".").append(extension(fileType));
    return name;
}

} // namespace belvakit
