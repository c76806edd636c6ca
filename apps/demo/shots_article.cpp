#include "shots_article.hpp"

#include "belvakit/helpcenter/article_view_controller.hpp"
#include "belvakit/helpcenter/help_center_ui.hpp"
#include "corvane/corvane.hpp"
#include "platform/base64.hpp"
#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"
#include "sandbox/help_desk.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/probe.hpp"
#include "uikit/scroll_view.hpp"
#include "uikit/window.hpp"

#include <cmath>
#include <filesystem>
#include <functional>

namespace belvademo {

namespace {

using namespace belvakit;

// Holds a navigation stack as its one child, with the help desk the screens talk to, and does
// something once on view: turns the window, taps a button.
class ShotHost final : public uikit::ViewController {
public:
    ShotHost(std::shared_ptr<sandbox::HelpDesk> desk, uikit::ViewController::Ptr screen,
             std::function<void(ShotHost&)> onAppear)
        : desk_(std::move(desk)), navigation_(std::make_shared<uikit::NavigationController>(std::move(screen))),
          onAppear_(std::move(onAppear)) {}

    void viewDidLoad() override {
        addChildViewController(navigation_);
        navigation_->view()->setFrame(view()->bounds());
        navigation_->view()->setAutoresizingMask(uikit::Autoresizing::flexibleWidth | uikit::Autoresizing::flexibleHeight);
        view()->addSubview(navigation_->view());
    }
    void viewDidAppear(bool animated) override {
        uikit::ViewController::viewDidAppear(animated);
        if (onAppear_) std::exchange(onAppear_, nullptr)(*this);
    }

