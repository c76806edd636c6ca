#pragma once

#include "belvakit/attachments/upload.hpp"
#include "dastrel/upload_provider.hpp"
#include "platform/dispatch_group.hpp"
#include "platform/serial_queue.hpp"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace belvakit {

// Sends one file; the callback may run on any thread.
class UploadProvider {
public:
    virtual ~UploadProvider() = default;
    virtual void uploadAttachment(std::optional<std::string> data, std::optional<std::string> filename,
                                  std::optional<std::string> contentType, dastrel::CRVUploadCallback callback) = 0;
};

// The support library's upload provider of the current core object. Without one every upload
// fails with an error.
std::shared_ptr<UploadProvider> makeUploadProvider();

using UploadResults = std::vector<std::pair<Upload::Attachment, dastrel::CRVUploadResponse>>;
using UploadOutcome = std::variant<UploadResults, dastrel::ProviderError>;
using UploadCompletion = std::function<void(UploadOutcome outcome)>;

class AttachmentUploader {
public:
    virtual ~AttachmentUploader() = default;
    virtual void upload(std::vector<Upload::Attachment> attachments, UploadCompletion completion) = 0;
};

// The error of every failed batch: domain "UploadError", code 0.
const dastrel::ProviderError& uploadError();

// Uploads one batch, all files at once. The completion runs once on the main queue when every
// upload has answered, unless the uploader is gone by then. One instance serves one batch.
class ConcreteAttachmentUploader final : public AttachmentUploader,
                                         public std::enable_shared_from_this<ConcreteAttachmentUploader> {
public:
    static std::shared_ptr<ConcreteAttachmentUploader> make(std::shared_ptr<UploadProvider> uploadProvider = nullptr);

    void upload(std::vector<Upload::Attachment> attachments, UploadCompletion completion) override;

    const std::shared_ptr<UploadProvider>& uploadProvider() const { return uploadProvider_; }
    const platform::SerialQueue& tokenUpdateQueue() const { return batch_->tokenUpdateQueue; }

private:
    // What the uploads' callbacks share. They hold it rather than the uploader, so that only the
    // uploader's owner decides whether it is still there at the end.
    struct Batch {
        platform::DispatchGroup group;
        UploadResults uploadResults;         // in order of arrival; touched on tokenUpdateQueue
        std::atomic<bool> hasError{false};   // set by any failed upload, never reset
        platform::SerialQueue tokenUpdateQueue{"TokenQueue"};
    };

    explicit ConcreteAttachmentUploader(std::shared_ptr<UploadProvider> uploadProvider);
    void uploadOne(const Upload::Attachment& attachment);

    std::shared_ptr<Batch> batch_ = std::make_shared<Batch>();
    std::shared_ptr<UploadProvider> uploadProvider_;
};

} // namespace belvakit
