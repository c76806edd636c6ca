#pragma once

#include "uikit/button.hpp"
#include "uikit/image_view.hpp"

#include <memory>

namespace belvakit {

// Pull to refresh over a list: a strip with a spinner that shows while refreshing. The pull itself
// is `userDidPull`, which a host's gesture (or a test) calls: it starts refreshing and sends
// `valueChanged`, as the platform's control does when the user lets go. Main thread.
class RefreshControl final : public uikit::Control {
public:
    static constexpr double height = 50;

    RefreshControl();
    std::string_view className() const override { return "UIRefreshControl"; }

    void beginRefreshing();
    void endRefreshing();
    bool isRefreshing() const { return refreshing_; }
    void userDidPull();

    const std::shared_ptr<uikit::ActivityIndicatorView>& spinner() const { return spinner_; }

    uikit::Size sizeThatFits(uikit::Size size) const override { return {size.width, height}; }
    void layoutSubviews() override;

private:
    std::shared_ptr<uikit::ActivityIndicatorView> spinner_;
    bool refreshing_ = false;
};

} // namespace belvakit
