#include "belvakit/Request/queue/request_operations.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/comment_mapping.hpp"
#include "corvane/core_logger.hpp"
#include "dastrel/request.hpp"
#include "platform/clock.hpp"
#include "platform/json.hpp"
#include "platform/main_queue.hpp"
#include "platform/uuid.hpp"

#include <variant>

namespace belvakit {

namespace {

std::shared_ptr<RequestProvider> freshProvider(std::shared_ptr<RequestProvider> given) {
    return given ? std::move(given) : makeRequestProvider();
}

std::vector<std::string> tokensOf(const UploadResults& uploads) {
    std::vector<std::string> tokens;
    tokens.reserve(uploads.size());
    for (const auto& upload : uploads) tokens.push_back(upload.second.uploadToken);
    return tokens;
}

// Uploads first when there is anything to upload; `then` gets the results, `failed` runs instead
// when the batch fails. The uploader is made only for a batch that needs one.
void uploadThen(std::shared_ptr<AttachmentUploader>& uploader, std::vector<Upload::Attachment> attachments,
                std::function<void(UploadResults)> then, std::function<void()> failed) {
    if (attachments.empty()) return then({});
    if (!uploader) uploader = ConcreteAttachmentUploader::make();
    uploader->upload(std::move(attachments), [then = std::move(then), failed = std::move(failed)](UploadOutcome outcome) {
        if (auto* results = std::get_if<UploadResults>(&outcome)) return then(std::move(*results));
        failed();
    });
}

struct CreatedTicket {
    std::string requestId = "no_id";
    Date createdAt = platform::now();
    std::string commentId = "no_id";
};

// Nothing when the answer is not a JSON object at all.
std::optional<CreatedTicket> readCreatedTicket(const dastrel::CRVDispatcherResponse& response) {
    const auto json = platform::parseJson(response.data);
    if (!json || !json->is_object()) return std::nullopt;
    const auto& object = json->get_object();
    CreatedTicket created;
    if (const auto* requestJson = object.if_contains("request")) {
        if (auto request = dastrel::CRVRequest::initWithDict(*requestJson)) {
            created.requestId = request->requestId;
            created.createdAt = request->createdAt;
        }
    }
    if (const auto* commentJson = object.if_contains("last_comment")) {
        if (auto comment = dastrel::CRVComment::initWithDictionary(*commentJson))
            created.commentId = std::to_string(comment->commentId);
    }
    return created;
}

} // namespace

std::vector<std::pair<std::string, Upload::Attachment>> sentAttachments(const UploadResults& uploads) {
    Actions::SentAttachments sent;
    sent.reserve(uploads.size());
    for (const auto& [file, response] : uploads)
        sent.emplace_back(std::to_string(response.attachment ? response.attachment->attachmentId : 0), file);
    return sent;
}

// Ticket creation.

TicketRequestOperation::TicketRequestOperation(std::string id, std::string text, std::vector<Upload::Attachment> files,
                                               RequestUiConfiguration configuration,
                                               std::shared_ptr<RequestProvider> provider,
                                               std::shared_ptr<AttachmentUploader> uploader)
    : body(std::move(text)), attachments(std::move(files)), requestProvider(freshProvider(std::move(provider))),
      attachmentUploader(std::move(uploader)), config(std::move(configuration)), id_(std::move(id)) {}

dastrel::CRVCreateRequest makeCreateRequest(const std::string& body, const RequestUiConfiguration& configuration) {
    dastrel::CRVCreateRequest request;
    request.requestDescription = body;
    request.subject = configuration.subject;
    request.tags = configuration.tags;
    request.customFields = configuration.customFields;
    request.ticketFormId = configuration.ticketFormID;
    return request;
}

void TicketRequestOperation::execute(std::optional<TicketInfo>) {
    dastrel::CRVCreateRequest request = makeCreateRequest(body, config);

    auto self = shared_from_this();
    uploadThen(
        attachmentUploader, attachments,
        [self, request](UploadResults uploads) mutable { self->create(std::move(request), std::move(uploads)); },
        [self] {
            Actions::AttachmentsUploadError failure;
            failure.id = self->id_;
            self->finish(failure);
        });
}

void TicketRequestOperation::create(dastrel::CRVCreateRequest request, UploadResults uploads) {
    request.attachments = tokensOf(uploads);
    auto self = shared_from_this();
    requestProvider->createRequest(
        request, [self, request, uploads = std::move(uploads)](std::optional<dastrel::CRVDispatcherResponse> response,
                                                               std::optional<dastrel::ProviderError> error) {
            const auto created = response && !error ? readCreatedTicket(*response) : std::nullopt;
            if (!created) {
                Actions::TicketCreationError failure;
                failure.id = self->id_;
                failure.requestDescription = request.requestDescription;
                failure.createdAtDate = platform::now();
                return self->finish(failure);
            }
            Actions::TicketCreated success;
            success.localId = self->id_;
            success.remoteRequestId = created->requestId;
            success.remoteCommentId = created->commentId;
            success.remoteCreatedAt = created->createdAt;
            success.subject = request.subject.value_or("");
            success.body = request.requestDescription;
            success.attachments = sentAttachments(uploads);
            self->finish(success);
        });
}

// Comment creation.

CommentRequestOperation::CommentRequestOperation(std::string id, std::string text, std::vector<Upload::Attachment> files,
                                                 std::shared_ptr<RequestProvider> provider,
                                                 std::shared_ptr<AttachmentUploader> uploader)
    : body(std::move(text)), attachments(std::move(files)), requestProvider(freshProvider(std::move(provider))),
      attachmentUploader(std::move(uploader)), id_(std::move(id)) {}

void CommentRequestOperation::execute(std::optional<TicketInfo> ticket) {
    if (!ticket) {
        corvane::CoreLogger::error("No request ID found, unable to create comment");
        Actions::CommentCreationError failure;
        failure.id = id_;
        return finish(failure);
    }
    auto self = shared_from_this();
    uploadThen(
        attachmentUploader, attachments,
        [self, requestId = ticket->first](UploadResults uploads) { self->addComment(requestId, std::move(uploads)); },
        [self] {
            Actions::AttachmentsUploadError failure;
            failure.id = self->id_;
            self->finish(failure);
        });
}

void CommentRequestOperation::addComment(const std::string& requestId, UploadResults uploads) {
    auto self = shared_from_this();
    const auto tokens = tokensOf(uploads);
    requestProvider->addComment(
        body, requestId, tokens,
        [self, requestId, uploads = std::move(uploads)](std::optional<dastrel::CRVComment> comment,
                                                        std::optional<dastrel::ProviderError> error) {
            if (!comment || error) {
                Actions::CommentCreationError failure;
                failure.requestRemoteId = requestId;
                failure.id = self->id_;
                if (error) failure.error = error->code;
                return self->finish(failure);
            }
            Actions::CommentCreated success;
            success.localId = self->id_;
            success.remoteCommentId = std::to_string(comment->commentId);
            success.remoteCreatedAt = comment->createdAt > 0 ? comment->createdAt : platform::now();
            success.attachments = sentAttachments(uploads);
            auto& main = platform::MainQueue::shared();
            if (main.isMainThread()) return self->finish(success);
            main.async([self, success = std::move(success)] { self->finish(success); });
        });
}

// Fetching.

FetchNewCommentsOperation::FetchNewCommentsOperation(std::optional<std::string> id,
                                                     std::shared_ptr<RequestProvider> provider,
                                                     dastrel::RequestStorage* storage)
    : requestProvider(freshProvider(std::move(provider))), requestStorage(storage),
      id_(id ? std::move(*id) : platform::uuidString()) {}

void FetchNewCommentsOperation::execute(std::optional<TicketInfo> ticket) {
    if (!ticket) {
        corvane::CoreLogger::error("No RequestID found, cannot fetch");
        return finish(Actions::FetchCommentsError{});
    }
    auto self = shared_from_this();
    requestProvider->getComments(
        ticket->first, ticket->second, false,
        [self](std::optional<std::vector<dastrel::CRVCommentWithUser>> comments, std::optional<dastrel::ProviderError>) {
            if (!comments) return self->finish(Actions::FetchCommentsError{});
            Actions::NewCommentsFetched fetched;
            fetched.comments.reserve(comments->size());
            for (const auto& comment : *comments) fetched.comments.push_back(commentFromProvider(comment));
            self->finish(fetched);
        });
}

} // namespace belvakit
