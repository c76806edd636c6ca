#include "belvakit/Request/createrequest/bar_buttons.hpp"

namespace belvakit {

uikit::BarButtonItemPtr BarButtonProvider::make(const std::optional<BarButtonDetails>& details) {
    if (!details) return nullptr;
    auto item = std::make_shared<uikit::BarButtonItem>();
    item->title = details->title;
    item->action = details->action;
    item->accessibilityIdentifier = details->accessibilityIdentifier;
    return item;
}

} // namespace belvakit
