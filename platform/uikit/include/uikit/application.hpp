#pragma once

#include "platform/url.hpp"
#include "uikit/view_controller.hpp"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace uikit {

// The application's seams to the rest of the device: opening a URL goes to the platform's opener.
class Application {
public:
    static void openURL(const platform::URL& url, const std::map<std::string, std::string>& options = {},
                        std::function<void(bool)> completion = {});
};

// The platform's mail composer as a screen. Whether the device can send mail is a setting of the
// host (and of tests).
class MailComposeViewController final : public ViewController {
public:
    std::string_view className() const override { return "MFMailComposeViewController"; }
    static bool canSendMail();
    static void setCanSendMail(bool can);

    std::vector<std::string> toRecipients;
    std::string subject;
    std::string messageBody;
    // 0 cancelled, 1 saved, 2 sent, 3 failed.
    std::function<void(int result)> didFinish;
    void finish(int result) {
        if (didFinish) didFinish(result);
    }
};

} // namespace uikit
