#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/attachments/attachments_provider.hpp"
#include "belvakit/attachments/cache.hpp"
#include "platform/scheduler.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace belvakit {

using MessageCompletion = std::function<void(Message message)>;

// Downloads a file message's bytes into the cache.
struct FileFetcher {
    std::shared_ptr<AttachmentsProvider> attachmentsProvider;
    std::shared_ptr<Cache> cache;

    // The completion always runs: with the message marked `downloaded` when its bytes came, else
    // with the message as it was.
    void fetch(const Message& fileMessage, MessageCompletion completion) const;
};

// Gets an image message's full image or thumbnail, from the cache first, else the network.
struct ImageFetcher {
    std::shared_ptr<AttachmentsProvider> attachmentsProvider;
    std::shared_ptr<Cache> cache;

    // The completion always runs: with the image in the message, or with the message as it was
    // when no image could be had.
    void fetch(const Message& imageMessage, bool thumbnail, MessageCompletion completion) const;
};

// Fills in the attachments of a conversation's messages, one request per attachment.
class AttachmentFetcher {
public:
    // A key that failed may be asked for again after 2 s, then after twice as long each time, up to
    // 64 s.
    static constexpr platform::Duration firstRetryDelay = std::chrono::seconds(2);
    static constexpr platform::Duration longestRetryDelay = std::chrono::seconds(64);

    AttachmentFetcher(FileFetcher fileFetcher, ImageFetcher imageFetcher);

    // Main thread. Files come from the cache only; what a tap starts goes through the file fetcher.
    // The callback runs on the main queue, for each attachment that was filled in.
    void fetchAttachments(const std::vector<Message>& messages, bool thumbnails = true);

    const FileFetcher& fileFetcher() const { return fileFetcher_; }
    const ImageFetcher& imageFetcher() const { return imageFetcher_; }
    // By cache key: true while under way or once done, false after a failure.
    const std::map<std::string, bool>& attachmentsFetched() const { return keys_->state; }
    void setCallback(std::function<void(const Message&)> callback) { callback_ = std::move(callback); }

private:
    struct Failure {
        int count = 0;
        platform::TimePoint retryAt;
    };
    struct Keys {
        std::map<std::string, bool> state;
        std::map<std::string, Failure> failures;
        // Whether a fetch of the key may start now; notes it as under way if so.
        bool begin(const std::string& key);
        void end(const std::string& key, bool succeeded);
    };

    FileFetcher fileFetcher_;
    ImageFetcher imageFetcher_;
    std::shared_ptr<Keys> keys_;
    std::function<void(const Message&)> callback_;
};

} // namespace belvakit
