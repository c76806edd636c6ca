#pragma once

#include "uikit/button.hpp"
#include "uikit/text_input.hpp"

#include <functional>
#include <memory>
#include <string>

namespace uikit {

class SearchController;

// A search field with an optional cancel button. The keyboard's return key is its search button.
class SearchBar : public View {
public:
    static constexpr double height = 56;

    SearchBar();
    ~SearchBar() override;
    std::string_view className() const override { return "UISearchBar"; }

    const std::string& text() const { return textField_->text(); }
    // Programmatic: no callbacks, as on the platform.
    void setText(std::string text) { textField_->setText(std::move(text)); }
    const std::string& placeholder() const { return textField_->placeholder(); }
    void setPlaceholder(std::string placeholder) { textField_->setPlaceholder(std::move(placeholder)); }
    bool showsCancelButton() const { return !cancelButton_->isHidden(); }
    void setShowsCancelButton(bool shows, bool animated = false);
    std::optional<platform::Color> barTintColor;

    const std::shared_ptr<TextField>& textField() const { return textField_; }
    const std::shared_ptr<Button>& cancelButton() const { return cancelButton_; }

    // Delegate.
    std::function<void()> textDidBeginEditing;
    std::function<void()> textDidEndEditing;
    std::function<void(const std::string& text)> textDidChange;
    std::function<void()> searchButtonClicked;
    std::function<void()> cancelButtonClicked;

    Size intrinsicContentSize() const override { return {noIntrinsicMetric, height}; }
    void layoutSubviews() override;
    void didMoveToSuperview() override;

private:
    friend class SearchController;
    void beganEditing();
    void changed();
    void cancelled();
    std::shared_ptr<TextField> textField_;
    std::shared_ptr<Button> cancelButton_;
    SearchController* controller_ = nullptr;
};

} // namespace uikit
