#include "belvakit/toolkit/avatar_views.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace belvakit {

AvatarTitleView::AvatarTitleView(std::shared_ptr<AgentNamesView> names)
    : avatarViews_(uikit::make<uikit::View>()), names_(names ? std::move(names) : uikit::make<AgentNamesView>()) {
    setAccessibilityIdentifier("CRVavatarTitle");
    avatarViews_->setUserInteractionEnabled(false);
    addSubview(avatarViews_);
    addSubview(names_);
}

void AvatarTitleView::setAgents(std::vector<AgentAvatarInfo> agents) {
    agents_.clear();
    for (auto& agent : agents) {
        const bool seen = std::any_of(agents_.begin(), agents_.end(),
                                      [&](const AgentAvatarInfo& kept) { return kept.userId == agent.userId; });
        if (!seen) agents_.push_back(std::move(agent));
    }
    for (const auto& old : std::vector(avatarViews_->subviews())) old->removeFromSuperview();
    std::vector<std::string> names;
    for (std::size_t index = 0; index < agents_.size(); ++index) {
        if (index < maxAvatars) {
            auto avatar = uikit::make<AvatarImageView>(avatarDiameter);
            avatar->setAgent(agents_[index]);
            avatarViews_->addSubview(avatar);
        }
        if (!agents_[index].agentName.empty()) names.push_back(agents_[index].agentName);
    }
    names_->setNames(std::move(names));
    setNeedsLayout();
    invalidateIntrinsicContentSize();
}

void AvatarTitleView::setAvatarImage(std::int64_t userId, platform::ImagePtr image) {
    for (auto& agent : agents_)
        if (agent.userId == userId) agent.avatarImage = image;
    for (const auto& view : avatarViews_->subviews())
        if (auto* avatar = dynamic_cast<AvatarImageView*>(view.get()); avatar && avatar->userId() == userId)
            avatar->setAvatarImage(image);
}

double AvatarTitleView::avatarsWidth() const {
    const auto shown = static_cast<double>(avatarViews_->subviews().size());
    return shown == 0 ? 0 : shown * avatarDiameter - (shown - 1) * avatarOverlap;
}

uikit::Size AvatarTitleView::sizeThatFits(uikit::Size size) const {
    double limit = std::numeric_limits<double>::infinity();
    if (size.width > 0) limit = size.width;
    if (maxWidth > 0) limit = std::min(limit, maxWidth);
    const uikit::Size names = names_->sizeThatFits({std::isinf(limit) ? 0 : limit, 0});
    const double width = std::min(std::max(avatarsWidth(), names.width), limit);
    const double avatars = avatarViews_->subviews().empty() ? 0 : avatarDiameter;
    const double gap = avatars > 0 && names.height > 0 ? namesGap : 0;
    return {std::ceil(width), std::ceil(avatars + gap + names.height)};
}

void AvatarTitleView::layoutSubviews() {
    uikit::View::layoutSubviews();
    const double width = bounds().width();
    const double row = avatarsWidth();
    const double avatars = avatarViews_->subviews().empty() ? 0 : avatarDiameter;
    avatarViews_->setFrame({std::floor((width - row) / 2), 0, row, avatars});
    double x = 0;
    for (const auto& avatar : avatarViews_->subviews()) {
        avatar->setFrame({x, 0, avatarDiameter, avatarDiameter});
        x += avatarDiameter - avatarOverlap;
    }
    const double top = avatars > 0 ? avatars + namesGap : 0;
    names_->setFrame({0, top, width, std::max(0.0, bounds().height() - top)});
}

} // namespace belvakit
