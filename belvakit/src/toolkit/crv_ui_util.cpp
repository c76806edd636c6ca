#include "belvakit/toolkit/ui_util.hpp"

#include "belvakit/toolkit/appearance_applicator.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "corvane/core_logger.hpp"
#include "uikit/appearance.hpp"
#include "uikit/window.hpp"

#include <algorithm>
#include <cctype>
#include <vector>

namespace belvakit {

namespace {

std::optional<std::any> fromPalette(const std::optional<std::string>& key) {
    std::optional<std::any> value = key ? CRVAppearanceApplicator::objectForKey(*key) : std::nullopt;
    if (!value) corvane::CoreLogger::error("Appearance value not found for " + (key ? *key : std::string("(null)")));
    return value;
}

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// Text order, except that runs of digits compare as numbers.
int compareNumerically(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            std::size_t endA = i;
            std::size_t endB = j;
            while (endA < a.size() && isDigit(a[endA])) ++endA;
            while (endB < b.size() && isDigit(b[endB])) ++endB;
            std::string_view runA = a.substr(i, endA - i);
            std::string_view runB = b.substr(j, endB - j);
            const auto strip = [](std::string_view run) {
                while (run.size() > 1 && run.front() == '0') run.remove_prefix(1);
                return run;
            };
            runA = strip(runA);
            runB = strip(runB);
            if (runA.size() != runB.size()) return runA.size() < runB.size() ? -1 : 1;
            if (const int order = runA.compare(runB); order != 0) return order < 0 ? -1 : 1;
            i = endA;
            j = endB;
            continue;
        }
        if (a[i] != b[j]) return a[i] < b[j] ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < a.size()) return 1;
    if (j < b.size()) return -1;
    return 0;
}

uikit::Environment currentEnvironment() {
    const uikit::Window* window = uikit::Window::keyWindow();
    return window ? window->environment() : uikit::Environment{};
}

std::string& version() {
    static std::string text = "13.0";
    return text;
}

} // namespace

std::optional<std::any> CRVUIUtil::appearanceValueForClass(std::string_view className, std::string_view selector) {
    if (respondsToProperty(className, selector))
        if (auto set = uikit::Appearance::get(className, selector); set && set->has_value()) return set;
    return fromPalette(keyForSelector(className, selector));
}

std::optional<std::any> CRVUIUtil::appearanceValueForClass(std::string_view className,
                                                           std::string_view containerClassName,
                                                           std::string_view selector) {
    if (respondsToProperty(className, selector))
        if (auto set = uikit::Appearance::get(className, selector, containerClassName); set && set->has_value())
            return set;
    return fromPalette(keyForSelector(className, selector, containerClassName));
}

std::optional<std::any> CRVUIUtil::appearanceValueForView(const uikit::View& view, std::string_view selector) {
    if (!respondsToProperty(view.className(), selector)) return std::nullopt;
    return appearanceValueForClass(view.className(), selector);
}

const std::string& CRVUIUtil::systemVersion() { return version(); }
void CRVUIUtil::setSystemVersion(std::string text) { version() = std::move(text); }

bool CRVUIUtil::isOlderVersion(std::string_view other) { return compareNumerically(version(), other) < 0; }
bool CRVUIUtil::isNewerVersion(std::string_view other) { return compareNumerically(version(), other) > 0; }

bool CRVUIUtil::isSameVersion(int other) {
    const std::string& text = version();
    // As a number is read from text: a leading non-digit reads as 0.
    const int first = !text.empty() && isDigit(text.front()) ? text.front() - '0' : 0;
    return first == other;
}

double CRVUIUtil::separatorHeightForScreenScale() {
    static const double height = currentEnvironment().scale > 1.9 ? 0.5 : 1.0;
    return height;
}

std::shared_ptr<uikit::Button> CRVUIUtil::buildButtonWithFrame(const uikit::Rect& frame, const std::string& title) {
    auto button = std::make_shared<uikit::Button>(uikit::ButtonType::custom, frame);
    const platform::Color text = whiteColor(0.2627, 1.0);
    button->setBackgroundColor(whiteColor(0.945));
    button->setBorderWidth(1.0);
    button->setBorderColor(text);
    button->setCornerRadius(4.0);
    button->titleLabel()->setFont(platform::Font::systemFont(14.0));
    button->contentEdgeInsets = {0, 12.0, 0, 22.0};
    button->setTitle(title, uikit::ControlState::normal);
    button->setTitleColor(text, uikit::ControlState::normal);
    button->setTitleColor(whiteColor(0.2627, 0.3), uikit::ControlState::highlighted);
    button->setTitleColor(whiteColor(0.2627, 0.3), uikit::ControlState::disabled);
    button->contentHorizontalAlignment = uikit::TextAlignment::center;
    button->setAutoresizingMask(45);
    return button;
}

int CRVUIUtil::currentInterfaceOrientation() {
    const int orientation = static_cast<int>(currentEnvironment().orientation);
    return orientation == 0 ? 1 : orientation;
}

bool CRVUIUtil::isPad() { return currentEnvironment().idiom == uikit::UserInterfaceIdiom::pad; }

bool CRVUIUtil::isLandscape() {
    const auto orientation = currentEnvironment().orientation;
    return orientation == uikit::InterfaceOrientation::landscapeLeft ||
           orientation == uikit::InterfaceOrientation::landscapeRight;
}

platform::ImagePtr CRVUIUtil::fixOrientationOfImage(const platform::ImagePtr& image) {
    return platform::fixOrientationOfImage(image);
}

corvane::Bundle& CRVUIUtil::mainBundle() {
    static corvane::Bundle bundle;
    return bundle;
}

bool CRVUIUtil::shouldEnableAttachments() {
    const auto& info = mainBundle().infoDictionary;
    const auto found = info.find("UISupportedInterfaceOrientations");
    if (found == info.end()) return false;
    const auto* orientations = std::any_cast<std::vector<std::string>>(&found->second);
    return orientations && std::find(orientations->begin(), orientations->end(), "UIInterfaceOrientationPortrait") !=
                               orientations->end();
}

} // namespace belvakit
