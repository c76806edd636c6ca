#pragma once

#include "belvakit/Request/conversation/event_type.hpp"
#include "belvakit/Request/conversation/file_type.hpp"
#include "platform/image.hpp"

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace belvakit {

// Seconds since 1970.
using Date = double;

// The records of a conversation. Each is a plain value; a change is a copy with a field replaced.
// `parentId` is the id of the text message an attachment belongs to. Whether a row ends its group
// belongs to the Message that holds the record, not to the record.

struct UserMessage {
    static constexpr EventType type = EventType::userMessage;
    std::string id;
    DeliveryStatus status = DeliveryStatus::notDelivered;
    std::string body;
    std::optional<std::string> htmlBody;
    Date createdAt = 0;
};

struct AgentMessage {
    static constexpr EventType type = EventType::agentMessage;
    std::string id;
    std::string body;
    std::optional<std::string> htmlBody;
    Date createdAt = 0;
    std::int64_t userID = 0;
    std::string name;
    std::optional<std::string> avatarURL;
};

struct UserImage {
    static constexpr EventType type = EventType::userImage;
    std::string id;
    std::string parentId;
    std::string filename;
    DeliveryStatus status = DeliveryStatus::notDelivered;
    platform::ImagePtr image;
    platform::ImagePtr thumbnailImage;
    FileType fileType = FileType::unknown;
    std::string imageUrl;
    std::string thumbnailUrl;
    platform::Size imageSize;
    Date createdAt = 0;
};

struct AgentImage {
    static constexpr EventType type = EventType::agentImage;
    std::string id;
    std::string parentId;
    std::string filename;
    platform::ImagePtr image;
    platform::ImagePtr thumbnailImage;
    FileType fileType = FileType::unknown;
    std::string imageUrl;
    std::string thumbnailUrl;
    platform::Size imageSize;
    Date createdAt = 0;
    std::int64_t userID = 0;
    std::string name;
    std::optional<std::string> avatarURL;
};

struct UserFile {
    static constexpr EventType type = EventType::userFile;
    std::string id;
    std::string parentId;
    std::string filename;
    DeliveryStatus status = DeliveryStatus::notDelivered;
    std::int64_t size = 0;
    std::string attachmentUrl;
    FileType fileType = FileType::unknown;
    Date createdAt = 0;
    bool downloaded = false;
};

struct AgentFile {
    static constexpr EventType type = EventType::agentFile;
    std::string id;
    std::string parentId;
    std::string filename;
    std::int64_t size = 0;
    std::string attachmentUrl;
    FileType fileType = FileType::unknown;
    Date createdAt = 0;
    bool downloaded = false;
    std::int64_t userID = 0;
    std::string name;
    std::optional<std::string> avatarURL;
};

// Rows that are not messages and are never persisted.
struct SystemMessage {
    static constexpr EventType type = EventType::systemMessage;
    std::string id;
    std::string message;
};

struct DateItem {
    static constexpr EventType type = EventType::date;
    std::string id;
    Date date = 0;
};

template <class T>
concept MessageRecord = std::same_as<T, UserMessage> || std::same_as<T, AgentMessage> || std::same_as<T, UserImage> ||
                        std::same_as<T, AgentImage> || std::same_as<T, UserFile> || std::same_as<T, AgentFile>;

// A persisted record of any kind, and whether it ends its group of rows.
//
// The record is immutable and shared by every copy: a conversation's messages, its table rows,
// the states a store keeps and the actions that carry them are copied often, and a copy costs a
// reference instead of the record's strings. A change (`edit`, `update`) first gives this Message
// a record of its own when another one shares it. The end-of-group flag is the handle's, so rows
// that group differently still share their record. Copies may be used on different threads.
//
// The kind, the date and a hash of the id are kept beside the pointer: walks over thousands of
// messages (ordering, grouping, pairing by id) read them without reaching into each record.
class Message {
public:
    // An empty text message.
    Message() noexcept = default;
    template <MessageRecord Record>
    Message(Record record, bool endOfGroup = false)  // NOLINT: implicit, as a variant converts
        : box_(new BoxOf<Record>(std::move(record))), kind_(indexOf<Record>), endOfGroup_(endOfGroup) {
        sync();
    }

    Message(const Message& other) noexcept
        : box_(other.box_), createdAt_(other.createdAt_), idHash_(other.idHash_), kind_(other.kind_),
          endOfGroup_(other.endOfGroup_) {
        retain();
    }
    Message(Message&& other) noexcept
        : box_(std::exchange(other.box_, nullptr)), createdAt_(std::exchange(other.createdAt_, 0)),
          idHash_(other.idHash_), kind_(std::exchange(other.kind_, 0)),
          endOfGroup_(std::exchange(other.endOfGroup_, false)) {}
    Message& operator=(const Message& other) noexcept {
        Message copy(other);
        swap(copy);
        return *this;
    }
    Message& operator=(Message&& other) noexcept {
        Message taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~Message() { release(); }
    void swap(Message& other) noexcept {
        std::swap(box_, other.box_);
        std::swap(createdAt_, other.createdAt_);
        std::swap(idHash_, other.idHash_);
        std::swap(kind_, other.kind_);
        std::swap(endOfGroup_, other.endOfGroup_);
    }

    // The kind, in the order of the record types above.
    std::size_t index() const { return kind_; }
    template <MessageRecord Record>
    bool holds() const {
        return index() == indexOf<Record>;
    }
    template <MessageRecord Record>
    const Record* getIf() const {
        return holds<Record>() ? &static_cast<const BoxOf<Record>&>(box()).record : nullptr;
    }
    // Throws std::bad_variant_access for another kind.
    template <MessageRecord Record>
    const Record& get() const {
        if (const auto* record = getIf<Record>()) return *record;
        throw std::bad_variant_access();
    }
    // `visitor(record)` with the record as its own type; every call must return the same type.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return dispatch(index(), [&]<class Record>(std::type_identity<Record>) -> decltype(auto) {
            return visitor(static_cast<const BoxOf<Record>&>(box()).record);
        });
    }

    // `visitor(record)` on a record of this Message's own, to change it.
    template <class Visitor>
    decltype(auto) update(Visitor&& visitor) {
        Box& mine = own();
        const Resync resync{*this};
        return dispatch(index(), [&]<class Record>(std::type_identity<Record>) -> decltype(auto) {
            return visitor(static_cast<BoxOf<Record>&>(mine).record);
        });
    }
    // `change(record)` when the record is of this kind; whether it was.
    template <MessageRecord Record, class Change>
    bool edit(Change&& change) {
        if (!holds<Record>()) return false;
        update([&](auto& record) {
            if constexpr (std::same_as<std::decay_t<decltype(record)>, Record>) change(record);
        });
        return true;
    }

    Date createdAt() const { return createdAt_; }
    // std::hash of the id.
    std::size_t idHash() const { return box_ ? idHash_ : emptyIdHash(); }
    bool isEndOfGroup() const { return endOfGroup_; }
    void setIsEndOfGroup(bool endOfGroup) { endOfGroup_ = endOfGroup; }
    // Whether both hold the very same record, so that their contents are equal without a look.
    bool sharesRecordWith(const Message& other) const { return box_ == other.box_; }

