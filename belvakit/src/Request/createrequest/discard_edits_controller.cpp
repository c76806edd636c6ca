#include "belvakit/Request/createrequest/discard_edits_controller.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "uikit/alert_controller.hpp"

namespace belvakit {

void BackButtonInterceptor::intercept(uikit::ViewController& screen, std::function<void()> check) {
    auto& item = screen.navigationItem().leftBarButtonItem;
    if (!item || item != intercepted_.lock()) {
        if (item) {
            originalBarButtonAction = item->action;
        } else {
            item = std::make_shared<uikit::BarButtonItem>();
            item->title = localized(LocalizedKey::requestsConversationsBackButton);
            item->accessibilityIdentifier = "CRVbackButton";
            originalBarButtonAction = nullptr;
        }
        intercepted_ = item;
    }
    item->action = std::move(check);
    auto* navigation = screen.navigationController();
    if (navigation && navigation->topViewController() == &screen) navigation->refreshBar();
}

bool BackButtonInterceptor::performOriginalAction() const {
    if (!originalBarButtonAction) return false;
    originalBarButtonAction();
    return true;
}

std::shared_ptr<DiscardEditsController> DiscardEditsController::make(
    const std::shared_ptr<uikit::ViewController>& viewController,
    std::shared_ptr<BarButtonInterceptor> backButtonInterceptor) {
    return std::shared_ptr<DiscardEditsController>(
        new DiscardEditsController(viewController, std::move(backButtonInterceptor)));
}

DiscardEditsController::DiscardEditsController(const std::shared_ptr<uikit::ViewController>& viewController,
                                               std::shared_ptr<BarButtonInterceptor> backButtonInterceptor)
    : backButtonInterceptor_(std::move(backButtonInterceptor)), viewController_(viewController) {}

void DiscardEditsController::prepare() {
    auto screen = viewController_.lock();
    if (!screen || !backButtonInterceptor_) return;
    // The button belongs to the screen: it holds this controller only weakly.
    backButtonInterceptor_->intercept(*screen, [weakSelf = weak_from_this()] {
        if (auto self = weakSelf.lock()) self->dismiss();
    });
}

void DiscardEditsController::dismiss() {
    auto screen = viewController_.lock();
    if (!screen) return;
    const auto source = editSource.lock();
    if (source && source->hasUnsavedEdits()) {
        auto alert = uikit::AlertController::alertController(
            localized(LocalizedKey::requestsCreateRequestInputUnsentTitle),
            localized(LocalizedKey::requestsCreateRequestInputUnsentBody), uikit::AlertControllerStyle::alert);
        alert->addAction({localized(LocalizedKey::requestsCreateRequestFailedDelete),
                          uikit::AlertActionStyle::destructive, [weakSelf = weak_from_this()](const uikit::AlertAction&) {
                              if (auto self = weakSelf.lock()) self->leave();
                          }});
        alert->addAction({localized(LocalizedKey::requestsLeftBarButtonTitleCancel), uikit::AlertActionStyle::cancel,
                          nullptr});
        screen->presentViewController(alert, true);
        return;
    }
    leave();
}

void DiscardEditsController::leave() {
    auto screen = viewController_.lock();
    if (!screen) return;
    if (!backButtonInterceptor_ || !backButtonInterceptor_->performOriginalAction()) {
        auto* navigation = screen->navigationController();
        if (navigation && navigation->topViewController() == screen.get() && navigation->viewControllers().size() > 1) {
            navigation->popViewController(true);
        } else if (navigation) {
            navigation->dismissViewController(true);
        } else {
            screen->dismissViewController(true);
        }
    }
    if (auto listener = delegate.lock()) listener->discardEditsControllerDidLeave();
}

} // namespace belvakit
