#include "belvakit/attachments/file_fetcher.hpp"

#include "belvakit/attachments/cache_keys.hpp"
#include "belvakit/attachments/image_encoding.hpp"
#include "platform/image_codec.hpp"

namespace belvakit {

namespace {

template <class Record>
void putImage(Record& record, bool thumbnail, platform::ImagePtr image) {
    (thumbnail ? record.thumbnailImage : record.image) = std::move(image);
}

// The message with its image or thumbnail set, for image records.
Message withImage(Message message, bool thumbnail, platform::ImagePtr image) {
    std::visit(
        [&](auto& record) {
            if constexpr (ImageMessage<std::decay_t<decltype(record)>>) putImage(record, thumbnail, std::move(image));
        },
        message);
    return message;
}

} // namespace

void FileFetcher::fetch(const Message& fileMessage, MessageCompletion completion) const {
    std::visit(
        [&](const auto& record) {
            using Record = std::decay_t<decltype(record)>;
            if constexpr (FileMessage<Record>) {
                if (!attachmentsProvider) return;
                attachmentsProvider->getAttachment(
                    record.attachmentUrl, [record, cache = cache, completion = std::move(completion)](
                                              std::optional<std::string> data, std::optional<dastrel::ProviderError>) {
                        if (data && cache) {
                            const auto key = fileCacheKey(record.id, record.filename);
                            if (!cache->fileURL(key)) cache->store(key, std::move(*data));
                        }
                        Record downloaded = record;
                        downloaded.downloaded = true;
                        completion(Message(std::move(downloaded)));
                    });
            }
        },
        fileMessage);
}

void ImageFetcher::fetch(const Message& imageMessage, bool thumbnail, MessageCompletion completion) const {
    std::visit(
        [&](const auto& record) {
            using Record = std::decay_t<decltype(record)>;
            if constexpr (ImageMessage<Record>) {
                const auto key =
                    thumbnail ? thumbnailCacheKey(record.id, record.filename) : imageCacheKey(record.id, record.filename);
                auto fromNetwork = [provider = attachmentsProvider, cache = cache, record, thumbnail,
                                    completion](const Message& message) {
                    if (!provider) return;
                    provider->getAttachment(
                        thumbnail ? record.thumbnailUrl : record.imageUrl,
                        [cache, record, thumbnail, completion, message](std::optional<std::string> data,
                                                                        std::optional<dastrel::ProviderError>) {
                            const auto image = data ? platform::decodeImage(*data) : nullptr;
                            if (!image) return;
                            if (auto encoded = smallestEncoding(image); encoded && cache) {
                                if (thumbnail) {
                                    cache->store(thumbnailCacheKey(record.id, record.filename), encoded->data);
                                } else {
                                    // The preview looks for the file's key; the row for the image's.
                                    cache->store(fileCacheKey(record.id, record.filename), encoded->data);
                                    cache->store(imageCacheKey(record.id, record.filename), std::move(encoded->data));
                                }
                            }
                            completion(withImage(message, thumbnail, image));
                        });
                };
                const Message message(record);
                if (!cache) {
                    fromNetwork(message);
                    return;
                }
                cache->fetch(key, [message, thumbnail, completion, fromNetwork](std::optional<std::string> bytes) {
                    if (const auto image = bytes ? platform::decodeImage(*bytes) : nullptr) {
                        completion(withImage(message, thumbnail, image));
                        return;
                    }
                    fromNetwork(message);
                });
            }
        },
        imageMessage);
}

void AttachmentFetcher::fetchAttachments(const std::vector<Message>& messages, bool thumbnails) {
    for (const auto& message : messages) {
        std::visit(
            [&](const auto& record) {
                using Record = std::decay_t<decltype(record)>;
                if constexpr (FileMessage<Record>) {
                    const auto key = fileCacheKey(record.id, record.filename);
                    if (attachmentsFetched_.contains(key) || !fileFetcher_.cache) return;
                    attachmentsFetched_[key] = true;
                    fileFetcher_.cache->fetch(key, [record, callback = callback_](std::optional<std::string> bytes) {
                        if (!bytes) return;
                        Record downloaded = record;
                        downloaded.downloaded = true;
                        if (callback) callback(Message(std::move(downloaded)));
                    });
                } else if constexpr (ImageMessage<Record>) {
                    if (thumbnails ? record.thumbnailImage != nullptr : record.image != nullptr) return;
                    const auto key = thumbnails ? thumbnailCacheKey(record.id, record.filename)
                                                : imageCacheKey(record.id, record.filename);
                    if (attachmentsFetched_.contains(key)) return;
                    attachmentsFetched_[key] = true;
                    imageFetcher_.fetch(message, thumbnails, [callback = callback_](Message filled) {
                        if (callback) callback(filled);
                    });
                }
            },
            message);
    }
}

} // namespace belvakit
