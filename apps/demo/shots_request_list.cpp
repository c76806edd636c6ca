#include "shots_request_list.hpp"

#include "demo_desk.hpp"

#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/requestlist/request_list_service.hpp"
#include "belvakit/Request/requestlist/request_list_view_controller.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/entry/support_ui.hpp"
#include "platform/clock.hpp"
#include "platform/main_queue.hpp"
#include "platform/scheduler.hpp"
#include "platform/uuid.hpp"
#include "sandbox/help_desk.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <filesystem>
#include <functional>
#include <utility>

namespace belvademo {

namespace {

using namespace belvakit;

// A help desk of its own for one picture, in a directory that goes with it.
class Desk {
public:
    Desk() : directory_(std::filesystem::temp_directory_path() / ("belva-demo-list-" + platform::uuidString())) {
        settleEarlierWork();
        helpDesk = sandbox::HelpDesk::make({.storageDirectory = directory_});
        SupportUI::initialize(helpDesk->initializeCorvane(corvane::Identity::createAnonymous("Demo User", "demo@example.com")));
    }
    ~Desk() {
        // An outage would otherwise outlast the picture.
        helpDesk->tickets()->setOffline(false);
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    sandbox::TicketDesk& tickets() const { return *helpDesk->tickets(); }

    // Lets what an earlier picture left running end first: its desk's late answers go through the
    // one shared store, and would otherwise land in this picture's list.
    static void settleEarlierWork() {
        auto& main = platform::MainQueue::shared();
        auto* manual = dynamic_cast<platform::ManualScheduler*>(&main.scheduler());
        int idle = 0;
        for (int step = 0; step < 3000 && idle < 5; ++step) {
            if (main.runPending() > 0) {
                idle = 0;
            } else if (manual && manual->pendingCount() > 0) {
                manual->advance(platform::milliseconds(10));
                idle = 0;
            } else {
                // Work on other threads (the caches) posts back within a few milliseconds.
                bool once = false;
                main.runUntil([&] { return std::exchange(once, true); }, platform::milliseconds(10));
                ++idle;
            }
        }
    }

    // Runs the main queue until `done`; the desk answers at once unless told otherwise.
    static void await(const std::function<bool()>& done) {
        platform::MainQueue::shared().runUntil(done, platform::seconds(5));
    }

    std::string createTicket(const std::string& description) {
        bool answered = false;
        tickets().createRequest({.requestDescription = description}, [&](auto, auto) { answered = true; });
        await([&] { return answered; });
        return tickets().requests().back().requestId;
    }

    // An agent whose picture the desk serves: a disc of the colour with a light figure.
    dastrel::CRVSupportUser agentWithPicture(const std::string& name, int red, int green, int blue) {
        const std::string url = "https://belva.example.com/avatars/" + platform::uuidString() + ".png";
        auto agent = tickets().addAgent(name, url);
        helpDesk->attachments()->serve(url, avatarPNG(red, green, blue));
        return agent;
    }

    // What a visit keeps for going offline: the desk's last list in the tickets cache.
    void keepTheListForOffline() {
        const auto cache = ConcreteCache::named(ConcreteCache::ticketsDirectory);
        bool kept = false;
        RequestListService::shared()->fetchRequests(cache, [&](auto, auto) {
            cache->run([&] { platform::MainQueue::shared().async([&] { kept = true; }); });
        });
        await([&] { return kept; });
    }

    std::shared_ptr<sandbox::HelpDesk> helpDesk;

private:
    std::filesystem::path directory_;
};

// A week of tickets: answered and unread with agents' pictures, one whose reply failed to send, one
// closed by an agent without a picture, and one the user just wrote.
void fillWithTickets(Desk& desk) {
    const double now = platform::now();
    auto clock = std::make_shared<platform::FixedWallClock>(now - 6 * 86400);
    const auto previous = platform::setWallClock(clock);
    const auto step = [&](double hours) { clock->advance(hours * 3600); };

    const auto grace = desk.agentWithPicture("Grace Hopper", 52, 152, 219);
    const auto linus = desk.agentWithPicture("Linus Pauling", 230, 126, 34);
    const auto sam = desk.tickets().addAgent("Sam Ortiz");

    const auto refund = desk.createTicket("Refund for a double charge on my card");
    step(5);
    desk.tickets().addAgentComment(refund, sam.userId, "The second charge is refunded. Closing this one, thanks!");
    desk.tickets().setStatus(refund, "closed");
    step(30);
    const auto zip = desk.createTicket("The zip file from the export won't open");
    step(2);
    desk.tickets().addAgentComment(zip, grace.userId, "Could you try the export again with the new version?");
    step(40);
    const auto login = desk.createTicket("I can't log in since the update");
    step(1);
    desk.tickets().addAgentComment(login, linus.userId, "We reset your session. Does it work now?");
    step(50);
    const auto order = desk.createTicket("Order 4711 arrived without the charger");
    step(3);
    desk.tickets().addAgentComment(order, grace.userId, "A charger is on its way, with our apologies.");
    desk.tickets().addAgentComment(order, linus.userId, "Tracking number: 0042 1337 9000.");
    // The user's answer on this one could not be sent.
    RequestsWithFailedMessagesIdStore{}.add(login);
    clock->set(now - 600);
    desk.createTicket("How do I change the e-mail of my account?");
    platform::setWallClock(previous);
}

// The list on its own navigation, keeping its desk for as long as it lives.
uikit::ViewController::Ptr listOn(std::shared_ptr<Desk> desk) {
    auto list = RequestListViewController::make({});
    list->setAssociatedObject("demo.desk", std::move(desk));
    return std::make_shared<uikit::NavigationController>(list);
}

GalleryShot rowsShot(const std::string& suffix, const std::string& title, const uikit::Environment& environment) {
    return {"request-list-rows" + suffix, title, 1.0, [environment] {
                // The runner makes a phone window; the wide and tablet pictures resize it.
                if (auto* window = uikit::Window::keyWindow()) window->setEnvironment(environment);
                auto desk = std::make_shared<Desk>();
                fillWithTickets(*desk);
                return listOn(std::move(desk));
            }};
}

} // namespace

std::vector<GalleryShot> requestListShots() {
    std::vector<GalleryShot> shots;
    shots.push_back({"request-list-loading", "Request list, loading", 0.2, [] {
                         auto desk = std::make_shared<Desk>();
                         fillWithTickets(*desk);
                         // Nothing was kept from before, and the desk answers after the picture: soon
                         // enough that no answer reaches a later one.
                         desk->tickets().setLatency(platform::milliseconds(400));
                         return listOn(std::move(desk));
                     }});
    shots.push_back({"request-list-empty", "Request list, no tickets yet", 1.0, [] {
                         auto desk = std::make_shared<Desk>();
                         desk->helpDesk->settings()->setReferrer(true, "https://belva.example.com");
                         return listOn(std::move(desk));
                     }});
    shots.push_back(rowsShot("", "Request list, tickets", uikit::Environment::phonePortrait()));
    shots.push_back({"request-list-failed", "Request list, the fetch failed", 1.0, [] {
                         auto desk = std::make_shared<Desk>();
                         desk->tickets().failNext(1);
                         return listOn(std::move(desk));
                     }});
    shots.push_back({"request-list-offline", "Request list, offline", 1.0, [] {
                         auto desk = std::make_shared<Desk>();
                         fillWithTickets(*desk);
                         desk->keepTheListForOffline();
                         desk->tickets().setOffline(true);
                         desk->helpDesk->settings()->setFailing(true);
                         return listOn(std::move(desk));
                     }});
    shots.push_back(rowsShot("-landscape", "Request list, tickets, phone landscape", uikit::Environment::phoneLandscape()));
    shots.push_back(rowsShot("-tablet", "Request list, tickets, tablet", uikit::Environment::tablet()));
    return shots;
}

} // namespace belvademo
