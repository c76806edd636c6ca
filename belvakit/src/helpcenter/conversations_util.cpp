#include "belvakit/helpcenter/conversations_util.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/resources/image_resources.hpp"
#include "uikit/button.hpp"

namespace belvakit {

namespace {
constexpr const char* buttonIdentifier = "CRVconversationsButton";
}

uikit::BarButtonItemPtr CRVConversationsUtil::contactUsBarButton(
    const std::shared_ptr<CRVHelpCenterConversationsUIDelegate>& uiDelegate, std::function<void()> action) {
    auto item = std::make_shared<uikit::BarButtonItem>();
    item->accessibilityLabel = localized(LocalizedKey::helpCenterSupportContactSupport);
    item->accessibilityIdentifier = buttonIdentifier;
    if (!uiDelegate) {
        item->image = resourceImage("compose");
        item->action = std::move(action);
        return item;
    }
    switch (uiDelegate->navBarConversationsUIType()) {
    case 0:
        item->title = uiDelegate->conversationsBarButtonLocalizedLabel().value_or(
            localized(LocalizedKey::requestsRightBarButtonTitleContact));
        item->action = std::move(action);
        return item;
    case 1: {
        auto image = uiDelegate->conversationsBarButtonImage();
        auto button = uikit::make<uikit::Button>();
        button->setImage(image);
        if (image) button->setFrame({0, 0, static_cast<double>(image->width), static_cast<double>(image->height)});
        button->setAccessibilityLabel(item->accessibilityLabel);
        button->setAccessibilityIdentifier(buttonIdentifier);
        button->addTarget(uikit::ControlEvent::touchUpInside, [action = std::move(action)] {
            if (action) action();
        });
        item->customView = button;
        return item;
    }
    default: return nullptr;
    }
}

} // namespace belvakit
