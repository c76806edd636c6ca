#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/attachments/attachments_provider.hpp"
#include "belvakit/attachments/cache.hpp"

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

    // The completion gets the message marked `downloaded`, whether bytes came or not. Messages
    // without a file are ignored.
    void fetch(const Message& fileMessage, MessageCompletion completion) const;
};

// Gets an image message's full image or thumbnail, from the cache first, else the network.
struct ImageFetcher {
    std::shared_ptr<AttachmentsProvider> attachmentsProvider;
    std::shared_ptr<Cache> cache;

    // The completion gets the message with the image in it; nothing is called when no image could
    // be had. Messages without an image are ignored.
    void fetch(const Message& imageMessage, bool thumbnail, MessageCompletion completion) const;
};

// Fills in the attachments of a conversation's messages, one request per attachment.
class AttachmentFetcher {
public:
    AttachmentFetcher(FileFetcher fileFetcher, ImageFetcher imageFetcher)
        : fileFetcher_(std::move(fileFetcher)), imageFetcher_(std::move(imageFetcher)) {}

    // Main thread. Files come from the cache only; what a tap starts goes through the file fetcher.
    void fetchAttachments(const std::vector<Message>& messages, bool thumbnails = true);

    const FileFetcher& fileFetcher() const { return fileFetcher_; }
    const ImageFetcher& imageFetcher() const { return imageFetcher_; }
    const std::map<std::string, bool>& attachmentsFetched() const { return attachmentsFetched_; }
    void setCallback(std::function<void(const Message&)> callback) { callback_ = std::move(callback); }

private:
    FileFetcher fileFetcher_;
    ImageFetcher imageFetcher_;
    std::map<std::string, bool> attachmentsFetched_;
    std::function<void(const Message&)> callback_;
};

} // namespace belvakit
