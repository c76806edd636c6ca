#include "belvakit/Request/requestlist/request_list_view_controller.hpp"

#include "belvakit/Request/queue/request_provider.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/Request/requestlist/request_list_async_actions.hpp"
#include "belvakit/Request/requestlist/show_request_list.hpp"
#include "belvakit/deeplinks/usage_telemetry.hpp"
#include "belvakit/entry/Coordinator/dismiss_util.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/request_container_controller.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/resources/image_resources.hpp"
#include "belvakit/toolkit/progress_state_machine.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "dastrel/dispatcher_notifications.hpp"
#include "dastrel/settings.hpp"
#include "platform/main_queue.hpp"
#include "platform/url.hpp"
#include "uikit/animation.hpp"
#include "uikit/application.hpp"
#include "uikit/navigation_controller.hpp"

#include <algorithm>
#include <cmath>

namespace belvakit {

namespace {

constexpr double emptyImageSize = 72;
constexpr double slideDuration = 0.25;

// A view whose subviews its owner places, at each of its layouts.
class LaidOutView final : public uikit::View {
public:
    std::function<void(const uikit::Rect&)> layout;
    void layoutSubviews() override {
        uikit::View::layoutSubviews();
        if (layout) layout(bounds());
    }
};

void dispatchFetchCached(const std::shared_ptr<Cache>& cache) {
    Actions::FetchCachedRequests cached;
    cached.cache = cache;
    sharedStore()->dispatch(cached);
}

} // namespace

std::shared_ptr<RequestListViewController> RequestListViewController::make(const mirrowset::ConfigurationList& configurations) {
    const auto core = corvane::Corvane::instance();
    std::shared_ptr<Cache> tickets =
        core ? ConcreteCache::make(&core->storeModule(), ConcreteCache::ticketsDirectory, true) : nullptr;
    return std::make_shared<RequestListViewController>(mirrowset::Configurations(configurations), std::move(tickets));
}

RequestListViewController::RequestListViewController(std::optional<mirrowset::Configurations> configurations,
                                                     std::shared_ptr<Cache> ticketsCache)
    : cache(std::move(ticketsCache)), configs(std::move(configurations)) {
    // Title and bar button exist before the view: a container adopts them when it takes the screen in.
    setTitle(localized(LocalizedKey::requestsRequestListTitle));
    auto compose = std::make_shared<uikit::BarButtonItem>();
    compose->image = resourceImage("iconCompose");
    compose->accessibilityIdentifier = "CRVcomposeButton";
    compose->accessibilityLabel = localized(LocalizedKey::requestsCreateRequestTitle);
    compose->action = [this, alive = std::weak_ptr<int>(lifetime_)] {
        if (alive.lock()) presentCreateRequest();
    };
    navigationItem().rightBarButtonItem = std::move(compose);
}

RequestListViewController::~RequestListViewController() = default;

std::shared_ptr<RequestListViewController> RequestListViewController::self() {
    return std::static_pointer_cast<RequestListViewController>(shared_from_this());
}

void RequestListViewController::viewDidLoad() {
    CRVUIViewController::viewDidLoad();
    buildViews();

    const std::weak_ptr<RequestListViewController> weak = self();
    sharedStore()
        ->addListener<RequestListState>(std::nullopt, nullptr,
                                        [weak](const RequestListState& slice) {
                                            // A copy: what the screen does may change the slice under it.
                                            if (auto screen = weak.lock()) screen->render(slice);
                                        })
        .linkLifeCycleTo(*this);
    unauthorizedObserver_ = platform::NotificationCenter::defaultCenter().addObserver(
        dastrel::DispatcherNotifications::UnauthorizedNotificationName, nullptr, [weak](const platform::Notification&) {
            auto leave = [weak] {
                auto screen = weak.lock();
                if (!screen) return;
                corvane::CoreLogger::warn("401 received, clearing storage and dismissing Corvane UI");
                screen->dismissScreen();
            };
            // The dispatcher may post from its own thread.
            if (platform::MainQueue::shared().isMainThread())
                leave();
            else
                platform::MainQueue::shared().async(leave);
        });
    // The rows the shared slice holds from an earlier visit stand until this visit's come.
    if (const auto* held = sharedStore()->state().valueOfType<RequestListState>(); held && !held->requests.empty())
        giveToHandler(*held);
    load(true);
}

void RequestListViewController::buildViews() {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    const std::weak_ptr<RequestListViewController> weak = self();
    view()->setBackgroundColor(theme->primaryBackgroundColor);

    auto list = uikit::make<LaidOutView>();
    list->setFrame(contentView()->bounds());
    list->setAutoresizingMask(uikit::Autoresizing::flexibleWidth | uikit::Autoresizing::flexibleHeight);
    list->layout = [weak](const uikit::Rect& bounds) {
        if (auto screen = weak.lock()) screen->layoutList(bounds);
    };
    listView_ = list;
    contentView()->addSubview(listView_);

    requestListTableView = uikit::make<uikit::TableView>();
    requestListTableView->setAccessibilityIdentifier("CRVrequestListTable");
    requestListTableView->setBackgroundColor(theme->primaryBackgroundColor);
    requestListTableView->separatorColor = theme->separatorColor;
    tableViewHandler = std::make_shared<RequestListTableViewHandler>(requestListTableView);
    tableViewHandler->delegate = weak;
    requestListTableView->setDataSource(tableViewHandler);
    requestListTableView->setDelegate(tableViewHandler);

    refreshController = uikit::make<RefreshControl>();
    refreshController->setAccessibilityIdentifier("CRVrequestListRefresh");
    refreshController->addTarget(uikit::ControlEvent::valueChanged, [weak] {
        if (auto screen = weak.lock()) screen->pullToRefresh();
    });

    auto empty = uikit::make<LaidOutView>();
    empty->layout = [weak](const uikit::Rect& bounds) {
        if (auto screen = weak.lock()) screen->layoutEmptyView(bounds);
    };
    inboxView = empty;
    inboxView->setAccessibilityIdentifier("CRVrequestListEmptyView");
    inboxView->setBackgroundColor(theme->primaryBackgroundColor);
    inboxView->setHidden(true);
    inboxImageView = uikit::make<uikit::ImageView>(resourceImage("Inbox"));
    inboxImageView->contentMode = uikit::ContentMode::scaleAspectFit;
    inboxImageView->setAccessibilityIdentifier("CRVinboxImage");
    conversationsLabel = uikit::make<uikit::Label>();
    conversationsLabel->setNumberOfLines(0);
    conversationsLabel->setTextAlignment(uikit::TextAlignment::center);
    conversationsLabel->setFont(theme->mainFont);
    conversationsLabel->setTextColor(theme->secondaryTextColor);
    conversationsLabel->setText(localized(LocalizedKey::requestsRequestListEmptySubtitle));
    conversationsLabel->setAccessibilityIdentifier("CRVrequestListEmptySubtitle");
    createATicketButton = CRVUIUtil::buildButtonWithFrame({}, localized(LocalizedKey::requestsRequestListEmptyButton));
    createATicketButton->setAccessibilityIdentifier("CRVcreateATicketButton");
    createATicketButton->addTarget(uikit::ControlEvent::touchUpInside, [weak] {
        if (auto screen = weak.lock()) screen->presentCreateRequest();
    });
    for (const auto& part : std::initializer_list<std::shared_ptr<uikit::View>>{inboxImageView, conversationsLabel,
                                                                                 createATicketButton})
        inboxView->addSubview(part);

    loadingSpinner = uikit::make<uikit::ActivityIndicatorView>(2);
    loadingSpinner->setAccessibilityIdentifier("CRVrequestListSpinner");
    corvaneLogoButton = uikit::make<CorvaneLogoView>();
    corvaneLogoButton->setHidden(true);
    toastWrapper = uikit::make<CRVToastViewWrapper>();

    for (const auto& part : std::initializer_list<std::shared_ptr<uikit::View>>{
             requestListTableView, refreshController, inboxView, loadingSpinner, corvaneLogoButton, toastWrapper})
        listView_->addSubview(part);
    progressBar = ProgressBar::make();
    progressBar->setContainerView(listView_);
}

void RequestListViewController::layoutList(const uikit::Rect& bounds) {
    const double width = bounds.width();
    // Beside a sideways phone's notch and corners the rows keep clear; the bars span the width.
    const uikit::EdgeInsets safe = safeAreaInsets();
    const double left = safe.left;
    const double inner = std::max(0.0, width - safe.left - safe.right);
    const double top = toastWrapper->contentHeight;
    toastWrapper->setFrame({0, 0, width, top});
    double bottom = bounds.height();
    if (!corvaneLogoButton->isHidden()) {
        const uikit::Size logo = corvaneLogoButton->sizeThatFits({inner, 0});
        corvaneLogoButton->setFrame(
            {left + std::floor((inner - logo.width) / 2), bottom - logo.height - 8, logo.width, logo.height});
        bottom -= logo.height + 16;
    }
    const double pulled = refreshController->isRefreshing() ? RefreshControl::height : 0;
    refreshController->setFrame({left, top, inner, RefreshControl::height});
    const uikit::Rect area{left, top + pulled, inner, std::max(0.0, bottom - top - pulled)};
    requestListTableView->setFrame(area);
    inboxView->setFrame({left, top, inner, std::max(0.0, bottom - top)});
    const uikit::Size spinner = loadingSpinner->intrinsicContentSize();
    loadingSpinner->setFrame({std::floor(area.midX() - spinner.width / 2), std::floor(area.midY() - spinner.height / 2),
                              spinner.width, spinner.height});
    progressBar->setFrame({0, 0, width, ProgressBar::defaultHeight});
}

void RequestListViewController::layoutEmptyView(const uikit::Rect& bounds) {
    const double width = bounds.width();
    const double textWidth = std::min(width - 64, 320.0);
    const uikit::Size text = conversationsLabel->sizeThatFits({textWidth, 0});
    createATicketButton->sizeToFit();
    const uikit::Size button{std::ceil(createATicketButton->frame().width()), 40};
    const double total = emptyImageSize + 16 + std::ceil(text.height) + 24 + button.height;
    // A little above the middle, where the eye rests.
    double y = std::max(16.0, std::floor((bounds.height() - total) / 2 - 20));
    inboxImageView->setFrame({std::floor((width - emptyImageSize) / 2), y, emptyImageSize, emptyImageSize});
    y += emptyImageSize + 16;
    conversationsLabel->setFrame({std::floor((width - textWidth) / 2), y, textWidth, std::ceil(text.height)});
    y += std::ceil(text.height) + 24;
    createATicketButton->setFrame({std::floor((width - button.width) / 2), y, button.width, button.height});
}

void RequestListViewController::viewWillAppear(bool animated) {
    CRVUIViewController::viewWillAppear(animated);
    if (auto core = corvane::Corvane::instance()) core->actionHandlerRegistry().add(refreshHandler_);
    load(false);
}

void RequestListViewController::viewWillDisappear(bool animated) {
    CRVUIViewController::viewWillDisappear(animated);
    if (auto core = corvane::Corvane::instance()) core->actionHandlerRegistry().remove(*refreshHandler_);
}

void RequestListViewController::load(bool viewed) {
    // The spinner and the pull show a load; the strip belongs to sends, so a load leaves it alone.
    loading_ = true;
    updateEmptyView();
    const auto core = corvane::Corvane::instance();
    const auto settingsProvider = core ? core->providerModule().provider<dastrel::SettingsProvider>() : nullptr;
    if (settingsProvider) {
        settingsProvider->getSettings([](std::optional<dastrel::SupportSettings> settings) {
            if (!settings) {
                // Without the settings the network fetch never starts: the load ends as a failure.
                sharedStore()->dispatch(Actions::RequestsFetchedFailed{});
                return;
            }
            Actions::FetchRequestListSettingsSuccess success;
            success.referrerUrl = settings->referrerUrl;
            success.conversationsEnabled = settings->conversationsEnabled;
            success.showReferrerLogo = settings->showReferrerLogo;
            success.showClosedRequests = settings->showClosedRequests;
            sharedStore()->dispatch(success);
        });
    } else {
        sharedStore()->dispatch(Actions::RequestsFetchedFailed{});
    }
    if (viewed) sendRequestListViewed();
    // The kept rows are asked for whatever the settings say; rows that come before the settings'
    // answer stay drawn, as the answer's Loading redraws nothing.
    dispatchFetchCached(cache);
}

void RequestListViewController::giveToHandler(const RequestListState& newState) {
    tableViewHandler->tableData = newState;
    requestListTableView->reloadData();
}

void RequestListViewController::render(RequestListState newState) {
    state = newState;
    switch (newState.stateType) {
    case RequestListStateType::LoadedFromNetwork:
        giveToHandler(newState);
        finishLoading();
        updateEmptyView();
        updateLogo();
        break;
    case RequestListStateType::Refreshing:
    case RequestListStateType::Loading:
        break;
    case RequestListStateType::LoadedFromCache:
        giveToHandler(newState);
        updateEmptyView();
        break;
    case RequestListStateType::NotLoaded:
        giveToHandler(newState);
        updateEmptyView();
        break;
    case RequestListStateType::ErroredFromNetwork:
        giveToHandler(newState);
        finishLoading();
        updateEmptyView();
        showError();
        // Last: clearing the list reaches this screen again, nested.
        if (newState.error == NetworkError::auth) handleAuthError();
        break;
    case RequestListStateType::ConversationsDisabledError:
        setComposeEnabled(false);
        finishLoading();
        corvane::CoreLogger::error("Conversations disabled, request list screen not available. Dismissing screen.");
        dismissScreen();
        break;
    }
}

void RequestListViewController::finishLoading() {
    loading_ = false;
    progressBar->stateMachine()->queueCompleted();
    if (refreshController->isRefreshing()) {
        refreshController->endRefreshing();
        uikit::Animation::animate(slideDuration, [this] { listView_->layoutIfNeeded(); });
    }
}

void RequestListViewController::updateEmptyView() {
    const bool empty = tableViewHandler->tableData.requests.empty();
    inboxView->setHidden(!empty || loading_);
    requestListTableView->setHidden(empty && !loading_);
    inboxView->setNeedsLayout();
    if (loading_ && empty && !refreshController->isRefreshing())
        loadingSpinner->startAnimating();
    else
        loadingSpinner->stopAnimating();
}

void RequestListViewController::updateLogo() {
    corvaneLogoButton->referrerUrl = state.referrerUrl;
    corvaneLogoButton->setHidden(!state.showReferrerLogo);
    listView_->setNeedsLayout();
}

void RequestListViewController::showError() {
    // Below the connectivity toast when that shows: the content view starts under it.
    toastWrapper->showErrorInViewController(self(), localized(LocalizedKey::requestsRequestListError));
}

void RequestListViewController::handleAuthError() {
    corvane::CoreLogger::error("401 Authentication error, dismissing Request List");
    sharedStore()->dispatch(Actions::ClearRequestList{});
    platform::MainQueue::shared().asyncAfter(platform::seconds(2.0),
                                             [weak = std::weak_ptr<RequestListViewController>(self())] {
                                                 if (auto screen = weak.lock()) screen->dismissScreen();
                                             });
}

void RequestListViewController::pullToRefresh() {
    auto provider = makeRequestProvider();
    refreshController->beginRefreshing();
    updateEmptyView();
    uikit::Animation::animate(slideDuration, [this] { listView_->layoutIfNeeded(); });
    if (!cache) {
        // No fetch can start; it ends at once, as a failure, so the spinner does not turn for ever.
        sharedStore()->dispatch(Actions::RequestsFetchedFailed{});
        return;
    }
    Actions::FetchRequests fetch;
    fetch.isRefreshing = true;
    fetch.service = RequestListService::shared();
    fetch.provider = std::move(provider);
    fetch.cache = cache;
    sharedStore()->dispatch(fetch);
}

void RequestListViewController::presentCreateRequest() {
    auto screen = makeRequestScreen(std::nullopt);
    if (!screen) return;
    if (auto container = std::dynamic_pointer_cast<RequestContainerController>(screen)) container->childDelegate = childDelegate;
    presentViewController(std::make_shared<uikit::NavigationController>(screen), true);
}

void RequestListViewController::openCorvaneLinkInBrowser() {
    if (!state.referrerUrl) return;
    if (const auto url = platform::URL::parse(*state.referrerUrl)) uikit::Application::openURL(*url);
}

void RequestListViewController::didSelectRequest(const RequestListCellData& request) {
    if (auto screen = makeRequestScreen(request.requestId)) {
        if (auto* navigation = navigationController())
            navigation->pushViewController(screen, true);
        else
            presentViewController(std::make_shared<uikit::NavigationController>(screen), true);
    }
    // The device remembers the read comments too, or the next load brings the dot back.
    makeRequestProvider()->markRequestAsRead(request.requestId, request.commentCount);
    Actions::MarkRequestAsRead read;
    read.requestData = request;
    sharedStore()->dispatch(read);
}

uikit::ViewController::Ptr RequestListViewController::makeRequestScreen(const std::optional<std::string>& requestId) {
    const auto core = corvane::Corvane::instance();
    return RequestContainerController::make(requestId, configs ? configs->list() : mirrowset::ConfigurationList{},
                                            core ? std::optional(core->storeModule()) : std::nullopt, cache);
}

void RequestListViewController::setComposeEnabled(bool enabled) {
    if (const auto& compose = navigationItem().rightBarButtonItem) compose->enabled = enabled;
    if (auto* navigation = navigationController()) navigation->refreshBar();
}

void RequestListViewController::dismissScreen() { DismissUtil::popOrDismiss(*this, true); }

bool showRequestList(const std::any& navigationController, const mirrowset::Configurations& configurations) {
    uikit::NavigationController* navigation = nullptr;
    if (const auto* shared = std::any_cast<std::shared_ptr<uikit::NavigationController>>(&navigationController))
        navigation = shared->get();
    else if (const auto* controller = std::any_cast<std::shared_ptr<uikit::ViewController>>(&navigationController))
        navigation = dynamic_cast<uikit::NavigationController*>(controller->get());
    else if (const auto* plain = std::any_cast<uikit::NavigationController*>(&navigationController))
        navigation = *plain;
    if (!navigation) return false;
    navigation->showViewController(RequestListViewController::make(configurations.list()));
    return true;
}

} // namespace belvakit
