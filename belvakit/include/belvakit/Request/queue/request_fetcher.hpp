#pragma once

#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/queue/request_records.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

class Cache;

// Loads a conversation from the disk and from the help desk.
class RequestFetcher {
public:
    explicit RequestFetcher(std::shared_ptr<RequestProvider> provider = makeRequestProvider(),
                            std::shared_ptr<Cache> conversations = nullptr)
        : requestProvider(std::move(provider)), cache(std::move(conversations)) {}

    // The conversation kept under `key`; an empty one when there is no cache or no readable entry.
    void loadFromDisk(const std::string& key, LoadConversationCompletion completion) const;
    // Every comment of the ticket, oldest first; nothing when the call fails.
    void fetchComments(const std::string& requestId,
                       std::function<void(std::optional<std::vector<Request::Comment>>)> completion) const;

    std::shared_ptr<RequestProvider> requestProvider;
    std::shared_ptr<Cache> cache;
};

} // namespace belvakit
