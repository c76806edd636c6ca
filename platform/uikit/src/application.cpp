#include "uikit/application.hpp"

#include "platform/url_opener.hpp"

#include <atomic>

namespace uikit {

void Application::openURL(const platform::URL& url, const std::map<std::string, std::string>&,
                          std::function<void(bool)> completion) {
    platform::URLOpener::shared()->open(url);
    if (completion) completion(true);
}

namespace {
std::atomic<bool> mailAvailable{false};
}

bool MailComposeViewController::canSendMail() { return mailAvailable; }
void MailComposeViewController::setCanSendMail(bool can) { mailAvailable = can; }

} // namespace uikit
