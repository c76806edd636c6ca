#pragma once

#include "corvane/bundle.hpp"
#include "platform/image.hpp"
#include "uikit/button.hpp"

#include <any>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace belvakit {

// Class functions shared by the screens.
class CRVUIUtil {
public:
    CRVUIUtil() = delete;

    // A value for a class's property: what a host set on the appearance proxy wins, then the
    // palette; nothing, with an error log, when neither has it. Palette values are
    // platform::Color, platform::Font or std::shared_ptr<uikit::ActivityIndicatorView>.
    static std::optional<std::any> appearanceValueForClass(std::string_view className, std::string_view selector);
    static std::optional<std::any> appearanceValueForClass(std::string_view className,
                                                           std::string_view containerClassName,
                                                           std::string_view selector);
    // Nothing when the view's class has no such property.
    static std::optional<std::any> appearanceValueForView(const uikit::View& view, std::string_view selector);
    template <class T>
    static std::optional<T> appearanceValue(std::string_view className, std::string_view selector) {
        return typed<T>(appearanceValueForClass(className, selector));
    }
    template <class T>
    static std::optional<T> appearanceValue(const uikit::View& view, std::string_view selector) {
        return typed<T>(appearanceValueForView(view, selector));
    }

    // The operating system's version, "13.1"; the device's to set, "13.0" until then.
    static const std::string& systemVersion();
    static void setSystemVersion(std::string version);
    // The system version against the given one, numerically by its parts ("10.0" is newer than "9.3").
    static bool isOlderVersion(std::string_view version);
    static bool isNewerVersion(std::string_view version);
    // Only the first character of the system version counts, so "13.1" reads as 1.
    static bool isSameVersion(int version);

    // 1.0 on a screen of scale 1.0, 0.5 above 1.9; settled on first use.
    static double separatorHeightForScreenScale();

    static std::shared_ptr<uikit::Button> buildButtonWithFrame(const uikit::Rect& frame, const std::string& title);

    // Read from the key window's environment (a default phone without one).
    static int currentInterfaceOrientation();
    static bool isPad();
    static bool isLandscape();

    // The image with its pixels turned upright; an upright image comes back as the same object.
    static platform::ImagePtr fixOrientationOfImage(const platform::ImagePtr& image);

    // The host application's own information ("UISupportedInterfaceOrientations": a list of
    // strings), which the host fills in.
    static corvane::Bundle& mainBundle();
    // Whether the host supports portrait.
    static bool shouldEnableAttachments();

private:
    template <class T>
    static std::optional<T> typed(const std::optional<std::any>& value) {
        if (!value) return std::nullopt;
        const T* found = std::any_cast<T>(&*value);
        return found ? std::optional<T>(*found) : std::nullopt;
    }
};

} // namespace belvakit
