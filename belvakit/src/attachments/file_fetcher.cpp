#include "belvakit/attachments/file_fetcher.hpp"

#include "belvakit/attachments/cache_keys.hpp"
#include "belvakit/attachments/image_encoding.hpp"
#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"

#include <algorithm>

namespace belvakit {

namespace {

template <class Record>
void putImage(Record& record, bool thumbnail, platform::ImagePtr image) {
    (thumbnail ? record.thumbnailImage : record.image) = std::move(image);
}

// The message with its image or thumbnail set, for image records.
Message withImage(Message message, bool thumbnail, platform::ImagePtr image) {
    if (!message.holds<UserImage>() && !message.holds<AgentImage>()) return message;
    message.update([&](auto& record) {
        if constexpr (ImageMessage<std::decay_t<decltype(record)>>) putImage(record, thumbnail, std::move(image));
    });
    return message;
}

// The file message, marked as on the device.
Message downloadedFile(Message message) {
    if (!message.holds<UserFile>() && !message.holds<AgentFile>()) return message;
    message.update([](auto& record) {
        if constexpr (FileMessage<std::decay_t<decltype(record)>>) record.downloaded = true;
    });
    return message;
}

// What the image fetcher needs of an image message.
struct ImageSource {
    std::string id;
    std::string filename;
    std::string url;
};

std::optional<ImageSource> imageSource(const Message& message, bool thumbnail) {
    return message.visit([&](const auto& record) -> std::optional<ImageSource> {
        if constexpr (ImageMessage<std::decay_t<decltype(record)>>)
            return ImageSource{record.id, record.filename, thumbnail ? record.thumbnailUrl : record.imageUrl};
        else
            return std::nullopt;
    });
}

void keepEncoded(Cache& cache, const ImageSource& source, bool thumbnail, const platform::ImagePtr& image) {
    auto encoded = smallestEncoding(image);
    if (!encoded) return;
    if (thumbnail) {
        cache.store(thumbnailCacheKey(source.id, source.filename), std::move(encoded->data));
        return;
    }
    // The preview looks for the file's key, the row for the image's.
    cache.store(fileCacheKey(source.id, source.filename), encoded->data);
    cache.store(imageCacheKey(source.id, source.filename), std::move(encoded->data));
}

// Without a provider, bytes or a decodable image the message comes back as it was.
void fetchFromNetwork(const std::shared_ptr<AttachmentsProvider>& provider, const std::shared_ptr<Cache>& cache,
                      const Message& message, const ImageSource& source, bool thumbnail, MessageCompletion completion) {
    if (!provider) return completion(message);
    provider->getAttachment(source.url, [cache, message, source, thumbnail, completion = std::move(completion)](
                                            std::optional<std::string> data, std::optional<dastrel::ProviderError>) {
        const auto image = data ? platform::decodeImage(*data) : nullptr;
        if (!image) return completion(message);
        if (cache) keepEncoded(*cache, source, thumbnail, image);
        completion(withImage(message, thumbnail, image));
    });
}

bool hasImage(const Message& message, bool thumbnail) {
    return message.visit([&](const auto& record) {
        if constexpr (ImageMessage<std::decay_t<decltype(record)>>)
            return (thumbnail ? record.thumbnailImage : record.image) != nullptr;
        else
            return false;
    });
}

} // namespace

void FileFetcher::fetch(const Message& fileMessage, MessageCompletion completion) const {
    fileMessage.visit([&](const auto& record) {
        using Record = std::decay_t<decltype(record)>;
        if constexpr (FileMessage<Record>) {
            if (!attachmentsProvider) return completion(fileMessage);
            attachmentsProvider->getAttachment(
                record.attachmentUrl, [fileMessage, key = fileCacheKey(record.id, record.filename), cache = cache,
                                       completion = std::move(completion)](std::optional<std::string> data,
                                                                           std::optional<dastrel::ProviderError> error) {
                    // Downloaded means the bytes are here: a failed download can be tapped again.
                    if (!data || error) return completion(fileMessage);
                    if (cache) cache->storeIfAbsent(key, std::move(*data));
                    completion(downloadedFile(fileMessage));
                });
        } else {
            completion(fileMessage);
        }
    });
}

void ImageFetcher::fetch(const Message& imageMessage, bool thumbnail, MessageCompletion completion) const {
    const auto source = imageSource(imageMessage, thumbnail);
    if (!source) return completion(imageMessage);
    if (!cache) {
        fetchFromNetwork(attachmentsProvider, cache, imageMessage, *source, thumbnail, std::move(completion));
        return;
    }
    const auto key = thumbnail ? thumbnailCacheKey(source->id, source->filename)
                               : imageCacheKey(source->id, source->filename);
    cache->fetch(key, [provider = attachmentsProvider, cache = cache, message = imageMessage, source = *source,
                       thumbnail, completion = std::move(completion)](std::optional<std::string> bytes) {
        if (const auto image = bytes ? platform::decodeImage(*bytes) : nullptr) {
            completion(withImage(message, thumbnail, image));
            return;
        }
        fetchFromNetwork(provider, cache, message, source, thumbnail, completion);
    });
}

AttachmentFetcher::AttachmentFetcher(FileFetcher fileFetcher, ImageFetcher imageFetcher)
    : fileFetcher_(std::move(fileFetcher)),
      imageFetcher_(std::move(imageFetcher)),
      keys_(std::make_shared<Keys>()) {}

bool AttachmentFetcher::Keys::begin(const std::string& key) {
    const auto fetched = state.find(key);
    if (fetched != state.end()) {
        if (fetched->second) return false;
        const auto failure = failures.find(key);
        if (failure != failures.end() && platform::MainQueue::shared().scheduler().now() < failure->second.retryAt)
            return false;
    }
    state[key] = true;
    return true;
}

void AttachmentFetcher::Keys::end(const std::string& key, bool succeeded) {
    if (succeeded) {
        failures.erase(key);
        return;
    }
    // Each failure doubles the wait before the key may be asked for again, up to a cap, so that
    // redraws after a failure don't ask a failing server again and again.
    auto& failure = failures[key];
    const auto wait = std::min(firstRetryDelay * (1 << std::min(failure.count, 16)), longestRetryDelay);
    ++failure.count;
    failure.retryAt = platform::MainQueue::shared().scheduler().now() + wait;
    state[key] = false;
}

void AttachmentFetcher::fetchAttachments(const std::vector<Message>& messages, bool thumbnails) {
    // Ends are noted on the main queue, where fetches begin; the fetcher may be gone by then.
    const auto finished = [weakKeys = std::weak_ptr<Keys>(keys_), callback = callback_](
                              const std::string& key, std::optional<Message> filled) {
        platform::MainQueue::shared().async([weakKeys, callback, key, filled = std::move(filled)] {
            if (auto keys = weakKeys.lock()) keys->end(key, filled.has_value());
            if (filled && callback) callback(*filled);
        });
    };
    for (const auto& message : messages) {
        message.visit([&](const auto& record) {
            using Record = std::decay_t<decltype(record)>;
            if constexpr (FileMessage<Record>) {
                if (!fileFetcher_.cache) return;
                const auto key = fileCacheKey(record.id, record.filename);
                if (!keys_->begin(key)) return;
                fileFetcher_.cache->fetch(key, [message, key, finished](std::optional<std::string> bytes) {
                    if (!bytes) return finished(key, std::nullopt);
                    finished(key, downloadedFile(message));
                });
            } else if constexpr (ImageMessage<Record>) {
                if (thumbnails ? record.thumbnailImage != nullptr : record.image != nullptr) return;
                const auto key = thumbnails ? thumbnailCacheKey(record.id, record.filename)
                                            : imageCacheKey(record.id, record.filename);
                if (!keys_->begin(key)) return;
                imageFetcher_.fetch(message, thumbnails, [key, thumbnails, finished](Message filled) {
                    if (!hasImage(filled, thumbnails)) return finished(key, std::nullopt);
                    finished(key, std::move(filled));
                });
            }
        });
    }
}

} // namespace belvakit
