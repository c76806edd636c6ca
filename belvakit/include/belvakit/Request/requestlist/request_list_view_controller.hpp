#pragma once

#include "belvakit/Request/requestlist/refresh_control.hpp"
#include "belvakit/Request/requestlist/request_list_refresh_action_handler.hpp"
#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "belvakit/Request/requestlist/request_list_table_view_handler.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/entry/container_child_delegate.hpp"
#include "belvakit/toolkit/avatar_views.hpp"
#include "belvakit/toolkit/progress_bar.hpp"
#include "belvakit/toolkit/toast_view_wrapper.hpp"
#include "belvakit/toolkit/ui_view_controller.hpp"
#include "mirrowset/configurations.hpp"
#include "platform/notification_center.hpp"
#include "platform/object.hpp"
#include "uikit/button.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"
#include "uikit/table_view.hpp"

#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// The user's tickets, newest first, from the shared store's list slice: loads them as it comes on
// view, refreshes on a pull or an outside refresh action, opens a ticket on a tap, and offers a new
// one. Main thread.
class RequestListViewController : public CRVUIViewController,
                                  public platform::Object,
                                  public RequestListTableViewHandlerDelegate {
public:
    // The screen for the host's configurations, with the "Tickets" cache of the current core when
    // it has one.
    static std::shared_ptr<RequestListViewController> make(const mirrowset::ConfigurationList& configurations);

    RequestListViewController(std::optional<mirrowset::Configurations> configurations, std::shared_ptr<Cache> ticketsCache);
    ~RequestListViewController() override;
    std::string_view className() const override { return "RequestListViewController"; }

    // The views, made with the screen's view.
    std::shared_ptr<uikit::TableView> requestListTableView;
    std::shared_ptr<uikit::ImageView> inboxImageView;
    std::shared_ptr<uikit::View> inboxView;
    std::shared_ptr<uikit::Button> createATicketButton;
    std::shared_ptr<uikit::Label> conversationsLabel;
    std::shared_ptr<CorvaneLogoView> corvaneLogoButton;
    std::shared_ptr<uikit::ActivityIndicatorView> loadingSpinner;
    std::shared_ptr<CRVToastViewWrapper> toastWrapper;

    std::shared_ptr<RequestListTableViewHandler> tableViewHandler;
    std::shared_ptr<ProgressBar> progressBar;
    std::shared_ptr<RefreshControl> refreshController;
    std::shared_ptr<Cache> cache;
    std::optional<mirrowset::Configurations> configs;
    // Handed on to the new-ticket screen, which tells it when it is done.
    std::weak_ptr<CRVContainerChildControllerDelegate> childDelegate;
    // The screen's copy of the list slice, as last drawn.
    RequestListState state;
    const std::shared_ptr<RequestListRefreshActionHandler>& refreshActionHandler() const { return refreshHandler_; }
    // Between the start of a load and its end, whether from the network or as a failure.
    bool isLoading() const { return loading_; }

    // Fetches the list again, from the help desk.
    void pullToRefresh();
    // Offers a new ticket in a screen of its own, presented over this one.
    void presentCreateRequest();
    void openCorvaneLinkInBrowser();
    void didSelectRequest(const RequestListCellData& request) override;
    // The screen of the ticket with the id, or of a new ticket without one: the request container.
    virtual uikit::ViewController::Ptr makeRequestScreen(const std::optional<std::string>& requestId);

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

private:
    void buildViews();
    void layoutList(const uikit::Rect& bounds);
    void layoutEmptyView(const uikit::Rect& bounds);
    // Reads the settings and the kept rows; `viewed` also reports the visit.
    void load(bool viewed);
    void render(RequestListState newState);
    void giveToHandler(const RequestListState& newState);
    void updateEmptyView();
    void updateLogo();
    void finishLoading();
    void showError();
    void handleAuthError();
    void setComposeEnabled(bool enabled);
    // Takes the screen away the way it came, with the container that holds it.
    void dismissScreen();
    std::shared_ptr<RequestListViewController> self();

    // Outlives nothing of the screen: what the bar button holds to reach it.
    std::shared_ptr<int> lifetime_ = std::make_shared<int>(0);
    std::shared_ptr<uikit::View> listView_;
    std::shared_ptr<RequestListRefreshActionHandler> refreshHandler_ = std::make_shared<RequestListRefreshActionHandler>();
    platform::ObservationToken unauthorizedObserver_;
    bool loading_ = false;
};

} // namespace belvakit
