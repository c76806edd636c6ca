#include "gallery.hpp"

#include "demo_desk.hpp"

#include "shots_article.hpp"
#include "shots_container.hpp"
#include "shots_conversation.hpp"
#include "shots_create_request.hpp"
#include "shots_help_center.hpp"
#include "shots_request_list.hpp"
#include "shots_search.hpp"

#include "belvakit/toolkit/avatar_title.hpp"
#include "belvakit/toolkit/progress_bar.hpp"
#include "belvakit/toolkit/progress_state_machine.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/toast.hpp"
#include "belvakit/toolkit/toast_style.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "belvakit/toolkit/ui_view_controller.hpp"
#include "corvane/reachability.hpp"
#include "platform/main_queue.hpp"
#include "uikit/label.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/table_view.hpp"

#include <cmath>

namespace belvademo {

namespace {

using namespace belvakit;

// A screen that runs something once it is on view.
class StageScreen : public CRVUIViewController {
public:
    StageScreen(std::string title, std::function<void(StageScreen&)> onAppear) : onAppear_(std::move(onAppear)) {
        setTitle(std::move(title));
    }
    void viewDidLoad() override {
        CRVUIViewController::viewDidLoad();
        view()->setBackgroundColor(CRVLegacyTheme::currentAppliedTheme()->secondaryBackgroundColor);
        auto caption = uikit::make<uikit::Label>();
        caption->setNumberOfLines(0);
        caption->setTextColor(CRVLegacyTheme::currentAppliedTheme()->metaTextColor);
        caption->setFont(CRVLegacyTheme::currentAppliedTheme()->subtitleFont);
        caption->setTextAlignment(uikit::TextAlignment::center);
        caption->setAccessibilityIdentifier("GalleryCaption");
        caption_ = caption;
        contentView()->addSubview(caption);
    }
    void viewDidLayoutSubviews() override {
        const auto bounds = contentView()->bounds();
        caption_->setFrame({20, bounds.height() - 80, bounds.width() - 40, 60});
    }
    void viewDidAppear(bool animated) override {
        CRVUIViewController::viewDidAppear(animated);
        if (onAppear_) std::exchange(onAppear_, nullptr)(*this);
    }
    void setCaption(const std::string& text) { caption_->setText(text); }
    // What the screen keeps alive while it lives.
    std::vector<std::shared_ptr<void>> kept;
    std::shared_ptr<StageScreen> self() { return std::static_pointer_cast<StageScreen>(shared_from_this()); }

private:
    std::function<void(StageScreen&)> onAppear_;
    std::shared_ptr<uikit::Label> caption_;
};

uikit::ViewController::Ptr inNavigation(const uikit::ViewController::Ptr& screen) {
    return std::make_shared<uikit::NavigationController>(screen);
}

GalleryShot toastShot(CRVToastType type, bool withButton) {
    const std::string name = "toast-type-" + std::to_string(type) + (withButton ? "-button" : "");
    return {name, "Toast type " + std::to_string(type) + (withButton ? " with button" : ""), 1.0, [type, withButton] {
                auto screen = std::make_shared<StageScreen>("Toasts", [type, withButton](StageScreen& stage) {
                    // Types share one look until a host styles them: two are styled here to show how.
                    if (type == 1) {
                        CRVToastStyle::setValue(platform::Color::fromRGB(39, 174, 96), 1, CRVToastStyleKeys::background);
                        CRVToastStyle::setValue(platform::Color::fromRGB(30, 132, 73), 1, CRVToastStyleKeys::buttonBackground);
                    } else if (type == 2) {
                        CRVToastStyle::setValue(platform::Color::fromRGB(230, 126, 34), 2, CRVToastStyleKeys::background);
                        CRVToastStyle::setValue(platform::Color::fromRGB(186, 96, 20), 2, CRVToastStyleKeys::buttonBackground);
                    }
                    const std::string message = "We couldn't reach the help desk. Your message is kept.";
                    if (withButton)
                        CRVToast::showMessage(message, type, stage.self(), "Retry", [] {}, nullptr, true);
                    else
                        CRVToast::showMessage(message, type, stage.self(), 0.0, nullptr, true);
                    stage.setCaption("CRVToast, type " + std::to_string(type));
                });
                return inNavigation(screen);
            }};
}

GalleryShot progressShot(const std::string& name, const std::string& title, double seconds, bool completes) {
    return {name, title, seconds, [completes] {
                auto screen = std::make_shared<StageScreen>("Sending", [completes](StageScreen& stage) {
                    auto bar = ProgressBar::make({0, 0, stage.view()->bounds().width(), ProgressBar::defaultHeight});
                    bar->setFrame({0, stage.topViewOffset(), stage.view()->bounds().width(), 3});
                    bar->setContainerView(stage.view());
                    stage.view()->addSubview(bar);
                    bar->stateMachine()->begin(sharedProgressSteps());
                    if (completes)
                        platform::MainQueue::shared().asyncAfter(platform::seconds(3.5), [bar] {
                            bar->stateMachine()->queueCompleted();
                        });
                    stage.setCaption("ProgressBar while the send queue works");
                });
                return inNavigation(screen);
            }};
}


class ThemedRows final : public uikit::TableViewDataSource, public uikit::TableViewDelegate {
public:
    int numberOfRowsInSection(uikit::TableView&, int) override { return static_cast<int>(rows_.size()); }
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& path) override {
        auto cell = table.dequeueReusableCell("ThemedRow", path);
        const auto theme = CRVLegacyTheme::currentAppliedTheme();
        cell->textLabel()->setText(rows_[static_cast<std::size_t>(path.row)].first);
        cell->textLabel()->setFont(theme->mainFont);
        cell->textLabel()->setTextColor(theme->primaryTextColor);
        cell->detailTextLabel()->setText(rows_[static_cast<std::size_t>(path.row)].second);
        cell->detailTextLabel()->setFont(theme->metaTextFont);
        cell->detailTextLabel()->setTextColor(theme->secondaryTextColor);
        cell->setBackgroundColor(theme->primaryBackgroundColor);
        return cell;
    }
    std::optional<std::string> titleForHeader(uikit::TableView&, int) override { return "Recent tickets"; }

private:
    std::vector<std::pair<std::string, std::string>> rows_{
        {"The zip file won't open", "Open - 2 min ago"},      {"Late delivery of order 4711", "Pending - 1 h ago"},
        {"How do I change my e-mail?", "Solved - yesterday"}, {"Refund for a double charge", "Open - 2 days ago"},
        {"The app crashes on start", "Closed - 1 week ago"},   {"Password reset link expired", "Solved - 2 weeks ago"},
    };
};

class TableScreen final : public StageScreen {
public:
    TableScreen() : StageScreen("Themed table", nullptr) {}
    void viewDidLoad() override {
        StageScreen::viewDidLoad();
        table_ = uikit::make<uikit::TableView>();
        table_->registerCell("ThemedRow", [] {
            return std::make_shared<uikit::TableViewCell>(uikit::TableViewCellStyle::subtitle, "ThemedRow");
        });
        table_->setDataSource(rows_);
        table_->setDelegate(rows_);
        table_->separatorColor = CRVLegacyTheme::currentAppliedTheme()->separatorColor;
        table_->setAccessibilityIdentifier("GalleryTable");
        contentView()->addSubview(table_);
        setCaption("A table in the legacy theme's fonts and colours");
    }
    void viewDidLayoutSubviews() override {
        StageScreen::viewDidLayoutSubviews();
        const auto bounds = contentView()->bounds();
        table_->setFrame({0, 0, bounds.width(), bounds.height() - 90});
    }

private:
    std::shared_ptr<ThemedRows> rows_ = std::make_shared<ThemedRows>();
    std::shared_ptr<uikit::TableView> table_;
};

} // namespace