private:
    struct Box {
        std::atomic<std::uint32_t> references{1};
    };
    template <MessageRecord Record>
    struct BoxOf final : Box {
        explicit BoxOf(Record value) : record(std::move(value)) {}
        Record record;
    };

    template <MessageRecord Record>
    static constexpr std::uint8_t indexOf = std::same_as<Record, UserMessage>    ? 0
                                           : std::same_as<Record, AgentMessage> ? 1
                                           : std::same_as<Record, UserImage>    ? 2
                                           : std::same_as<Record, AgentImage>   ? 3
                                           : std::same_as<Record, UserFile>     ? 4
                                                                                : 5;

    template <class Call>
    static decltype(auto) dispatch(std::size_t index, Call&& call) {
        switch (index) {
        case 1: return call(std::type_identity<AgentMessage>{});
        case 2: return call(std::type_identity<UserImage>{});
        case 3: return call(std::type_identity<AgentImage>{});
        case 4: return call(std::type_identity<UserFile>{});
        case 5: return call(std::type_identity<AgentFile>{});
        default: return call(std::type_identity<UserMessage>{});
        }
    }

    // A Message with no box holds an empty text message: defaults and moved-from ones, which
    // also lose their flag.
    static const Box& emptyBox();
    static std::size_t emptyIdHash();
    // Takes the date and the id's hash from the record.
    void sync();
    struct Resync {
        Message& message;
        ~Resync() { message.sync(); }
    };
    const Box& box() const { return box_ ? *box_ : emptyBox(); }
    // The box, after making it this Message's alone.
    Box& own();
    void retain() const noexcept {
        if (box_) box_->references.fetch_add(1, std::memory_order_relaxed);
    }
    void release() noexcept {
        if (box_ && box_->references.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy();
    }
    // Frees the box, whose last owner this Message was.
    void destroy() noexcept;

    Box* box_ = nullptr;
    Date createdAt_ = 0;
    std::size_t idHash_ = 0;
    std::uint8_t kind_ = 0;
    bool endOfGroup_ = false;
};

// Anything that can occupy a row of the conversation table.
using CellItem = std::variant<Message, DateItem, SystemMessage>;

// Capabilities, by the fields a record has.
template <class T>
concept DeliverableEvent = requires(const T& record) {
    { record.status } -> std::convertible_to<DeliveryStatus>;
};
template <class T>
concept IdentifiableUserMessage = requires(const T& record) {
    { record.userID } -> std::convertible_to<std::int64_t>;
    record.name;
    record.avatarURL;
};
template <class T>
concept TextMessage = requires(const T& record) {
    { record.body } -> std::convertible_to<std::string>;
    record.htmlBody;
};
template <class T>
concept AttachmentMessage = requires(const T& record) {
    record.parentId;
    record.filename;
    { record.fileType } -> std::convertible_to<FileType>;
};
template <class T>
concept ImageMessage = AttachmentMessage<T> && requires(const T& record) {
    record.image;
    record.thumbnailImage;
    record.imageUrl;
    record.thumbnailUrl;
    record.imageSize;
};
template <class T>
concept FileMessage = AttachmentMessage<T> && requires(const T& record) {
    record.size;
    record.attachmentUrl;
    record.downloaded;
};

// What every message has.
const std::string& id(const Message& message);
EventType type(const Message& message);
inline Date createdAt(const Message& message) { return message.createdAt(); }
bool isEndOfGroup(const Message& message);
void setCreatedAt(Message& message, Date createdAt);
void setIsEndOfGroup(Message& message, bool isEndOfGroup);
// Absent for agent rows, which have no status.
std::optional<DeliveryStatus> status(const Message& message);
// False (and no change) for agent rows.
bool setStatus(Message& message, DeliveryStatus status);
inline bool hasAttachment(const Message& message) {
    return !message.holds<UserMessage>() && !message.holds<AgentMessage>();
}
// The text an attachment belongs to; null for text rows.
const std::string* parentIdOf(const Message& message);
// The text of a text message; null for an attachment.
const std::string* bodyOf(const Message& message);

const std::string& id(const CellItem& item);
EventType type(const CellItem& item);

} // namespace belvakit
