#include "sandbox/attachment_store.hpp"

#include "answer.hpp"

#include "platform/main_queue.hpp"
#include "platform/uuid.hpp"

#include <algorithm>

namespace sandbox {

namespace {

class UploadProvider final : public dastrel::CRVUploadProvider {
public:
    explicit UploadProvider(std::shared_ptr<AttachmentStore> store) : store_(std::move(store)) {}
    void uploadAttachment(std::optional<std::string> data, std::optional<std::string> filename,
                          std::optional<std::string> contentType, dastrel::CRVUploadCallback callback) override {
        store_->upload(std::move(data), std::move(filename), std::move(contentType), std::move(callback));
    }

private:
    std::shared_ptr<AttachmentStore> store_;
};

class AttachmentProvider final : public dastrel::CRVAttachmentProvider {
public:
    explicit AttachmentProvider(std::shared_ptr<AttachmentStore> store) : store_(std::move(store)) {}
    void getAttachment(const std::string& url, dastrel::CRVAttachmentCallback callback) override {
        store_->download(url, std::move(callback));
    }

private:
    std::shared_ptr<AttachmentStore> store_;
};

dastrel::ProviderError failure(long code, std::string description) {
    return {"SandboxHelpDesk", code, std::move(description)};
}

} // namespace

std::shared_ptr<AttachmentStore> AttachmentStore::make(std::string accountUrl) {
    return std::shared_ptr<AttachmentStore>(new AttachmentStore(std::move(accountUrl)));
}

void AttachmentStore::answer(std::function<void()> work) const {
    platform::Duration latency;
    bool onWorkerThread = false;
    {
        std::lock_guard lock(mutex_);
        latency = latency_;
        onWorkerThread = answersOnWorkerThreads_;
    }
    if (onWorkerThread)
        deliverAnswer(latency, true, std::move(work));
    else
        platform::MainQueue::shared().asyncAfter(latency, std::move(work));
}

void AttachmentStore::upload(std::optional<std::string> data, std::optional<std::string> filename,
                             std::optional<std::string> contentType, dastrel::CRVUploadCallback callback) {
    std::optional<dastrel::CRVUploadResponse> response;
    std::optional<dastrel::ProviderError> error;
    {
        std::lock_guard lock(mutex_);
        if (failUploads_) {
            error = failure(500, "The upload failed");
        } else if (!data) {
            error = failure(422, "Nothing to upload");
        } else {
            Upload stored;
            stored.token = platform::uuidString();
            stored.attachment.attachmentId = nextAttachmentId_++;
            stored.attachment.filename = filename.value_or("");
            stored.attachment.contentType = contentType.value_or("application/binary");
            stored.attachment.size = static_cast<std::int64_t>(data->size());
            stored.attachment.contentURLString = accountUrl_ + "/attachments/token/" + stored.token +
                                                 "/?name=" + stored.attachment.filename;
            stored.data = std::move(*data);
            response = dastrel::CRVUploadResponse{stored.token, stored.attachment};
            served_[stored.attachment.contentURLString] = stored.data;
            uploads_.emplace(stored.token, std::move(stored));
        }
    }
    answer([callback = std::move(callback), response = std::move(response), error = std::move(error)] {
        callback(response, error);
    });
}

void AttachmentStore::download(const std::string& url, dastrel::CRVAttachmentCallback callback) {
    std::optional<std::string> data;
    std::optional<dastrel::ProviderError> error;
    {
        std::lock_guard lock(mutex_);
        const auto found = served_.find(url);
        if (failDownloads_)
            error = failure(500, "The download failed");
        else if (found == served_.end())
            error = failure(404, "No file at " + url);
        else
            data = found->second;
    }
    answer([callback = std::move(callback), data = std::move(data), error = std::move(error)] { callback(data, error); });
}

void AttachmentStore::serve(const std::string& url, std::string data) {
    std::lock_guard lock(mutex_);
    served_[url] = std::move(data);
}

std::optional<AttachmentStore::Upload> AttachmentStore::uploadWithToken(const std::string& token) const {
    std::lock_guard lock(mutex_);
    const auto found = uploads_.find(token);
    if (found == uploads_.end()) return std::nullopt;
    return found->second;
}

std::size_t AttachmentStore::uploadCount() const {
    std::lock_guard lock(mutex_);
    return uploads_.size();
}

void AttachmentStore::setFailUploads(bool fail) {
    std::lock_guard lock(mutex_);
    failUploads_ = fail;
}

void AttachmentStore::setFailDownloads(bool fail) {
    std::lock_guard lock(mutex_);
    failDownloads_ = fail;
}

void AttachmentStore::setAnswersOnWorkerThreads(bool onWorkerThreads) {
    std::lock_guard lock(mutex_);
    answersOnWorkerThreads_ = onWorkerThreads;
}

void AttachmentStore::setLatency(platform::Duration latency) {
    std::lock_guard lock(mutex_);
    latency_ = latency;
}

std::shared_ptr<dastrel::CRVUploadProvider> AttachmentStore::uploadProvider() {
    return std::make_shared<UploadProvider>(shared_from_this());
}

std::shared_ptr<dastrel::CRVAttachmentProvider> AttachmentStore::attachmentProvider() {
    return std::make_shared<AttachmentProvider>(shared_from_this());
}

} // namespace sandbox
