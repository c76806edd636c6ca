#pragma once

#include "platform/color.hpp"
#include "platform/font.hpp"

#include <memory>

namespace belvakit {

// A colour given as a white level, as the themes state theirs.
constexpr platform::Color whiteColor(double white, double alpha = 1.0) { return {white, white, white, alpha}; }

// The older theme: nine colours and ten fonts, read by the Help Center's cells and views.
class CRVLegacyTheme : public std::enable_shared_from_this<CRVLegacyTheme> {
public:
    using Ptr = std::shared_ptr<CRVLegacyTheme>;

    // A new theme with the base values on each call.
    static Ptr baseTheme();
    // The applicator's current theme.
    static Ptr currentAppliedTheme();
    // Makes this theme the applicator's current one, writing its palette.
    void apply();

    platform::Color primaryTextColor;
    platform::Color secondaryTextColor;
    platform::Color primaryBackgroundColor;
    platform::Color secondaryBackgroundColor;
    platform::Color emptyBackgroundColor;
    platform::Color metaTextColor;
    platform::Color separatorColor;
    platform::Color inputFieldBackgroundColor;
    platform::Color inputFieldTextColor;
    platform::Font mainFont;
    platform::Font headerFont;
    platform::Font metaTextFont;
    platform::Font subtitleFont;
    platform::Font subHeaderFont;
    platform::Font boldMainFont;
    platform::Font boldHeaderFont;
    platform::Font boldMetaTextFont;
    platform::Font boldSubtitleFont;
    platform::Font boldSubHeaderFont;

private:
    struct PrivateInit {};

public:
    // Only through `baseTheme`; public for make_shared.
    explicit CRVLegacyTheme(PrivateInit);
};

// The newer theme: one primary colour, kept in the common theme shared with the messaging screens.
class Theme {
public:
    static Theme& currentTheme();

    // No storage of its own: reads and writes the common theme's primary colour.
    platform::Color primaryColor() const;
    void setPrimaryColor(const platform::Color& color);

private:
    Theme() = default;
};

} // namespace belvakit
