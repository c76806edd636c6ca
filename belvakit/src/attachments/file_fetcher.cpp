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

// What the image fetcher needs of an image message.
struct ImageSource {
    std::string id;
    std::string filename;
    std::string url;
};

std::optional<ImageSource> imageSource(const Message& message, bool thumbnail) {
    return std::visit(
        [&](const auto& record) -> std::optional<ImageSource> {
            if constexpr (ImageMessage<std::decay_t<decltype(record)>>)
                return ImageSource{record.id, record.filename, thumbnail ? record.thumbnailUrl : record.imageUrl};
            else
                return std::nullopt;
        },
        message);
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

void fetchFromNetwork(const std::shared_ptr<AttachmentsProvider>& provider, const std::shared_ptr<Cache>& cache,
                      const Message& message, const ImageSource& source, bool thumbnail, MessageCompletion completion) {
    if (!provider) return;
    provider->getAttachment(source.url, [cache, message, source, thumbnail, completion = std::move(completion)](
                                            std::optional<std::string> data, std::optional<dastrel::ProviderError>) {
        const auto image = data ? platform::decodeImage(*data) : nullptr;
        if (!image) return;
        if (cache) keepEncoded(*cache, source, thumbnail, image);
        completion(withImage(message, thumbnail, image));
    });
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
    const auto source = imageSource(imageMessage, thumbnail);
    if (!source) return;
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
