#include "uikit/search_bar.hpp"

#include "uikit/search_controller.hpp"

#include <cmath>

namespace uikit {

namespace {
constexpr double fieldHeight = 36;
constexpr double inset = 8;
constexpr int returnKeySearch = 6;  // the platform's number for the search return key
} // namespace

SearchBar::SearchBar()
    : View({0, 0, 320, height}), textField_(make<TextField>()), cancelButton_(make<Button>(ButtonType::system)) {
    setBackgroundColor(platform::Color{0.79, 0.79, 0.81, 1});
    textField_->setAccessibilityIdentifier("SearchBarTextField");
    textField_->setPlaceholder("Search");
    textField_->returnKeyType = returnKeySearch;
    textField_->setBackgroundColor(platform::Color::white());
    textField_->setCornerRadius(10);
    textField_->textInsets = {0, 28, 0, 8};
    textField_->didBeginEditing = [this] { beganEditing(); };
    textField_->didChange = [this] { changed(); };
    textField_->didEndEditing = [this] {
        if (textDidEndEditing) textDidEndEditing();
    };
    textField_->shouldReturn = [this] {
        if (searchButtonClicked) searchButtonClicked();
        return false;
    };
    cancelButton_->setTitle("Cancel");
    cancelButton_->setAccessibilityIdentifier("SearchBarCancelButton");
    cancelButton_->setHidden(true);
    cancelButton_->addTarget(ControlEvent::touchUpInside, [this] { cancelled(); });
    addSubview(textField_);
    addSubview(cancelButton_);
}

SearchBar::~SearchBar() {
    // The field and button may outlive the bar in someone's hands; their callbacks point here.
    textField_->didBeginEditing = nullptr;
    textField_->didChange = nullptr;
    textField_->didEndEditing = nullptr;
    textField_->shouldReturn = nullptr;
    cancelButton_->removeTargets(ControlEvent::touchUpInside);
}

void SearchBar::setShowsCancelButton(bool shows, bool) {
    cancelButton_->setHidden(!shows);
    setNeedsLayout();
}

void SearchBar::beganEditing() {
    if (textDidBeginEditing) textDidBeginEditing();
    if (controller_) controller_->setActive(true);
}

void SearchBar::changed() {
    if (textDidChange) textDidChange(text());
    if (controller_) controller_->textChanged();
}

void SearchBar::cancelled() {
    if (cancelButtonClicked) cancelButtonClicked();
    if (controller_) {
        textField_->setText({});
        controller_->setActive(false);
    }
}

void SearchBar::didMoveToSuperview() {
    if (controller_) controller_->searchBarMoved();
}

void SearchBar::layoutSubviews() {
    View::layoutSubviews();
    const double width = frame().width();
    double right = width - inset;
    if (!cancelButton_->isHidden()) {
        const Size size = cancelButton_->sizeThatFits({0, 0});
        cancelButton_->setFrame({right - size.width, std::floor((frame().height() - size.height) / 2), size.width, size.height});
        right -= size.width + inset;
    }
    textField_->setFrame({inset, std::floor((frame().height() - fieldHeight) / 2), std::max(0.0, right - inset), fieldHeight});
}

} // namespace uikit
