// `request_list`: 5,000 tickets from the offline cache entry and 500 tickets only the device knows,
// through the whole list pipeline (cache read, rows, failed marks, local conversations loaded one
// by one, sort, closed filter, avatars already in their cache) to the rows the list shows, against
// parsing the same entry with Boost.JSON and sorting 5,500 rows by date.
#include "harness.hpp"

#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/requestlist/avatar_fetcher.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/Request/requestlist/request_list_middleware.hpp"
#include "belvakit/Request/requestlist/request_list_reducer.hpp"
#include "dastrel/support.hpp"
#include "platform/files.hpp"
#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "tivra/async.hpp"
#include "tivra/tivra.hpp"

#include <boost/json.hpp>

#include <algorithm>
#include <filesystem>
#include <typeinfo>

namespace {

constexpr int remoteTickets = 5000;
constexpr int localTickets = 500;
constexpr int agents = 20;

// The core on a help desk under a scratch directory, with the list's cache entry, the device's
// conversations and the agents' avatars written.
class Backend {
public:
    Backend() : directory_(std::filesystem::temp_directory_path() / "belva-bench-request-list") {
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
        helpDesk_ = sandbox::HelpDesk::make({.storageDirectory = directory_});
        core_ = helpDesk_->initializeCorvane(corvane::Identity::createAnonymous("Bench", std::nullopt));
        dastrel::Support::initialize(core_);
        tickets = belvakit::ConcreteCache::named(belvakit::ConcreteCache::ticketsDirectory);
        writeEntry();
        writeLocalConversations();
        writeAvatars();
        wait(tickets);
    }
    ~Backend() {
        dastrel::Support::reset();
        corvane::Corvane::reset();
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }

    std::filesystem::path entryFile() const { return *tickets->fileURL(belvakit::requestListOfflineCacheKey); }

    std::shared_ptr<belvakit::Cache> tickets;

private:
    static std::string avatarUrl(int agent) { return "https://belva.example.com/avatars/" + std::to_string(agent) + ".png"; }

    void writeEntry() {
        dastrel::CRVRequestsWithCommentingAgents response;
        for (int agent = 0; agent < agents; ++agent)
            response.commentingAgents.push_back({500 + agent, "Agent " + std::to_string(agent), avatarUrl(agent), true});
        const char* statuses[] = {"new", "open", "pending", "hold", "solved", "closed"};
        for (int i = 0; i < remoteTickets; ++i) {
            dastrel::CRVRequest request;
            request.requestId = std::to_string(1000 + i);
            request.requestDescription = "Ticket number " + std::to_string(i) + " about an order that did not arrive";
            request.status = statuses[i % 6];
            // Dates spread over a year, out of order.
            request.createdAt = 1670000000 + double((i * 7919) % remoteTickets) * 6000;
            request.publicUpdatedAt = request.createdAt + 3600;
            request.commentCount = 1 + i % 9;
            request.lastComment = "The latest answer on ticket " + std::to_string(i);
            request.commentingAgentsIds = {500 + i % agents};
            response.requests.push_back(std::move(request));
        }
        tickets->store(belvakit::requestListOfflineCacheKey, belvakit::encodeRequestListOfflineCache(response));
        // A few tickets hold failed messages.
        for (int i = 0; i < remoteTickets; i += 250) belvakit::RequestsWithFailedMessagesIdStore{}.add(std::to_string(1000 + i));
    }

    void writeLocalConversations() {
        belvakit::LocalIDStore ids;
        for (int i = 0; i < localTickets; ++i) {
            const auto id = "local-" + std::to_string(i);
            ids.localIdList.push_back(id);
            belvakit::persistConversation({belvakit::UserMessage{.id = id, .status = belvakit::DeliveryStatus::failed,
                                                                 .body = "Typed offline " + std::to_string(i),
                                                                 .createdAt = 1690000000.0 + i * 5000}},
                                          id, std::nullopt, {}, belvakit::MessageList::currentVersion, false, tickets);
        }
        ids.save();
    }

    void writeAvatars() {
        auto avatars = belvakit::ConcreteCache::named(belvakit::ConcreteCache::avatarsDirectory);
        const auto png = *platform::encodePNG(*platform::makeImage(32, 32));
        for (int agent = 0; agent < agents; ++agent) avatars->store(belvakit::avatarCacheKey(avatarUrl(agent)), png);
        wait(avatars);
    }

    static void wait(const std::shared_ptr<belvakit::Cache>& cache) {
        bool done = false;
        cache->run([&] { platform::MainQueue::shared().async([&] { done = true; }); });
        platform::MainQueue::shared().runUntil([&] { return done; });
    }

    std::filesystem::path directory_;
    std::shared_ptr<sandbox::HelpDesk> helpDesk_;
    std::shared_ptr<corvane::Corvane> core_;
};

void measured(benchmark::State& run) {
    Backend backend;
    auto store = tivra::Tivra::createStore(std::make_shared<belvakit::RequestListReducer>(),
                                           std::make_shared<tivra::AsyncMiddleware>() +
                                               std::make_shared<belvakit::RequestListMiddleware>());
    std::size_t rows = 0;
    auto subscription = store->addActionListener([&](const tivra::Action& action) {
        if (const auto* fetched = tivra::actionAs<belvakit::Actions::RequestsWithAvatarsFetched>(action))
            rows = fetched->requests.size();
    });
    auto& main = platform::MainQueue::shared();
    for (auto _ : run) {
        rows = 0;
        belvakit::Actions::FetchCachedRequests cached;
        cached.cache = backend.tickets;
        store->dispatch(cached);
        main.runUntil([&] { return rows > 0; });
    }
    subscription.removeListener();
    if (rows == 0) run.SkipWithError("the pipeline gave no rows");
}

struct Row {
    std::string id;
    std::string description;
    double date = 0;
};

// The floor: read and parse the same entry, one row per ticket plus the device's, sorted by date.
void baseline(benchmark::State& run) {
    Backend backend;
    const auto file = backend.entryFile();
    std::vector<Row> local;
    for (int i = 0; i < localTickets; ++i)
        local.push_back({"local-" + std::to_string(i), "Typed offline", 1690000000.0 + i * 5000});
    for (auto _ : run) {
        const auto json = boost::json::parse(*platform::readFile(file));
        std::vector<Row> rows = local;
        for (const auto& request : json.at("requests").as_array()) {
            const auto& object = request.as_object();
            rows.push_back({std::string(object.at("id").as_string()), std::string(object.at("description").as_string()),
                            object.at("public_updated_at").to_number<double>()});
        }
        std::sort(rows.begin(), rows.end(), [](const Row& left, const Row& right) { return left.date > right.date; });
        benchmark::DoNotOptimize(rows.data());
    }
}

} // namespace

std::vector<bench::Metric> bench::requestListMetrics() { return {{"request_list", 3.0, measured, baseline, nullptr}}; }
