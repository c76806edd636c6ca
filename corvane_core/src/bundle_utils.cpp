#include "corvane/bundle_utils.hpp"

#include <mutex>

namespace corvane {

namespace {

std::mutex cssMutex;
std::optional<std::string>& hostCss() {
    static std::optional<std::string> css;
    return css;
}

// Plain CSS that a browser and a rich-text layout both read. The side margins sit on the blocks
// rather than on the body, so that the footer's paragraph lines up in both.
constexpr const char* shippedCss = R"css(body {
  font-family: -apple-system, "Helvetica Neue", Helvetica, Arial, sans-serif;
  font-size: 16px;
  line-height: 1.5;
  color: #434343;
  margin: 15px 0;
  word-wrap: break-word;
}
h1, h2, h3, p, ul, ol, pre, table { margin-left: 15px; margin-right: 15px; }
h1 { font-size: 22px; font-weight: bold; color: #262626; margin-top: 0; margin-bottom: 14px; }
h2 { font-size: 19px; font-weight: bold; color: #262626; margin-top: 20px; margin-bottom: 8px; }
h3 { font-size: 17px; font-weight: bold; color: #262626; margin-top: 16px; margin-bottom: 6px; }
p { margin-top: 0; margin-bottom: 12px; }
ul, ol { margin-top: 0; margin-bottom: 12px; padding-left: 24px; }
li { margin-bottom: 4px; }
a { color: #1f73b7; text-decoration: none; }
img { max-width: 100%; height: auto; }
pre, code { font-family: Menlo, Courier, monospace; font-size: 14px; }
table { border-collapse: collapse; }
td, th { border: 1px solid #e6e6e6; padding: 4px 8px; }
footer { color: #8f8e94; font-size: 13px; }
footer p { margin-top: 24px; }
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
