#pragma once

#include "belvakit/Request/queue/request_operation.hpp"
#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/attachments/attachment_uploader.hpp"
#include "belvakit/attachments/upload.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "dastrel/request_storage.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// Creates the ticket; the ticket given to `execute` is ignored.
class TicketRequestOperation final : public RequestOperation,
                                     public std::enable_shared_from_this<TicketRequestOperation> {
public:
    // A null provider means a fresh one of the current core object; a null uploader, a fresh one
    // made when there are files to upload.
    TicketRequestOperation(std::string id, std::string text, std::vector<Upload::Attachment> files,
                           RequestUiConfiguration configuration, std::shared_ptr<RequestProvider> provider = nullptr,
                           std::shared_ptr<AttachmentUploader> uploader = nullptr);

    const std::string& id() const override { return id_; }
    void execute(std::optional<TicketInfo> ticket) override;

    std::string body;
    std::vector<Upload::Attachment> attachments;
    std::shared_ptr<RequestProvider> requestProvider;
    std::shared_ptr<AttachmentUploader> attachmentUploader;
    RequestUiConfiguration config;

private:
    void create(dastrel::CRVCreateRequest request, UploadResults uploads);

    std::string id_;
};

// Adds a comment, with its files, to the ticket given to `execute`.
class CommentRequestOperation final : public RequestOperation,
                                      public std::enable_shared_from_this<CommentRequestOperation> {
public:
    CommentRequestOperation(std::string id, std::string text, std::vector<Upload::Attachment> files,
                            std::shared_ptr<RequestProvider> provider = nullptr,
                            std::shared_ptr<AttachmentUploader> uploader = nullptr);

    const std::string& id() const override { return id_; }
    void execute(std::optional<TicketInfo> ticket) override;

    std::string body;
    std::vector<Upload::Attachment> attachments;
    std::shared_ptr<RequestProvider> requestProvider;
    std::shared_ptr<AttachmentUploader> attachmentUploader;

private:
    void addComment(const std::string& requestId, UploadResults uploads);

    std::string id_;
};

// Fetches what was written on the ticket since its latest known comment.
class FetchNewCommentsOperation final : public RequestOperation,
                                        public std::enable_shared_from_this<FetchNewCommentsOperation> {
public:
    // Without an id the operation gets a new UUID string.
    explicit FetchNewCommentsOperation(std::optional<std::string> id = std::nullopt,
                                       std::shared_ptr<RequestProvider> provider = nullptr,
                                       dastrel::RequestStorage* storage = nullptr);

    const std::string& id() const override { return id_; }
    void execute(std::optional<TicketInfo> ticket) override;

    std::shared_ptr<RequestProvider> requestProvider;
    dastrel::RequestStorage* requestStorage;

private:
    std::string id_;
};

// Remote attachment ids paired with the files sent, in upload order; "0" for an upload that
// came back without a file record.
std::vector<std::pair<std::string, Upload::Attachment>> sentAttachments(const UploadResults& uploads);

// A new request of `body`, with the subject, tags, custom fields and form of the configuration.
dastrel::CRVCreateRequest makeCreateRequest(const std::string& body, const RequestUiConfiguration& configuration);

} // namespace belvakit
