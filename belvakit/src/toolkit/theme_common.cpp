#include "belvakit/toolkit/theme.hpp"

#include "fenlow/common_theme.hpp"

namespace belvakit {

Theme& Theme::currentTheme() {
    static Theme theme;
    return theme;
}

platform::Color Theme::primaryColor() const { return fenlow::CommonTheme::currentTheme().primaryColor; }

void Theme::setPrimaryColor(const platform::Color& color) {
    auto common = fenlow::CommonTheme::currentTheme();
    common.primaryColor = color;
    fenlow::CommonTheme::setCurrentTheme(common);
}

} // namespace belvakit
