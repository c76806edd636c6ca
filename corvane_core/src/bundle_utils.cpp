#include "corvane/bundle_utils.hpp"

#include <mutex>

namespace corvane {

namespace {

std::mutex cssMutex;
std::optional<std::string>& hostCss() {
    static std::optional<std::string> css;
    return css;
}

// Plain CSS that a browser and a rich-text layout both read: the page's text, headings, lists,
// links, images kept within the page, and the footer with author and date.
constexpr const char* shippedCss = R"css(body {
  font-family: -apple-system, "Helvetica Neue", Helvetica, Arial, sans-serif;
  font-size: 16px;
  line-height: 1.5;
  color: #434343;
  margin: 15px;
  word-wrap: break-word;
}
h1 {
  font-size: 22px;
  font-weight: bold;
  color: #262626;
  margin: 0 0 14px 0;
}
h2 { font-size: 19px; font-weight: bold; color: #262626; margin: 20px 0 8px 0; }
h3 { font-size: 17px; font-weight: bold; color: #262626; margin: 16px 0 6px 0; }
p { margin: 0 0 12px 0; }
ul, ol { margin: 0 0 12px 0; padding-left: 24px; }
li { margin: 0 0 4px 0; }
a { color: #1f73b7; text-decoration: none; }
img { max-width: 100%; height: auto; }
pre, code { font-family: Menlo, Courier, monospace; font-size: 14px; }
table { border-collapse: collapse; }
td, th { border: 1px solid #e6e6e6; padding: 4px 8px; }
footer { margin-top: 24px; color: #8f8e94; font-size: 13px; }
)css";

} // namespace

std::optional<std::string> CRVBundleUtils::userDefinedHelpCenterCss() {
    std::lock_guard lock(cssMutex);
    return hostCss();
}

void CRVBundleUtils::setUserDefinedHelpCenterCss(std::optional<std::string> css) {
    std::lock_guard lock(cssMutex);
    hostCss() = std::move(css);
}

const std::string& CRVBundleUtils::helpCenterCss() {
    static const std::string css = shippedCss;
    return css;
}

} // namespace corvane
