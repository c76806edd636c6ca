#include "shots_conversation.hpp"

#include "belvakit/Request/conversation/request_controller.hpp"
#include "belvakit/attachments/input_attachment.hpp"
#include "dastrel/support.hpp"
#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <cmath>
#include <filesystem>

namespace belvademo {

namespace {

using namespace belvakit;

// A picture to send or to serve: a sky over a hill with a parcel on it.
platform::ImagePtr landscapePicture(int width, int height) {
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(width, height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            auto* pixel = &image->rgba[static_cast<std::size_t>((y * width + x) * 4)];
            const double hill = height * 0.65 + std::sin(x * 6.28 / width) * height * 0.08;
            const bool box = x > width * 0.4 && x < width * 0.62 && y > height * 0.45 && y < hill + 4;
            const bool ground = y > hill;
            pixel[0] = static_cast<std::uint8_t>(box ? 196 : ground ? 76 : 120 + y * 80 / height);
            pixel[1] = static_cast<std::uint8_t>(box ? 148 : ground ? 153 : 170 + y * 60 / height);
            pixel[2] = static_cast<std::uint8_t>(box ? 92 : ground ? 80 : 235);
            pixel[3] = 255;
        }
    return image;
}

// One embedded help desk for the conversation shots, with an agent.
struct DemoDesk {
    std::shared_ptr<sandbox::HelpDesk> desk;
    std::int64_t agent = 0;

    DemoDesk() {
        const auto directory = std::filesystem::temp_directory_path() / "belva-demo-conversation";
        std::filesystem::remove_all(directory);
        desk = sandbox::HelpDesk::make({.storageDirectory = directory});
        agent = desk->tickets()->addAgent("Grace Hopper").userId;
        const auto picture = platform::encodePNG(*landscapePicture(240, 160));
        desk->attachments()->serve("https://belva.example.com/attachments/shelf.png", picture.value_or(""));
        desk->attachments()->serve("https://belva.example.com/attachments/thumb_shelf.png", picture.value_or(""));
        desk->attachments()->serve("https://belva.example.com/attachments/return-label.pdf", std::string(48213, '%'));
    }

    // The core on this desk for the screen about to be made, as another shot may have made its own.
    void takeOver() const {
        auto core = desk->initializeCorvane(corvane::Identity::createAnonymous("Ann Smith", "ann@example.com"));
        dastrel::Support::initialize(core);
        desk->tickets()->setOffline(false);
        desk->tickets()->setLatency(platform::Duration{});
    }

