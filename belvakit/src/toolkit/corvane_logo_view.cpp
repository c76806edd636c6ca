#include "belvakit/toolkit/avatar_views.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "platform/url.hpp"
#include "uikit/application.hpp"

namespace belvakit {

CorvaneLogoView::CorvaneLogoView(std::optional<std::string> referrer)
    : referrerUrl(std::move(referrer)), label_(uikit::make<uikit::Label>()) {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    label_->setText("Powered by Corvane");
    label_->setFont(theme->metaTextFont);
    label_->setTextColor(theme->metaTextColor);
    label_->setTextAlignment(uikit::TextAlignment::center);
    label_->setUserInteractionEnabled(false);
    addSubview(label_);
    setAccessibilityIdentifier("CRVcorvaneLogo");
    addTapAction([this] { openReferrer(); });
}

void CorvaneLogoView::openReferrer() const {
    if (!referrerUrl) return;
    if (const auto url = platform::URL::parse(*referrerUrl)) uikit::Application::openURL(*url);
}

uikit::Size CorvaneLogoView::sizeThatFits(uikit::Size size) const {
    const uikit::Size text = label_->sizeThatFits(size);
    return {text.width + 16, text.height + 8};
}

void CorvaneLogoView::layoutSubviews() {
    uikit::View::layoutSubviews();
    label_->setFrame(bounds());
}

} // namespace belvakit
