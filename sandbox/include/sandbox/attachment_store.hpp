#pragma once

#include "dastrel/attachment_provider.hpp"
#include "dastrel/upload_provider.hpp"
#include "platform/scheduler.hpp"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace sandbox {

// The help desk's uploaded files and the files it serves, with switches for tests and the demo.
class AttachmentStore : public std::enable_shared_from_this<AttachmentStore> {
public:
    struct Upload {
        std::string token;
        dastrel::CRVAttachment attachment;
        std::string data;
    };

    static std::shared_ptr<AttachmentStore> make(std::string accountUrl);

    // Stores the bytes and answers with a fresh token and the file's record.
    void upload(std::optional<std::string> data, std::optional<std::string> filename,
                std::optional<std::string> contentType, dastrel::CRVUploadCallback callback);
    // The bytes of an uploaded file or of a file added with `serve`, by URL.
    void download(const std::string& url, dastrel::CRVAttachmentCallback callback);

    // Makes `data` available under `url` (agents' attachments and avatars).
    void serve(const std::string& url, std::string data);
    std::optional<Upload> uploadWithToken(const std::string& token) const;
    std::size_t uploadCount() const;

    // Switches. Answers come after `latency` (through the scheduler), on the main queue or on a
    // worker thread.
    void setFailUploads(bool fail);
    void setFailDownloads(bool fail);
    void setLatency(platform::Duration latency);
    void setAnswersOnWorkerThreads(bool onWorkerThreads);

    // Providers of the support library backed by this store.
    std::shared_ptr<dastrel::CRVUploadProvider> uploadProvider();
    std::shared_ptr<dastrel::CRVAttachmentProvider> attachmentProvider();

private:
    explicit AttachmentStore(std::string accountUrl) : accountUrl_(std::move(accountUrl)) {}
    void answer(std::function<void()> work) const;

    std::string accountUrl_;
    mutable std::mutex mutex_;
    std::int64_t nextAttachmentId_ = 1000;
    std::map<std::string, Upload> uploads_;       // by token
    std::map<std::string, std::string> served_;  // bytes by URL
    bool failUploads_ = false;
    bool failDownloads_ = false;
    bool answersOnWorkerThreads_ = false;
    platform::Duration latency_{};
};

} // namespace sandbox
