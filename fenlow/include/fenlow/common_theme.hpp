#pragma once

#include "platform/color.hpp"

namespace fenlow {

// The colours a host shares across all of its support screens.
struct CommonTheme {
    platform::Color primaryColor = platform::Color::fromRGB(0, 122, 255);

    // Read at the moment of the call: later changes don't reach values taken before.
    static CommonTheme currentTheme();
    // Thread-safe.
    static void setCurrentTheme(const CommonTheme& theme);

    bool operator==(const CommonTheme&) const = default;
};

} // namespace fenlow
