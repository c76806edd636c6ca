#include "belvakit/Request/requestlist/refresh_control.hpp"

#include <cmath>

namespace belvakit {

RefreshControl::RefreshControl()
    : uikit::Control(uikit::Rect{0, 0, 0, height}), spinner_(uikit::make<uikit::ActivityIndicatorView>(2)) {
    setHidden(true);
    addSubview(spinner_);
}

void RefreshControl::beginRefreshing() {
    if (refreshing_) return;
    refreshing_ = true;
    setHidden(false);
    spinner_->startAnimating();
    // The owner makes room for the strip.
    invalidateIntrinsicContentSize();
}

void RefreshControl::endRefreshing() {
    if (!refreshing_) return;
    refreshing_ = false;
    spinner_->stopAnimating();
    setHidden(true);
    invalidateIntrinsicContentSize();
}

void RefreshControl::userDidPull() {
    if (refreshing_ || !isEnabled()) return;
    beginRefreshing();
    sendActions(uikit::ControlEvent::valueChanged);
}

void RefreshControl::layoutSubviews() {
    uikit::Control::layoutSubviews();
    const uikit::Size size = spinner_->intrinsicContentSize();
    spinner_->setFrame({std::floor((frame().width() - size.width) / 2), std::floor((frame().height() - size.height) / 2),
                        size.width, size.height});
}

} // namespace belvakit
