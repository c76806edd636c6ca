#include "dastrel/comment.hpp"
#include "dastrel/request.hpp"
#include "dastrel/request_updates.hpp"
#include "dastrel/support_user.hpp"

#include "json_fields.hpp"

namespace dastrel {

using namespace json_fields;

boost::json::value CRVSupportUser::toJson() const {
    boost::json::object out{{"id", userId}, {"name", name}, {"agent", isAgent}};
    putOptional(out, "avatar_url", avatarURL);
    return out;
}

std::optional<CRVSupportUser> CRVSupportUser::fromJson(const boost::json::value& json) {
    const auto* object = json.if_object();
    if (!object) return std::nullopt;
    const auto id = integer(*object, "id");
    const auto userName = string(*object, "name");
    if (!id || !userName) return std::nullopt;
    return CRVSupportUser{*id, *userName, string(*object, "avatar_url"), boolean(*object, "agent").value_or(false)};
}

boost::json::value CRVRequest::toJson() const {
    boost::json::object out{{"id", requestId},
                            {"description", requestDescription},
                            {"status", status},
                            {"created_at", createdAt},
                            {"comment_count", commentCount}};
    putOptional(out, "subject", subject);
    putOptional(out, "updated_at", updatedAt);
    putOptional(out, "public_updated_at", publicUpdatedAt);
    putOptional(out, "last_comment", lastComment);
    putOptional(out, "requester_id", requesterId);
    boost::json::array agents;
    for (auto id : commentingAgentsIds) agents.push_back(id);
    out["commenting_agent_ids"] = std::move(agents);
    return out;
}

namespace {

// The keys a request is read from, in the order of `requestKeys`.
enum RequestKey : std::size_t {
    idKey,
    descriptionKey,
    statusKey,
    createdAtKey,
    subjectKey,
    updatedAtKey,
    publicUpdatedAtKey,
    commentCountKey,
    lastCommentKey,
    requesterIdKey,
    agentIdsKey,
    requestKeyCount
};

constexpr std::array<std::string_view, requestKeyCount> requestKeys{
    "id",         "description",       "status",        "created_at",   "subject",
    "updated_at", "public_updated_at", "comment_count", "last_comment", "requester_id",
    "commenting_agent_ids"};

} // namespace

std::optional<CRVRequest> CRVRequest::initWithDict(const boost::json::value& json) {
    const auto* object = json.if_object();
    if (!object) return std::nullopt;
    // A list holds thousands of these: their fields are found in one pass.
    const auto values = fields(*object, requestKeys);
    auto id = string(values[idKey]);
    auto description = string(values[descriptionKey]);
    auto requestStatus = string(values[statusKey]);
    const auto created = number(values[createdAtKey]);
    if (!id || !description || !requestStatus || !created) return std::nullopt;
    CRVRequest request;
    request.requestId = std::move(*id);
    request.requestDescription = std::move(*description);
    request.status = std::move(*requestStatus);
    request.createdAt = *created;
    request.subject = string(values[subjectKey]);
    request.updatedAt = number(values[updatedAtKey]);
    request.publicUpdatedAt = number(values[publicUpdatedAtKey]);
    request.commentCount = integer(values[commentCountKey]).value_or(0);
    request.lastComment = string(values[lastCommentKey]);
    request.requesterId = integer(values[requesterIdKey]);
    if (const auto* agents = values[agentIdsKey]; agents && agents->is_array()) {
        request.commentingAgentsIds.reserve(agents->get_array().size());
        for (const auto& agent : agents->get_array())
            if (agent.is_int64()) request.commentingAgentsIds.push_back(agent.get_int64());
    }
    return request;
}

namespace CRVRequestsResponse {

namespace {

std::span<const boost::json::value> entries(const boost::json::value& json, std::string_view key) {
    const auto* object = json.if_object();
    const auto* list = object ? object->if_contains(key) : nullptr;
    if (!list || !list->is_array()) return {};
    return {list->get_array().data(), list->get_array().size()};
}

template <class Record, class Parse>
std::vector<Record> parseList(const boost::json::value& json, std::string_view key, Parse parse) {
    const auto list = entries(json, key);
    std::vector<Record> out;
    out.reserve(list.size());
    for (const auto& entry : list)
        if (auto record = parse(entry)) out.push_back(std::move(*record));
    return out;
}

} // namespace

std::span<const boost::json::value> requestEntries(const boost::json::value& json) {
    return entries(json, "requests");
}

std::vector<CRVRequest> parseRequestListWithDictionary(const boost::json::value& json) {
    return parseList<CRVRequest>(json, "requests", &CRVRequest::initWithDict);
}

std::vector<CRVSupportUser> parseRequestListAgentsWithDictionary(const boost::json::value& json) {
    return parseList<CRVSupportUser>(json, "last_commenting_agents", &CRVSupportUser::fromJson);
}

boost::json::value toJson(const CRVRequestsWithCommentingAgents& response) {
    boost::json::array requests;
    for (const auto& request : response.requests) requests.push_back(request.toJson());
    boost::json::array agents;
    for (const auto& agent : response.commentingAgents) agents.push_back(agent.toJson());
    return boost::json::object{{"requests", std::move(requests)}, {"last_commenting_agents", std::move(agents)}};
}

} // namespace CRVRequestsResponse

namespace {

boost::json::value attachmentToJson(const CRVAttachment& attachment) {
    return boost::json::object{{"id", attachment.attachmentId},
                               {"file_name", attachment.filename},
                               {"content_url", attachment.contentURLString},
                               {"content_type", attachment.contentType},
                               {"size", attachment.size},
                               {"width", attachment.width},
                               {"height", attachment.height},
                               {"thumbnail_url", attachment.thumbnailURLString},
                               {"thumbnail_width", attachment.thumbnailWidth},
                               {"thumbnail_height", attachment.thumbnailHeight}};
}

std::optional<CRVAttachment> attachmentFromJson(const boost::json::value& json) {
    const auto* object = json.if_object();
    if (!object) return std::nullopt;
    const auto id = integer(*object, "id");
    const auto fileName = string(*object, "file_name");
    const auto url = string(*object, "content_url");
    if (!id || !fileName || !url) return std::nullopt;
    CRVAttachment attachment;
    attachment.attachmentId = *id;
    attachment.filename = *fileName;
    attachment.contentURLString = *url;
    attachment.contentType = string(*object, "content_type").value_or("application/binary");
    attachment.size = integer(*object, "size").value_or(0);
    attachment.width = number(*object, "width").value_or(0);
    attachment.height = number(*object, "height").value_or(0);
    attachment.thumbnailURLString = string(*object, "thumbnail_url").value_or("");
    attachment.thumbnailWidth = number(*object, "thumbnail_width").value_or(0);
    attachment.thumbnailHeight = number(*object, "thumbnail_height").value_or(0);
    return attachment;
}

} // namespace

boost::json::value CRVComment::toJson() const {
    boost::json::array files;
    for (const auto& attachment : attachments) files.push_back(attachmentToJson(attachment));
    boost::json::object out{{"id", commentId},         {"request_id", requestId}, {"body", body},
                            {"author_id", authorId},   {"created_at", createdAt}, {"attachments", std::move(files)}};
    putOptional(out, "html_body", htmlBody);
    return out;
}

std::optional<CRVComment> CRVComment::initWithDictionary(const boost::json::value& json) {
    const auto* object = json.if_object();
    if (!object) return std::nullopt;
    const auto id = integer(*object, "id");
    const auto text = string(*object, "body");
    const auto author = integer(*object, "author_id");
    const auto created = number(*object, "created_at");
    if (!id || !text || !author || !created) return std::nullopt;
    CRVComment comment;
    comment.commentId = *id;
    comment.requestId = string(*object, "request_id").value_or("");
    comment.body = *text;
    comment.htmlBody = string(*object, "html_body");
    comment.authorId = *author;
    comment.createdAt = *created;
    if (const auto* files = field(*object, "attachments"); files && files->is_array())
        for (const auto& file : files->get_array())
            if (auto attachment = attachmentFromJson(file)) comment.attachments.push_back(std::move(*attachment));
    return comment;
}

bool RequestUpdates::isRequestUnread(const std::string& requestId) const {
    auto found = requestsWithUnreadComments.find(requestId);
    return found != requestsWithUnreadComments.end() && found->second > 0;
}

long RequestUpdates::totalUpdates() const {
    long total = 0;
    for (const auto& entry : requestsWithUnreadComments) total += entry.second;
    return total;
}

} // namespace dastrel