std::vector<GalleryShot> galleryShots() {
    std::vector<GalleryShot> shots;
    for (CRVToastType type = 0; type < 4; ++type)
        for (const bool button : {false, true}) shots.push_back(toastShot(type, button));
    shots.push_back({"toast-in-motion", "A toast sliding in", 0.15, [] {
                         auto screen = std::make_shared<StageScreen>("Toasts", [](StageScreen& stage) {
                             CRVToast::showMessage("Sliding in from under the bar", 3, stage.self(), 0.0, nullptr, true);
                             stage.setCaption("Half-way through the slide");
                         });
                         return inNavigation(screen);
                     }});
    shots.push_back(progressShot("progress-step-1", "Progress, first step", 0.5, false));
    shots.push_back(progressShot("progress-step-2", "Progress, second step", 2.0, false));
    shots.push_back(progressShot("progress-waiting", "Progress, waiting for the queue", 3.4, false));
    shots.push_back(progressShot("progress-finishing", "Progress, finishing", 4.2, true));
    shots.push_back({"connectivity-toast", "The connectivity toast", 1.0, [] {
                         auto screen = std::make_shared<StageScreen>("Offline", [](StageScreen& stage) {
                             stage.setCaption("Shown while the device is offline");
                         });
                         // The screen holds the outage for as long as it lives.
                         screen->kept.push_back(corvane::NetworkMonitor::shared().beginOutage());
                         return inNavigation(screen);
                     }});
    shots.push_back({"agent-title", "The agent title", 1.0, [] {
                         auto screen = std::make_shared<StageScreen>("Conversation", nullptr);
                         auto title = std::make_shared<AvatarTitle>(screen, "Conversation");
                         title->setAgents({{std::nullopt, avatarImage(48, 52, 152, 219), "1", "Ada Byron", 1},
                                           {std::nullopt, avatarImage(48, 230, 126, 34), "1", "Grace Hopper", 2},
                                           {std::nullopt, avatarImage(48, 39, 174, 96), "1", "Linus Pauling", 3}});
                         auto navigation = std::make_shared<uikit::NavigationController>(screen);
                         screen->view();
                         screen->kept.push_back(title);
                         screen->setCaption("Avatars and names of the agents on the ticket");
                         return navigation;
                     }});
    shots.push_back({"buttons", "Buttons", 1.0, [] {
                         auto screen = std::make_shared<StageScreen>("Buttons", [](StageScreen& stage) {
                             const auto width = stage.contentView()->bounds().width();
                             double y = 40;
                             for (const auto* text : {"Contact us", "Send feedback", "Leave a review"}) {
                                 auto button = CRVUIUtil::buildButtonWithFrame({0, y, 0, 0}, text);
                                 button->sizeToFit();
                                 button->setFrame({std::floor((width - button->frame().width()) / 2), y,
                                                   button->frame().width(), 40});
                                 stage.contentView()->addSubview(button);
                                 y += 64;
                             }
                             auto disabled = CRVUIUtil::buildButtonWithFrame({0, y, 0, 0}, "Disabled");
                             disabled->setEnabled(false);
                             disabled->sizeToFit();
                             disabled->setFrame({std::floor((width - disabled->frame().width()) / 2), y,
                                                 disabled->frame().width(), 40});
                             stage.contentView()->addSubview(disabled);
                             stage.setCaption("CRVUIUtil's bordered buttons");
                         });
                         return inNavigation(screen);
                     }});
    shots.push_back({"themed-table", "A themed table", 1.0, [] { return inNavigation(std::make_shared<TableScreen>()); }});
    for (auto&& more : {containerShots(), conversationShots(), createRequestShots(), requestListShots(), helpCenterShots(), articleShots(), searchShots()})
        shots.insert(shots.end(), more.begin(), more.end());
    return shots;
}

