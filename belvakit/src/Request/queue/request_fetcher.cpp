#include "belvakit/Request/queue/request_fetcher.hpp"

#include "belvakit/Request/queue/comment_mapping.hpp"
#include "belvakit/attachments/cache.hpp"

namespace belvakit {

void RequestFetcher::loadFromDisk(const std::string& key, LoadConversationCompletion completion) const {
    if (!cache) return loadConversation("", MessageList::currentVersion, completion);
    cache->fetch(key, [completion = std::move(completion)](std::optional<std::string> bytes) {
        // A view: a copy of a long conversation's bytes costs as much as a tenth of reading them.
        loadConversation(bytes ? std::string_view(*bytes) : std::string_view(), MessageList::currentVersion, completion);
    });
}

void RequestFetcher::fetchComments(const std::string& requestId,
                                   std::function<void(std::optional<std::vector<Request::Comment>>)> completion) const {
    requestProvider->getCommentsWithRequestId(
        requestId, [completion = std::move(completion)](std::optional<std::vector<dastrel::CRVCommentWithUser>> comments,
                                                        std::optional<dastrel::ProviderError> error) {
            if (!comments || error) return completion(std::nullopt);
            std::vector<Request::Comment> out;
            out.reserve(comments->size());
            for (const auto& comment : *comments) out.push_back(commentFromProvider(comment));
            completion(std::move(out));
        });
}

} // namespace belvakit
