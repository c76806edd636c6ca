#include "sandbox/ticket_desk.hpp"

#include "answer.hpp"

#include "dastrel/dispatcher_notifications.hpp"
#include "dastrel/support.hpp"
#include "platform/clock.hpp"
#include "platform/main_queue.hpp"
#include "platform/notification_center.hpp"

#include <boost/json.hpp>

#include <algorithm>

namespace sandbox {

namespace {

dastrel::ProviderError offlineError() {
    return {"NSURLErrorDomain", -1009, "The Internet connection appears to be offline."};
}
dastrel::ProviderError unauthorizedError() { return {"HTTP", 401, "Unauthorized"}; }
dastrel::ProviderError serverError() { return {"HTTP", 500, "Internal Server Error"}; }
dastrel::ProviderError notFoundError() { return {"HTTP", 404, "Not Found"}; }
dastrel::ProviderError invalidError(std::string what) { return {"HTTP", 422, std::move(what)}; }

// The provider of the support library on this desk; each call goes straight to the desk.
class DeskRequestProvider final : public dastrel::CRVRequestProvider {
public:
    explicit DeskRequestProvider(std::shared_ptr<TicketDesk> desk) : desk_(std::move(desk)) {}

    void getAllRequests(dastrel::CRVCallback<dastrel::CRVRequestsWithCommentingAgents> callback) override {
        desk_->getAllRequests(std::move(callback));
    }
    void getRequestById(const std::string& requestId, dastrel::CRVCallback<dastrel::CRVRequest> callback) override {
        desk_->getRequestById(requestId, std::move(callback));
    }
    void getCommentsWithRequestId(const std::string& requestId,
                                  dastrel::CRVCallback<std::vector<dastrel::CRVCommentWithUser>> callback) override {
        desk_->getComments(requestId, std::nullopt, false, std::move(callback));
    }
    void getComments(const std::string& requestId, double sinceDate, bool onlyAgent,
                     dastrel::CRVCallback<std::vector<dastrel::CRVCommentWithUser>> callback) override {
        desk_->getComments(requestId, sinceDate, onlyAgent, std::move(callback));
    }
    void createRequest(const dastrel::CRVCreateRequest& request,
                       dastrel::CRVCallback<dastrel::CRVDispatcherResponse> callback) override {
        desk_->createRequest(request, std::move(callback));
    }
    void addComment(const std::string& body, const std::string& requestId, const std::vector<std::string>& attachments,
                    dastrel::CRVCallback<dastrel::CRVComment> callback) override {
        desk_->addComment(body, requestId, attachments, std::move(callback));
    }
    void markRequestAsRead(const std::string& requestId, long commentCount) override {
        desk_->markRequestAsRead(requestId, commentCount);
    }
    void getUpdatesForDevice(std::function<void(std::optional<dastrel::RequestUpdates>)> callback) override {
        desk_->getUpdatesForDevice(std::move(callback));
    }

private:
    std::shared_ptr<TicketDesk> desk_;
};

// The device's own memory of what the user read, when the support library is set up.
void markReadOnDevice(const std::string& requestId, long commentCount) {
    if (auto support = dastrel::Support::instance()) support->requestStorage().markRequestAsRead(requestId, commentCount);
}

} // namespace

std::shared_ptr<TicketDesk> TicketDesk::make(UploadResolver resolveUpload) {
    return std::shared_ptr<TicketDesk>(new TicketDesk(std::move(resolveUpload)));
}

void TicketDesk::setEndUser(std::string name, std::optional<std::string> email) {
    std::lock_guard lock(mutex_);
    (void)email;
    endUser_.name = std::move(name);
}

dastrel::CRVSupportUser TicketDesk::addAgent(std::string name, std::optional<std::string> avatarURL) {
    std::lock_guard lock(mutex_);
    dastrel::CRVSupportUser agent{nextAgentId_++, std::move(name), std::move(avatarURL), true};
    agents_[agent.userId] = agent;
    return agent;
}

std::optional<dastrel::CRVComment> TicketDesk::addAgentComment(const std::string& requestId, std::int64_t agentId,
                                                               std::string body, std::optional<std::string> htmlBody,
                                                               std::vector<dastrel::CRVAttachment> attachments) {
    std::lock_guard lock(mutex_);
    auto ticket = tickets_.find(requestId);
    if (ticket == tickets_.end() || !agents_.contains(agentId)) return std::nullopt;
    return appendCommentLocked(ticket->second, agentId, std::move(body), std::move(htmlBody), std::move(attachments));
}

void TicketDesk::setAutoReply(std::int64_t agentId, AutoReply reply) {
    std::lock_guard lock(mutex_);
    if (!reply) autoReplies_.erase(agentId);
    else autoReplies_[agentId] = std::move(reply);
}

void TicketDesk::setStatus(const std::string& requestId, std::string status) {
    std::lock_guard lock(mutex_);
    if (auto ticket = tickets_.find(requestId); ticket != tickets_.end()) ticket->second.request.status = std::move(status);
}

std::optional<dastrel::CRVCreateRequest> TicketDesk::creation(const std::string& requestId) const {
    std::lock_guard lock(mutex_);
    const auto ticket = tickets_.find(requestId);
    return ticket == tickets_.end() ? std::nullopt : std::optional(ticket->second.creation);
}

std::vector<dastrel::CRVRequest> TicketDesk::requests() const {
    std::lock_guard lock(mutex_);
    std::vector<dastrel::CRVRequest> out;
    for (const auto& id : ticketOrder_) out.push_back(tickets_.at(id).request);
    return out;
}

std::vector<dastrel::CRVComment> TicketDesk::comments(const std::string& requestId) const {
    std::lock_guard lock(mutex_);
    auto ticket = tickets_.find(requestId);
    return ticket == tickets_.end() ? std::vector<dastrel::CRVComment>{} : ticket->second.comments;
}

std::size_t TicketDesk::callCount() const {
    std::lock_guard lock(mutex_);
    return calls_;
}

void TicketDesk::setOffline(bool offline) {
    // Reachability observers run while the outage changes, and may call the desk: never under its lock.
    corvane::NetworkMonitor::Outage outage = offline ? corvane::NetworkMonitor::shared().beginOutage() : nullptr;
    {
        std::lock_guard lock(mutex_);
        offline_ = offline;
        std::swap(outage_, outage);
    }
}

void TicketDesk::setUnauthorized(bool unauthorized) {
    std::lock_guard lock(mutex_);
    unauthorized_ = unauthorized;
}

void TicketDesk::setAnswersOnWorkerThreads(bool onWorkerThreads) { answersOnWorkerThreads_ = onWorkerThreads; }

void TicketDesk::setLatency(platform::Duration latency) {
    std::lock_guard lock(mutex_);
    latencyMinimum_ = latencyMaximum_ = latency;
}

void TicketDesk::setLatencyRange(platform::Duration minimum, platform::Duration maximum, unsigned seed) {
    std::lock_guard lock(mutex_);
    latencyMinimum_ = minimum;
    latencyMaximum_ = std::max(minimum, maximum);
    random_.seed(seed);
}

void TicketDesk::failNext(int count) {
    std::lock_guard lock(mutex_);
    failNext_ = count;
}

void TicketDesk::setFailureRate(double rate, unsigned seed) {
    std::lock_guard lock(mutex_);
    failureRate_ = rate;
    random_.seed(seed);
}

std::shared_ptr<dastrel::CRVRequestProvider> TicketDesk::requestProvider() {
    return std::make_shared<DeskRequestProvider>(shared_from_this());
}

std::optional<dastrel::ProviderError> TicketDesk::admitLocked() {
    ++calls_;
    if (offline_) return offlineError();
    if (unauthorized_) {
        // As the network dispatcher does on a 401, on the main queue and before the answer.
        platform::MainQueue::shared().async([] {
            platform::NotificationCenter::defaultCenter().post(dastrel::DispatcherNotifications::UnauthorizedNotificationName,
                                                               nullptr);
        });
        return unauthorizedError();
    }
    if (failNext_ > 0) {
        --failNext_;
        return serverError();
    }
    if (failureRate_ > 0 && std::uniform_real_distribution<double>(0, 1)(random_) < failureRate_) return serverError();
    return std::nullopt;
}

platform::Duration TicketDesk::latencyLocked() {
    if (latencyMaximum_ <= latencyMinimum_) return latencyMinimum_;
    std::uniform_int_distribution<long long> pick(latencyMinimum_.count(), latencyMaximum_.count());
    return platform::Duration(pick(random_));
}

void TicketDesk::answer(platform::Duration latency, std::function<void()> work) const {
    deliverAnswer(latency, answersOnWorkerThreads_, std::move(work));
}

dastrel::CRVComment TicketDesk::appendCommentLocked(Ticket& ticket, std::int64_t authorId, std::string body,
                                                    std::optional<std::string> htmlBody,
                                                    std::vector<dastrel::CRVAttachment> attachments) {
    dastrel::CRVComment comment;
    comment.commentId = nextCommentId_++;
    comment.requestId = ticket.request.requestId;
    comment.body = std::move(body);
    comment.htmlBody = std::move(htmlBody);
    comment.authorId = authorId;
    comment.attachments = std::move(attachments);
    // Strictly increasing, so "comments since" never loses one created in the same instant.
    const double last = ticket.comments.empty() ? 0 : ticket.comments.back().createdAt;
    comment.createdAt = std::max(platform::now(), last + 0.001);
    ticket.comments.push_back(comment);

    auto& request = ticket.request;
    request.commentCount = static_cast<std::int64_t>(ticket.comments.size());
    request.updatedAt = request.publicUpdatedAt = comment.createdAt;
    request.lastComment = comment.body;
    if (agents_.contains(authorId)) {
        auto& ids = request.commentingAgentsIds;
        std::erase(ids, authorId);
        ids.insert(ids.begin(), authorId);
        if (request.status == "new") request.status = "open";
    }
    return comment;
}

std::optional<dastrel::CRVSupportUser> TicketDesk::userLocked(std::int64_t userId) const {
    if (userId == endUser_.userId) return endUser_;
    auto agent = agents_.find(userId);
    if (agent == agents_.end()) return std::nullopt;
    return agent->second;
}

void TicketDesk::scheduleReply(const std::string& requestId, const dastrel::CRVComment& comment) {
    std::vector<std::pair<std::int64_t, Reply>> replies;
    {
        std::lock_guard lock(mutex_);
        const auto& request = tickets_.at(requestId).request;
        for (const auto& [agentId, reply] : autoReplies_)
            if (auto answer = reply(request, comment)) replies.emplace_back(agentId, std::move(*answer));
    }
    std::weak_ptr<TicketDesk> weak = weak_from_this();
    for (auto& [agentId, reply] : replies) {
        platform::MainQueue::shared().async([weak, requestId, agentId = agentId, reply = std::move(reply)] {
            platform::MainQueue::shared().asyncAfter(reply.after, [weak, requestId, agentId, reply] {
                if (auto desk = weak.lock()) desk->addAgentComment(requestId, agentId, reply.body, reply.htmlBody);
            });
        });
    }
}

void TicketDesk::getAllRequests(dastrel::CRVCallback<dastrel::CRVRequestsWithCommentingAgents> callback) {
    std::lock_guard lock(mutex_);
    const auto error = admitLocked();
    if (error) return answer(latencyLocked(), [callback, error] { callback(std::nullopt, error); });
    dastrel::CRVRequestsWithCommentingAgents response;
    std::vector<std::int64_t> lastAgents;
    for (auto id = ticketOrder_.rbegin(); id != ticketOrder_.rend(); ++id) {
        const auto& request = tickets_.at(*id).request;
        response.requests.push_back(request);
        if (!request.commentingAgentsIds.empty()) {
            const auto last = request.commentingAgentsIds.front();
            if (std::find(lastAgents.begin(), lastAgents.end(), last) == lastAgents.end()) lastAgents.push_back(last);
        }
    }
    for (auto agentId : lastAgents) response.commentingAgents.push_back(agents_.at(agentId));
    answer(latencyLocked(), [callback, response = std::move(response)] { callback(response, std::nullopt); });
}

void TicketDesk::getRequestById(const std::string& requestId, dastrel::CRVCallback<dastrel::CRVRequest> callback) {
    std::lock_guard lock(mutex_);
    auto error = admitLocked();
    auto ticket = tickets_.find(requestId);
    if (!error && ticket == tickets_.end()) error = notFoundError();
    if (error) return answer(latencyLocked(), [callback, error] { callback(std::nullopt, error); });
    answer(latencyLocked(), [callback, request = ticket->second.request] { callback(request, std::nullopt); });
}

void TicketDesk::getComments(const std::string& requestId, std::optional<double> sinceDate, bool onlyAgent,
                             dastrel::CRVCallback<std::vector<dastrel::CRVCommentWithUser>> callback) {
    std::lock_guard lock(mutex_);
    auto error = admitLocked();
    auto ticket = tickets_.find(requestId);
    if (!error && ticket == tickets_.end()) error = notFoundError();
    if (error) return answer(latencyLocked(), [callback, error] { callback(std::nullopt, error); });
    std::vector<dastrel::CRVCommentWithUser> out;
    for (const auto& comment : ticket->second.comments) {
        if (sinceDate && comment.createdAt <= *sinceDate) continue;
        const auto author = userLocked(comment.authorId);
        if (!author || (onlyAgent && !author->isAgent)) continue;
        out.push_back({comment, *author});
    }
    answer(latencyLocked(), [callback, out = std::move(out)] { callback(out, std::nullopt); });
}

void TicketDesk::createRequest(const dastrel::CRVCreateRequest& request,
                               dastrel::CRVCallback<dastrel::CRVDispatcherResponse> callback) {
    std::unique_lock lock(mutex_);
    auto error = admitLocked();
    std::vector<dastrel::CRVAttachment> files;
    for (const auto& token : request.attachments) {
        auto file = resolveUpload_ ? resolveUpload_(token) : std::nullopt;
        if (!file) {
            error = error ? error : invalidError("Unknown upload token " + token);
            break;
        }
        files.push_back(std::move(*file));
    }
    if (!error && request.requestDescription.empty()) error = invalidError("A request needs a description");
    if (error) return answer(latencyLocked(), [callback, error] { callback(std::nullopt, error); });

    Ticket ticket;
    ticket.request.requestId = std::to_string(nextRequestId_++);
    ticket.request.requestDescription = request.requestDescription;
    ticket.request.subject = request.subject;
    ticket.request.status = "new";
    ticket.request.createdAt = platform::now();
    ticket.request.requesterId = endUser_.userId;
    ticket.creation = request;
    const auto firstComment =
        appendCommentLocked(ticket, endUser_.userId, request.requestDescription, std::nullopt, std::move(files));
    const std::string id = ticket.request.requestId;
    const boost::json::object body{{"request", ticket.request.toJson()}, {"last_comment", firstComment.toJson()}};
    const long count = static_cast<long>(ticket.request.commentCount);
    tickets_.emplace(id, std::move(ticket));
    ticketOrder_.push_back(id);
    const auto latency = latencyLocked();
    lock.unlock();

    markReadOnDevice(id, count);
    answer(latency, [callback, data = boost::json::serialize(body)] {
        callback(dastrel::CRVDispatcherResponse{201, data}, std::nullopt);
    });
    scheduleReply(id, firstComment);
}

void TicketDesk::addComment(const std::string& body, const std::string& requestId,
                            const std::vector<std::string>& tokens, dastrel::CRVCallback<dastrel::CRVComment> callback) {
    std::unique_lock lock(mutex_);
    auto error = admitLocked();
    auto ticket = tickets_.find(requestId);
    if (!error && ticket == tickets_.end()) error = notFoundError();
    if (!error && ticket->second.request.status == "closed") error = invalidError("The request is closed");
    std::vector<dastrel::CRVAttachment> files;
    for (const auto& token : tokens) {
        if (error) break;
        auto file = resolveUpload_ ? resolveUpload_(token) : std::nullopt;
        if (!file) error = invalidError("Unknown upload token " + token);
        else files.push_back(std::move(*file));
    }
    if (error) return answer(latencyLocked(), [callback, error] { callback(std::nullopt, error); });
    const auto comment = appendCommentLocked(ticket->second, endUser_.userId, body, std::nullopt, std::move(files));
    const long count = static_cast<long>(ticket->second.request.commentCount);
    const auto latency = latencyLocked();
    lock.unlock();

    markReadOnDevice(requestId, count);
    answer(latency, [callback, comment] { callback(comment, std::nullopt); });
    scheduleReply(requestId, comment);
}

void TicketDesk::markRequestAsRead(const std::string& requestId, long commentCount) {
    markReadOnDevice(requestId, commentCount);
}

void TicketDesk::getUpdatesForDevice(std::function<void(std::optional<dastrel::RequestUpdates>)> callback) {
    std::unique_lock lock(mutex_);
    if (admitLocked()) return answer(latencyLocked(), [callback] { callback(std::nullopt); });
    std::vector<dastrel::CRVRequest> all;
    for (const auto& entry : tickets_) all.push_back(entry.second.request);
    const auto latency = latencyLocked();
    lock.unlock();
    auto support = dastrel::Support::instance();
    dastrel::RequestUpdates updates = support ? support->requestStorage().calculateRequestUpdates(all) : dastrel::RequestUpdates{};
    answer(latency, [callback, updates = std::move(updates)] { callback(updates); });
}

} // namespace sandbox
