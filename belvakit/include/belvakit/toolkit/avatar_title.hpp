#pragma once

#include "belvakit/Request/requestlist/agent_avatar_info.hpp"
#include "belvakit/attachments/attachments_provider.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/toolkit/avatar_views.hpp"
#include "uikit/view_controller.hpp"

#include <memory>
#include <string>
#include <vector>

namespace belvakit {

// Puts the agents of a conversation into a screen's navigation item: their avatars and names as
// the title view, or the plain title when there are none. Avatars without an image are looked up
// in the "Avatars" cache, and downloaded into it when it lacks them and a provider is given.
class AvatarTitle {
public:
    AvatarTitle(const std::shared_ptr<uikit::ViewController>& screen, std::string title,
                std::shared_ptr<Cache> cache = nullptr, std::shared_ptr<AgentNamesView> agentNamesView = nullptr,
                double navBarWidth = 0, std::shared_ptr<AttachmentsProvider> attachmentsProvider = nullptr);

    // The screen's item, while the screen lives.
    uikit::NavigationItem* navigationItem() const;
    std::shared_ptr<AgentNamesView> agentNamesView;
    std::shared_ptr<Cache> cache;
    std::shared_ptr<AttachmentsProvider> attachmentsProvider;
    double navBarWidth;
    // The first presentation has not happened yet.
    bool initalPresent = true;

    // Agents as last given change nothing, so a screen may pass them on every redraw.
    void setAgents(std::vector<AgentAvatarInfo> agents);
    const std::shared_ptr<AvatarTitleView>& titleView() const { return titleView_; }

private:
    void present(const std::function<void()>& changes);
    void fetchMissingAvatars();

    std::weak_ptr<uikit::ViewController> screen_;
    std::string title_;
    std::shared_ptr<AvatarTitleView> titleView_;
    std::vector<AgentAvatarInfo> shownAgents_;
};

} // namespace belvakit
