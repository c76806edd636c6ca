#pragma once

#include "dastrel/create_request.hpp"
#include "corvane/reachability.hpp"
#include "dastrel/request_provider.hpp"
#include "platform/scheduler.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace sandbox {

// The help desk's tickets: requests, their public comments, the end user and the agents, with a
// scriptable agent who replies and switches for offline, latency, failures and HTTP 401.
// Every answer arrives after the latency, through the scheduler, on the main queue or, when
// switched so, on a worker thread.
class TicketDesk : public std::enable_shared_from_this<TicketDesk> {
public:
    // Finds the file an upload token stands for.
    using UploadResolver = std::function<std::optional<dastrel::CRVAttachment>(const std::string& token)>;
    // The simulated agent's answer to a user's comment, or nothing to stay silent.
    struct Reply {
        std::string body;
        std::optional<std::string> htmlBody;
        platform::Duration after{};
    };
    using AutoReply = std::function<std::optional<Reply>(const dastrel::CRVRequest&, const dastrel::CRVComment&)>;

    static std::shared_ptr<TicketDesk> make(UploadResolver resolveUpload);

    // People.
    void setEndUser(std::string name, std::optional<std::string> email);
    const dastrel::CRVSupportUser& endUser() const { return endUser_; }
    dastrel::CRVSupportUser addAgent(std::string name, std::optional<std::string> avatarURL = std::nullopt);

    // What agents do.
    std::optional<dastrel::CRVComment> addAgentComment(const std::string& requestId, std::int64_t agentId,
                                                       std::string body,
                                                       std::optional<std::string> htmlBody = std::nullopt,
                                                       std::vector<dastrel::CRVAttachment> attachments = {});
    // An empty function stops the agent's replies.
    void setAutoReply(std::int64_t agentId, AutoReply reply);
    void setStatus(const std::string& requestId, std::string status);

    // What the help desk holds, for tests and the demo.
    std::vector<dastrel::CRVRequest> requests() const;
    std::vector<dastrel::CRVComment> comments(const std::string& requestId) const;
    // The request as it was sent to create the ticket: subject, tags, custom fields and form.
    std::optional<dastrel::CRVCreateRequest> creation(const std::string& requestId) const;
    std::size_t callCount() const;

    // Switches. Going offline also takes the network's reachability down, for as long as the
    // desk is offline or until it goes.
    void setOffline(bool offline);
    void setUnauthorized(bool unauthorized);
    void setLatency(platform::Duration latency);
    // Answers come on worker threads, as a real provider's do, instead of on the main queue.
    void setAnswersOnWorkerThreads(bool onWorkerThreads);
    // Each answer waits a random time in [minimum, maximum], so answers can overtake each other.
    void setLatencyRange(platform::Duration minimum, platform::Duration maximum, unsigned seed);
    // The next `count` calls fail with a server error.
    void failNext(int count);
    // Each call fails with this probability, drawn from a seeded generator.
    void setFailureRate(double rate, unsigned seed);

    std::shared_ptr<dastrel::CRVRequestProvider> requestProvider();

    // The calls, as the provider makes them.
    void getAllRequests(dastrel::CRVCallback<dastrel::CRVRequestsWithCommentingAgents> callback);
    void getRequestById(const std::string& requestId, dastrel::CRVCallback<dastrel::CRVRequest> callback);
    void getComments(const std::string& requestId, std::optional<double> sinceDate, bool onlyAgent,
                     dastrel::CRVCallback<std::vector<dastrel::CRVCommentWithUser>> callback);
    void createRequest(const dastrel::CRVCreateRequest& request,
                       dastrel::CRVCallback<dastrel::CRVDispatcherResponse> callback);
    void addComment(const std::string& body, const std::string& requestId, const std::vector<std::string>& tokens,
                    dastrel::CRVCallback<dastrel::CRVComment> callback);
    void markRequestAsRead(const std::string& requestId, long commentCount);
    void getUpdatesForDevice(std::function<void(std::optional<dastrel::RequestUpdates>)> callback);

private:
    struct Ticket {
        dastrel::CRVRequest request;
        dastrel::CRVCreateRequest creation;
        std::vector<dastrel::CRVComment> comments;
    };

    explicit TicketDesk(UploadResolver resolveUpload) : resolveUpload_(std::move(resolveUpload)) {}

    // The error this call meets, if any; counts the call. Locked.
    std::optional<dastrel::ProviderError> admitLocked();
    platform::Duration latencyLocked();
    // Hands `work` to the main queue after the latency.
    void answer(platform::Duration latency, std::function<void()> work) const;
    dastrel::CRVComment appendCommentLocked(Ticket& ticket, std::int64_t authorId, std::string body,
                                            std::optional<std::string> htmlBody,
                                            std::vector<dastrel::CRVAttachment> attachments);
    std::optional<dastrel::CRVSupportUser> userLocked(std::int64_t userId) const;
    void scheduleReply(const std::string& requestId, const dastrel::CRVComment& comment);

    UploadResolver resolveUpload_;
    mutable std::mutex mutex_;
    dastrel::CRVSupportUser endUser_{1, "End User", std::nullopt, false};
    std::map<std::int64_t, dastrel::CRVSupportUser> agents_;
    std::map<std::string, Ticket> tickets_;
    std::vector<std::string> ticketOrder_;
    std::int64_t nextRequestId_ = 100;
    std::int64_t nextCommentId_ = 10000;
    std::int64_t nextAgentId_ = 500;
    std::map<std::int64_t, AutoReply> autoReplies_;
    std::size_t calls_ = 0;

    bool offline_ = false;
    corvane::NetworkMonitor::Outage outage_;
    bool unauthorized_ = false;
    std::atomic<bool> answersOnWorkerThreads_ = false;  // read with and without the lock
    int failNext_ = 0;
    double failureRate_ = 0;
    platform::Duration latencyMinimum_{};
    platform::Duration latencyMaximum_{};
    std::mt19937 random_{1};
};

} // namespace sandbox
