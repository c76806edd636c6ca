#pragma once

#include "platform/image.hpp"
#include "uikit/bar_button_item.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace belvakit {

// A host's say in the Help Center's contact button.
class CRVHelpCenterConversationsUIDelegate {
public:
    virtual ~CRVHelpCenterConversationsUIDelegate() = default;
    // 0: the button shows everywhere; 2: nowhere on the overview; other values: the overview only.
    virtual int active() const = 0;
    // 0: a text button; 1: an image button; other values: none.
    virtual int navBarConversationsUIType() const = 0;
    virtual platform::ImagePtr conversationsBarButtonImage() const = 0;
    // Nothing keeps the library's own text.
    virtual std::optional<std::string> conversationsBarButtonLocalizedLabel() const { return std::nullopt; }
};

class CRVConversationsUtil {
public:
    CRVConversationsUtil() = delete;

    // The contact button for the navigation bar, or none when the host's type asks for none.
    static uikit::BarButtonItemPtr contactUsBarButton(const std::shared_ptr<CRVHelpCenterConversationsUIDelegate>& uiDelegate,
                                                      std::function<void()> action);
};

} // namespace belvakit