    // A ticket with some history: the user's report, the agent's answer with a link, a photo of
    // the agent's and a file.
    std::string ticketWithHistory() const {
        takeOver();
        auto& tickets = *desk->tickets();
        tickets.createRequest({std::nullopt, "Hi! My parcel with order 4711 arrived, but the box was crushed.", {}, {},
                               std::nullopt, {}},
                              [](auto, auto) {});
        const auto id = tickets.requests().back().requestId;
        tickets.addAgentComment(id, agent, "Sorry about that! Please see our guide for damaged parcels.",
                                std::string("<p>Sorry about that! Please see our <a "
                                            "href=\"https://belva.example.com/hc/en-us/articles/360-damaged-parcels\">"
                                            "guide for damaged parcels</a>.</p>"));
        dastrel::CRVAttachment shelf{7001, "shelf.png", "https://belva.example.com/attachments/shelf.png",
                                     "image/png", 20480, 240, 160, "https://belva.example.com/attachments/thumb_shelf.png",
                                     240, 160};
        tickets.addAgentComment(id, agent, "This is how it left our shelf.", std::nullopt, {shelf});
        dastrel::CRVAttachment label{7002, "return-label.pdf", "https://belva.example.com/attachments/return-label.pdf",
                                     "application/pdf", 48213};
        tickets.addAgentComment(id, agent, "And here is a return label for the box.", std::nullopt, {label});
        return id;
    }
};

const DemoDesk& demoDesk() {
    static const DemoDesk shared;
    return shared;
}

std::shared_ptr<RequestController> conversation(std::optional<std::string> requestId) {
    demoDesk().takeOver();
    RequestUiConfiguration configuration;
    configuration.subject = "Damaged parcel";
    return RequestController::make(configuration, std::move(requestId), nullptr, nullptr, true, 10 * 1024 * 1024);
}

// The user's photo, sent through the screen once it shows.
void sendPhotoOnAppear(const std::shared_ptr<RequestController>& screen, const std::string& text) {
    std::weak_ptr<RequestController> weak = screen;
    screen->viewDidAppearBlock = [weak, text] {
        auto shown = weak.lock();
        if (!shown) return;
        auto photo = std::make_shared<InputImageViewModel>(landscapePicture(320, 240), "demo-photo", std::nullopt,
                                                           std::nullopt, FileType::jpeg, "IMG_0412.jpeg");
        shown->sendButtonTapped(text, {photo});
    };
}

uikit::ViewController::Ptr inNavigation(const uikit::ViewController::Ptr& screen) {
    return std::make_shared<uikit::NavigationController>(screen);
}

// Turns its window to landscape as it shows, holding the screen as a child.
class LandscapeHolder final : public uikit::ViewController {
public:
    explicit LandscapeHolder(uikit::ViewController::Ptr child) : child_(std::move(child)) {}
    void viewDidLoad() override {
        addChildViewController(child_);
        view()->addSubview(child_->view());
        child_->didMoveToParentViewController(this);
    }
    void viewDidAppear(bool) override {
        if (auto* window = view()->window(); window && window->environment().size.width < window->environment().size.height)
            window->setEnvironment(uikit::Environment::phoneLandscape());
    }
    void viewWillLayoutSubviews() override { child_->view()->setFrame(view()->bounds()); }

private:
    uikit::ViewController::Ptr child_;
};

uikit::ViewController::Ptr fullConversation() {
    auto screen = conversation(demoDesk().ticketWithHistory());
    sendPhotoOnAppear(screen, "Here is a photo of the box.");
    return inNavigation(screen);
}

} // namespace

std::vector<GalleryShot> conversationShots() {
    std::vector<GalleryShot> shots;
    shots.push_back({"conversation", "A conversation", 3.0, fullConversation});
    shots.push_back({"conversation-failed", "A message that failed, with retry", 3.0, [] {
                         auto screen = conversation(demoDesk().ticketWithHistory());
                         std::weak_ptr<RequestController> weak = screen;
                         // The history loads first; then the network goes and the message fails.
                         screen->viewDidAppearBlock = [weak] {
                             platform::MainQueue::shared().asyncAfter(platform::seconds(1), [weak] {
                                 demoDesk().desk->tickets()->setOffline(true);
                                 if (auto shown = weak.lock()) shown->sendButtonTapped("Are you there?", {});
                             });
                         };
                         return inNavigation(screen);
                     }});
    shots.push_back({"conversation-sending", "A message on its way", 2.2, [] {
                         auto screen = conversation(demoDesk().ticketWithHistory());
                         std::weak_ptr<RequestController> weak = screen;
                         screen->viewDidAppearBlock = [weak] {
                             platform::MainQueue::shared().asyncAfter(platform::milliseconds(500), [weak] {
                                 // A slow network: the send stays under way.
                                 demoDesk().desk->tickets()->setLatency(platform::seconds(2));
                                 if (auto shown = weak.lock()) shown->sendButtonTapped("Is a refund possible instead?", {});
                             });
                         };
                         return inNavigation(screen);
                     }});
    shots.push_back({"conversation-new", "A new ticket", 1.0, [] { return inNavigation(conversation(std::nullopt)); }});
    shots.push_back({"conversation-landscape", "A conversation in landscape", 3.0,
                     [] { return std::make_shared<LandscapeHolder>(fullConversation()); }});
    return shots;
}

} // namespace belvademo