namespace {

class MenuRows final : public uikit::TableViewDataSource, public uikit::TableViewDelegate {
public:
    MenuRows(std::vector<GalleryShot> shots, uikit::ViewController* menu) : shots_(std::move(shots)), menu_(menu) {}
    int numberOfRowsInSection(uikit::TableView&, int) override { return static_cast<int>(shots_.size()); }
    std::shared_ptr<uikit::TableViewCell> cellForRowAt(uikit::TableView& table, const uikit::IndexPath& path) override {
        auto cell = table.dequeueReusableCell("Shot", path);
        cell->textLabel()->setText(shots_[static_cast<std::size_t>(path.row)].title);
        cell->setAccessibilityIdentifier(shots_[static_cast<std::size_t>(path.row)].name);
        return cell;
    }
    void didSelectRowAt(uikit::TableView&, const uikit::IndexPath& path) override {
        auto screen = shots_[static_cast<std::size_t>(path.row)].make();
        if (auto navigation = std::dynamic_pointer_cast<uikit::NavigationController>(screen)) {
            // Each shot comes in its own navigation; in the gallery it is pushed on the menu's.
            auto top = navigation->viewControllers().front();
            navigation->setViewControllers({}, false);
            menu_->navigationController()->pushViewController(top, true);
        } else {
            menu_->navigationController()->pushViewController(screen, true);
        }
    }

private:
    std::vector<GalleryShot> shots_;
    uikit::ViewController* menu_;
};

class MenuScreen final : public uikit::ViewController {
public:
    explicit MenuScreen(std::vector<GalleryShot> shots) : shots_(std::move(shots)) { setTitle("Gallery"); }
    void viewDidLoad() override {
        rows_ = std::make_shared<MenuRows>(shots_, this);
        table_ = uikit::make<uikit::TableView>(view()->bounds());
        table_->setAutoresizingMask(uikit::Autoresizing::flexibleWidth | uikit::Autoresizing::flexibleHeight);
        table_->registerCell("Shot", [] { return std::make_shared<uikit::TableViewCell>(uikit::TableViewCellStyle::defaultStyle, "Shot"); });
        table_->setDataSource(rows_);
        table_->setDelegate(rows_);
        view()->addSubview(table_);
    }
    void viewWillLayoutSubviews() override {
        table_->contentInset.top = safeAreaInsets().top;
        table_->setFrame(view()->bounds());
    }

private:
    std::vector<GalleryShot> shots_;
    std::shared_ptr<MenuRows> rows_;
    std::shared_ptr<uikit::TableView> table_;
};

} // namespace

uikit::ViewController::Ptr galleryMenu(const std::vector<GalleryShot>& shots) {
    return std::make_shared<uikit::NavigationController>(std::make_shared<MenuScreen>(shots));
}

} // namespace belvademo
