// `queue_operation`: one comment on a known ticket through the send queue (a fetch of what is new,
// then the comment, each run by its own operation with a fresh provider, then the queue's
// completion), against making the same two calls on the provider directly and handing their
// outcomes to a store. Both talk to the embedded help desk with no latency and run its answers on
// the main queue; the ticket is replaced every few hundred comments so that neither side pays for
// a growing conversation.
#include "harness.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/queue/comment_mapping.hpp"
#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/Request/queue/request_queue_middleware.hpp"
#include "dastrel/support.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "tivra/async.hpp"
#include "tivra/store.hpp"

#include <boost/json.hpp>

#include <filesystem>
#include <typeinfo>

namespace {

constexpr int commentsPerTicket = 300;

// The core and support library on a help desk under a scratch directory, for one run.
class Backend {
public:
    Backend() : directory_(std::filesystem::temp_directory_path() / "belva-bench-queue") {
        helpDesk_ = sandbox::HelpDesk::make({.storageDirectory = directory_});
        core_ = helpDesk_->initializeCorvane(corvane::Identity::createAnonymous("Bench", std::nullopt));
        dastrel::Support::initialize(core_);
    }
    ~Backend() {
        dastrel::Support::reset();
        corvane::Corvane::reset();
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }

    // A new ticket and the date of its only comment.
    std::pair<std::string, double> newTicket() {
        dastrel::CRVCreateRequest request;
        request.requestDescription = "Benchmark ticket";
        std::pair<std::string, double> ticket;
        belvakit::makeRequestProvider()->createRequest(request, [&](std::optional<dastrel::CRVDispatcherResponse> response,
                                                                    std::optional<dastrel::ProviderError>) {
            if (!response) return;
            const auto body = boost::json::parse(response->data).as_object();
            ticket.first = std::string(body.at("request").at("id").as_string());
            ticket.second = body.at("last_comment").at("created_at").to_number<double>();
        });
        platform::MainQueue::shared().runUntil([&] { return !ticket.first.empty(); });
        return ticket;
    }

private:
    std::filesystem::path directory_;
    std::shared_ptr<sandbox::HelpDesk> helpDesk_;
    std::shared_ptr<corvane::Corvane> core_;
};

// A store shaped like the shared one, with the queue or without it.
std::shared_ptr<tivra::Store> makeStore(std::shared_ptr<tivra::Middleware> queue) {
    std::shared_ptr<tivra::Middleware> chain = std::make_shared<tivra::CombinedMiddleWare>();
    chain = chain + std::make_shared<tivra::AsyncMiddleware>();
    if (queue) chain = chain + queue;
    return tivra::Store::make(
        tivra::State(), [](const std::any&, const tivra::Action&) { return std::optional<std::any>(); }, chain);
}

void measured(benchmark::State& run) {
    Backend backend;
    auto store = makeStore(belvakit::RequestQueueMiddleWare::make({}, belvakit::RequestQueueState::initial(),
                                                                  belvakit::RequestUiConfiguration()));
    int completed = 0;
    auto subscription = store->addActionListener([&](const tivra::Action& action) {
        if (typeid(action) == typeid(belvakit::RequestQueueActions::QueueCompleted)) ++completed;
    });
    auto& main = platform::MainQueue::shared();
    int sent = 0;
    for (auto _ : run) {
        if (sent++ % commentsPerTicket == 0) {
            belvakit::RequestQueueActions::SetRequestId known;
            known.id = backend.newTicket().first;
            store->dispatch(known);
        }
        belvakit::RequestQueueActions::DispatchDetails details;
        details.id = "local";
        details.body = "A comment";
        const int before = completed;
        store->dispatch(details);
        while (completed == before) main.runPending();
    }
    subscription.removeListener();
}

// The floor: the same two calls on a fresh provider, their outcomes handed to the same kind of
// store as the actions a conversation needs, which the queue sends too.
void baseline(benchmark::State& run) {
    Backend backend;
    auto store = makeStore(nullptr);
    int seen = 0;
    auto subscription = store->addActionListener([&](const tivra::Action& action) {
        if (typeid(action) == typeid(belvakit::Actions::CommentCreated)) ++seen;
    });
    auto& main = platform::MainQueue::shared();
    std::pair<std::string, double> ticket;
    int sent = 0;
    for (auto _ : run) {
        if (sent++ % commentsPerTicket == 0) ticket = backend.newTicket();
        bool done = false;
        auto provider = belvakit::makeRequestProvider();
        provider->getComments(ticket.first, ticket.second, false, [&](auto comments, auto) {
            belvakit::Actions::NewCommentsFetched fetched;
            for (const auto& comment : comments.value_or(std::vector<dastrel::CRVCommentWithUser>{}))
                fetched.comments.push_back(belvakit::commentFromProvider(comment));
            store->dispatch(fetched);
            provider->addComment("A comment", ticket.first, {}, [&](auto comment, auto) {
                if (!comment) return;
                ticket.second = comment->createdAt;
                belvakit::Actions::CommentCreated created;
                created.localId = "local";
                created.remoteCommentId = std::to_string(comment->commentId);
                created.remoteCreatedAt = comment->createdAt;
                store->dispatch(created);
                done = true;
            });
        });
        while (!done) main.runPending();
    }
    benchmark::DoNotOptimize(seen);
    subscription.removeListener();
}

} // namespace

std::vector<bench::Metric> bench::queueMetrics() { return {{"queue_operation", 2.0, measured, baseline, nullptr}}; }
