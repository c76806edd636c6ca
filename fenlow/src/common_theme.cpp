#include "fenlow/common_theme.hpp"

#include <mutex>

namespace fenlow {

namespace {
std::mutex themeMutex;
CommonTheme& theme() {
    static CommonTheme current;
    return current;
}
} // namespace

CommonTheme CommonTheme::currentTheme() {
    std::lock_guard lock(themeMutex);
    return theme();
}

void CommonTheme::setCurrentTheme(const CommonTheme& newTheme) {
    std::lock_guard lock(themeMutex);
    theme() = newTheme;
}

} // namespace fenlow