    const std::shared_ptr<sandbox::HelpDesk>& desk() const { return desk_; }

private:
    std::shared_ptr<sandbox::HelpDesk> desk_;
    std::shared_ptr<uikit::NavigationController> navigation_;
    std::function<void(ShotHost&)> onAppear_;
};

// A help desk of the shot's own, with fresh storage, made the core's.
std::shared_ptr<sandbox::HelpDesk> shotDesk(const std::string& name) {
    const auto storage = std::filesystem::temp_directory_path() / ("belva-demo-article-" + name);
    std::error_code ignored;
    std::filesystem::remove_all(storage, ignored);
    auto desk = sandbox::HelpDesk::make({.storageDirectory = storage});
    desk->initializeCorvane(corvane::Identity::createAnonymous("Ada", "ada@example.com"));
    return desk;
}

// A map of a week as a PNG in a data URL, so that the page carries its own picture.
std::string weekPicture() {
    constexpr int width = 280, height = 120;
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(width, height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            auto* pixel = &image->rgba[static_cast<std::size_t>((y * width + x) * 4)];
            const int column = x / 40;
            const bool header = y < 24;
            const bool grid = x % 40 == 0 || y == 24 || y == height - 1 || x == width - 1;
            const bool busy = !header && ((column * 37 + y / 24 * 11) % 5 == 0) && x % 40 > 4 && x % 40 < 36 &&
                              y % 24 > 4 && y % 24 < 20;
            std::uint8_t r = 255, g = 255, b = 255;
            if (header) r = 31, g = 115, b = 183;
            if (busy) r = 255, g = 196, b = 120;
            if (grid) r = g = b = 200;
            pixel[0] = r;
            pixel[1] = g;
            pixel[2] = b;
            pixel[3] = 255;
        }
    const auto png = platform::encodePNG(*image);
    return png ? "data:image/png;base64," + platform::base64Encode(*png) : std::string();
}

// An article written for the gallery: headings, both kinds of list, a picture and links.
dastrel::CRVHelpCenterArticle richArticle() {
    dastrel::CRVHelpCenterArticle article;
    // Its attachments are those of an article of the help desk.
    article.identifier = 360004;
    article.title = "Planning your week";
    article.author_name = "Tomasz Lindqvist";
    article.created_at = 1700000000;
    article.locale = "en-us";
    article.body =
        "<p>A week plan keeps your steps where you can see them. Here is how to make one.</p>"
        "<p><img src=\"" + weekPicture() + "\" alt=\"A week plan\" width=\"280\" height=\"120\"></p>"
        "<h2>Before you start</h2><ul><li>Make a plan for the week.</li><li>Give each step a due day.</li>"
        "<li>Share the plan with whoever helps.</li></ul>"
        "<h2>Three steps</h2><ol><li>Open <strong>Plans</strong> and tap <em>New</em>.</li>"
        "<li>Choose <em>Week</em> as the layout.</li><li>Drag steps onto their days.</li></ol>"
        "<h3>Related</h3><p>See <a href=\"https://belva.example.com/hc/en-us/articles/360006-adding-due-dates\">"
        "Adding due dates and reminders</a> or write to <a href=\"mailto:help@orbit-planner.example\">our team</a>.</p>";
    return article;
}

GalleryShot articleShot(std::string name, std::string title, double seconds,
                        std::function<uikit::ViewController::Ptr(sandbox::HelpDesk&)> screen,
                        std::function<void(ShotHost&)> onAppear = nullptr) {
    return {name, std::move(title), seconds, [name, screen = std::move(screen), onAppear = std::move(onAppear)] {
                auto desk = shotDesk(name);
                auto shown = screen(*desk);
                return std::make_shared<ShotHost>(desk, shown, onAppear);
            }};
}

uikit::ViewController::Ptr byId(const std::string& id) { return CRVHelpCenterUi::buildHelpCenterArticleWithArticleId(id); }

} // namespace

std::vector<GalleryShot> articleShots() {
    std::vector<GalleryShot> shots;
    shots.push_back(articleShot("article-attachments", "Article: attachments and votes", 1.0,
                                [](sandbox::HelpDesk&) { return byId("360001"); }));
    shots.push_back(articleShot("article-rich", "Article: headings, lists and a picture", 1.0,
                                [](sandbox::HelpDesk&) { return CRVHelpCenterUi::buildHelpCenterArticle(richArticle()); }));
    shots.push_back(articleShot("article-rtl", "Article: right to left", 1.0, [](sandbox::HelpDesk&) { return byId("360038"); }));
    shots.push_back(articleShot("article-voted", "Article: voted up", 1.5, [](sandbox::HelpDesk&) { return byId("360013"); },
                                [](ShotHost& host) {
                                    // Once the page is in, the reader scrolls down and finds it helpful.
                                    const std::weak_ptr<uikit::ViewController> weak = host.shared_from_this();
                                    platform::MainQueue::shared().asyncAfter(platform::milliseconds(500), [weak] {
                                        const auto strong = weak.lock();
                                        if (!strong) return;
                                        // Laid out as a frame would be, so that the page's height is known.
                                        if (auto* window = strong->view()->window())
                                            for (int pass = 0; pass < 3; ++pass) window->layoutTree();
                                        auto* scroll = uikit::findByIdentifier<uikit::ScrollView>(*strong->view(), "CRVarticleViewScrollView");
                                        if (scroll) scroll->setContentOffset(scroll->clampedOffset({0, scroll->contentSize().height}));
                                        if (auto* button = uikit::findByIdentifier(*strong->view(), "CRVarticleUpVoteButton"))
                                            uikit::tap(*button);
                                    });
                                }));
    shots.push_back(articleShot("article-loading", "Article: loading", 0.5, [](sandbox::HelpDesk& desk) {
        desk.helpCenter()->setLatency(platform::seconds(60));
        return byId("360001");
    }));
    shots.push_back(articleShot("article-attachments-failed", "Article: attachments could not be loaded", 1.5,
                                [](sandbox::HelpDesk& desk) {
                                    auto article = desk.helpCenter()->content().articles.front().record;
                                    // Both fetches of the attachments fail.
                                    desk.helpCenter()->failNext(2);
                                    return CRVHelpCenterUi::buildHelpCenterArticle(article);
                                }));
    shots.push_back(articleShot("article-attachments-landscape", "Article: attachments and votes, landscape", 1.5,
                                [](sandbox::HelpDesk&) { return byId("360001"); },
                                [](ShotHost& host) {
                                    if (auto* window = host.view()->window()) window->setEnvironment(uikit::Environment::phoneLandscape());
                                }));
    return shots;
}

} // namespace belvademo
