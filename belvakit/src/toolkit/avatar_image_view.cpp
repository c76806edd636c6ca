#include "belvakit/resources/image_resources.hpp"
#include "belvakit/toolkit/avatar_views.hpp"

namespace belvakit {

AvatarImageView::AvatarImageView(double diameter) : uikit::ImageView(placeholderImage()) {
    setFrame({0, 0, diameter, diameter});
    contentMode = uikit::ContentMode::scaleAspectFill;
    setCornerRadius(diameter / 2);
    setClipsToBounds(true);
    // A white ring keeps overlapping avatars apart.
    setBorderWidth(1.5);
    setBorderColor(platform::Color::white());
    setAccessibilityIdentifier("CRVagentAvatar");
}

platform::ImagePtr AvatarImageView::placeholderImage() {
    static const platform::ImagePtr image = resourceImage("Avatar");
    return image;
}

void AvatarImageView::setAgent(const AgentAvatarInfo& agent) {
    userId_ = agent.userId;
    setAccessibilityLabel(agent.agentName);
    setAvatarImage(agent.avatarImage);
}

void AvatarImageView::setAvatarImage(platform::ImagePtr image) {
    showsPlaceholder_ = image == nullptr;
    setImage(image ? std::move(image) : placeholderImage());
}

} // namespace belvakit
