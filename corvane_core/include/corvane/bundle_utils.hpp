#pragma once

#include <optional>
#include <string>

namespace corvane {

// Resources the core ships and those a host supplies in their place. Thread-safe.
class CRVBundleUtils {
public:
    CRVBundleUtils() = delete;

    // The host's own style sheet for Help Center articles; absent until a host gives one.
    static std::optional<std::string> userDefinedHelpCenterCss();
    // Absent removes it.
    static void setUserDefinedHelpCenterCss(std::optional<std::string> css);
    // The style sheet shipped for Help Center articles.
    static const std::string& helpCenterCss();
};

} // namespace corvane
