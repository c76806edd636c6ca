#pragma once

#include "belvakit/Request/requestlist/agent_avatar_info.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// One agent's avatar: a round image, the "Avatar" placeholder until the agent's own is there.
class AvatarImageView final : public uikit::ImageView {
public:
    explicit AvatarImageView(double diameter = 24);
    std::string_view className() const override { return "AvatarImageView"; }

    static platform::ImagePtr placeholderImage();
    void setAgent(const AgentAvatarInfo& agent);
    // The agent's own image; null puts the placeholder back.
    void setAvatarImage(platform::ImagePtr image);
    bool showsPlaceholder() const { return showsPlaceholder_; }
    std::int64_t userId() const { return userId_; }

private:
    bool showsPlaceholder_ = true;
    std::int64_t userId_ = 0;
};

// The agents' names on one line: as many as fit the width, then "+N" for the rest.
class AgentNamesView final : public uikit::View {
public:
    AgentNamesView();
    std::string_view className() const override { return "AgentNamesView"; }

    void setNames(std::vector<std::string> names);
    const std::vector<std::string>& names() const { return names_; }
    // What the label shows at the current width.
    const std::string& text() const { return label_->text(); }
    const std::shared_ptr<uikit::Label>& label() const { return label_; }
    // The text for a width: the names joined by ", ", shortened to fit with " +N".
    std::string textForWidth(double width) const;

    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    uikit::Size measure(const std::string& text) const;
    std::vector<std::string> names_;
    std::shared_ptr<uikit::Label> label_;
};

// A navigation bar's title: the agents' avatars side by side, overlapping a little, over their
// names. Agents appear once each, in the order given; at most `maxAvatars` avatars show.
class AvatarTitleView final : public uikit::View {
public:
    static constexpr std::size_t maxAvatars = 3;
    static constexpr double avatarDiameter = 24;
    static constexpr double avatarOverlap = 6;
    static constexpr double namesGap = 2;

    explicit AvatarTitleView(std::shared_ptr<AgentNamesView> names = nullptr);
    std::string_view className() const override { return "AvatarTitleView"; }

    void setAgents(std::vector<AgentAvatarInfo> agents);
    // The agents shown, without repeats.
    const std::vector<AgentAvatarInfo>& agents() const { return agents_; }
    // The row of avatars; its subviews are AvatarImageViews.
    const std::shared_ptr<uikit::View>& avatarViews() const { return avatarViews_; }
    const std::shared_ptr<AgentNamesView>& agentNamesView() const { return names_; }
    // Puts an avatar fetched later into the agent's image view.
    void setAvatarImage(std::int64_t userId, platform::ImagePtr image);
    // Widest that the title may be; 0 for no limit.
    double maxWidth = 0;

    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    double avatarsWidth() const;
    std::vector<AgentAvatarInfo> agents_;
    std::shared_ptr<uikit::View> avatarViews_;
    std::shared_ptr<AgentNamesView> names_;
};

// A small "powered by" mark; a tap opens the referrer's link when there is one.
class CorvaneLogoView final : public uikit::View {
public:
    explicit CorvaneLogoView(std::optional<std::string> referrerUrl = std::nullopt);
    std::string_view className() const override { return "CorvaneLogoView"; }

    std::optional<std::string> referrerUrl;
    const std::shared_ptr<uikit::Label>& label() const { return label_; }

    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    void openReferrer() const;
    std::shared_ptr<uikit::Label> label_;
};

} // namespace belvakit
