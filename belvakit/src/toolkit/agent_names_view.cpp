#include "belvakit/toolkit/avatar_views.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "uikit/text_measurer.hpp"

#include <algorithm>

namespace belvakit {

namespace {

std::string join(const std::vector<std::string>& names, std::size_t count) {
    std::string text;
    for (std::size_t index = 0; index < count && index < names.size(); ++index) {
        if (index > 0) text += ", ";
        text += names[index];
    }
    return text;
}

} // namespace

AgentNamesView::AgentNamesView() : label_(uikit::make<uikit::Label>()) {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    label_->setFont(theme->subtitleFont);
    label_->setTextColor(theme->primaryTextColor);
    label_->setTextAlignment(uikit::TextAlignment::center);
    label_->setAccessibilityIdentifier("CRVagentNames");
    setUserInteractionEnabled(false);
    addSubview(label_);
}

void AgentNamesView::setNames(std::vector<std::string> names) {
    names_ = std::move(names);
    label_->setText(textForWidth(frame().width()));
    setNeedsLayout();
    invalidateIntrinsicContentSize();
}

uikit::Size AgentNamesView::measure(const std::string& text) const {
    const platform::AttributedString styled(text, {{platform::AttributeName::font, label_->font()}});
    return uikit::textMeasurer().measure(styled, 1e9, 1);
}

std::string AgentNamesView::textForWidth(double width) const {
    const std::string all = join(names_, names_.size());
    if (width <= 0 || names_.size() < 2 || measure(all).width <= width) return all;
    // Fewer names and a count of the others, down to the first name alone.
    for (std::size_t shown = names_.size() - 1; shown >= 1; --shown) {
        const std::string text = join(names_, shown) + " +" + std::to_string(names_.size() - shown);
        if (shown == 1 || measure(text).width <= width) return text;
    }
    return all;
}

uikit::Size AgentNamesView::sizeThatFits(uikit::Size size) const {
    const std::string text = textForWidth(size.width);
    if (text.empty()) return {0, 0};
    const uikit::Size measured = measure(text);
    return {size.width > 0 ? std::min(measured.width, size.width) : measured.width, measured.height};
}

void AgentNamesView::layoutSubviews() {
    uikit::View::layoutSubviews();
    label_->setText(textForWidth(frame().width()));
    label_->setFrame(bounds());
}

} // namespace belvakit
