#include "belvakit/attachments/attachment_uploader.hpp"

#include "belvakit/Request/conversation/message_list.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "platform/main_queue.hpp"

namespace belvakit {

namespace {

class SupportUploadProvider final : public UploadProvider {
public:
    explicit SupportUploadProvider(std::shared_ptr<dastrel::CRVUploadProvider> provider)
        : provider_(std::move(provider)) {}

    void uploadAttachment(std::optional<std::string> data, std::optional<std::string> filename,
                          std::optional<std::string> contentType, dastrel::CRVUploadCallback callback) override {
        if (!provider_) {
            callback(std::nullopt, dastrel::ProviderError{"UploadProvider", 0, "No upload provider"});
            return;
        }
        provider_->uploadAttachment(std::move(data), std::move(filename), std::move(contentType), std::move(callback));
    }

private:
    std::shared_ptr<dastrel::CRVUploadProvider> provider_;
};

} // namespace

std::shared_ptr<UploadProvider> makeUploadProvider() {
    const auto core = corvane::Corvane::instance();
    return std::make_shared<SupportUploadProvider>(
        core ? core->providerModule().provider<dastrel::CRVUploadProvider>() : nullptr);
}

const dastrel::ProviderError& uploadError() {
    static const dastrel::ProviderError error{"UploadError", 0, ""};
    return error;
}

std::shared_ptr<ConcreteAttachmentUploader> ConcreteAttachmentUploader::make(
    std::shared_ptr<UploadProvider> uploadProvider) {
    return std::shared_ptr<ConcreteAttachmentUploader>(
        new ConcreteAttachmentUploader(uploadProvider ? std::move(uploadProvider) : makeUploadProvider()));
}

ConcreteAttachmentUploader::ConcreteAttachmentUploader(std::shared_ptr<UploadProvider> uploadProvider)
    : uploadProvider_(std::move(uploadProvider)) {}

void ConcreteAttachmentUploader::upload(std::vector<Upload::Attachment> attachments, UploadCompletion completion) {
    for (const auto& attachment : attachments) uploadOne(attachment);
    batch_->group.notify(platform::MainQueue::shared(),
                         [weak = weak_from_this(), completion = std::move(completion)] {
                             const auto self = weak.lock();
                             if (!self) return;
                             if (self->batch_->hasError)
                                 completion(uploadError());
                             else
                                 completion(self->batch_->uploadResults);
                         });
}

void ConcreteAttachmentUploader::uploadOne(const Upload::Attachment& attachment) {
    batch_->group.enter();
    auto name = attachment.filename ? *attachment.filename : interpolatedFilename(attachment.id, attachment.fileType);
    uploadProvider_->uploadAttachment(
        attachment.data, std::move(name), std::string(mimeType(attachment.fileType)),
        [batch = batch_, attachment](std::optional<dastrel::CRVUploadResponse> response,
                                     std::optional<dastrel::ProviderError> error) {
            if (error) {
                batch->hasError = true;
                corvane::CoreLogger::debug("Attachment upload failed: " + error->localizedDescription);
            } else if (response) {
                // Leaving on the queue, after the append, keeps the result ahead of the end of the
                // batch without blocking the provider's thread.
                batch->tokenUpdateQueue.async([batch, attachment, response = std::move(*response)] {
                    batch->uploadResults.emplace_back(attachment, response);
                    batch->group.leave();
                });
                return;
            }
            batch->group.leave();
        });
}

} // namespace belvakit
