#include "belvakit/toolkit/avatar_title.hpp"

#include "belvakit/Request/requestlist/avatar_fetcher.hpp"
#include "uikit/animation.hpp"
#include "uikit/navigation_controller.hpp"

namespace belvakit {

AvatarTitle::AvatarTitle(const std::shared_ptr<uikit::ViewController>& screen, std::string title,
                         std::shared_ptr<Cache> avatarCache, std::shared_ptr<AgentNamesView> names, double width,
                         std::shared_ptr<AttachmentsProvider> provider)
    : agentNamesView(names ? std::move(names) : uikit::make<AgentNamesView>()),
      cache(std::move(avatarCache)),
      attachmentsProvider(std::move(provider)),
      navBarWidth(width),
      screen_(screen),
      title_(std::move(title)) {}

uikit::NavigationItem* AvatarTitle::navigationItem() const {
    const auto screen = screen_.lock();
    return screen ? &screen->navigationItem() : nullptr;
}

void AvatarTitle::setAgents(std::vector<AgentAvatarInfo> agents) {
    auto* item = navigationItem();
    if (!item) return;
    const bool showing = agents.empty() ? item->titleView == nullptr && !initalPresent
                                        : titleView_ && item->titleView == titleView_;
    if (showing && agents == shownAgents_) return;
    shownAgents_ = agents;
    if (agents.empty()) {
        present([&] {
            item->titleView = nullptr;
            item->title = title_;
        });
        return;
    }
    if (!titleView_) titleView_ = uikit::make<AvatarTitleView>(agentNamesView);
    titleView_->maxWidth = navBarWidth;
    titleView_->setAgents(std::move(agents));
    std::string names;
    for (const auto& name : agentNamesView->names()) names += (names.empty() ? "" : ", ") + name;
    present([&] {
        item->title = names.empty() ? title_ : names;
        item->titleView = titleView_;
    });
    fetchMissingAvatars();
}

void AvatarTitle::present(const std::function<void()>& changes) {
    const auto screen = screen_.lock();
    const auto show = [&] {
        changes();
        if (auto* navigation = screen ? screen->navigationController() : nullptr) navigation->refreshBar();
    };
    if (initalPresent) {
        initalPresent = false;
        uikit::Animation::performWithoutAnimation(show);
        return;
    }
    // Later changes fade the new title in.
    if (titleView_) titleView_->setAlpha(0);
    show();
    if (titleView_) uikit::Animation::animate(0.25, [view = titleView_] { view->setAlpha(1); });
}

void AvatarTitle::fetchMissingAvatars() {
    if (!cache || !titleView_) return;
    const AvatarFetcher fetcher{attachmentsProvider, cache};
    for (const auto& agent : titleView_->agents()) {
        if (agent.avatarImage || !agent.avatarUrl || agent.avatarUrl->empty()) continue;
        fetcher.fetch(agent, [weak = std::weak_ptr(titleView_)](AgentAvatarInfo fetched, bool) {
            const auto view = weak.lock();
            if (view && fetched.avatarImage) view->setAvatarImage(fetched.userId, std::move(fetched.avatarImage));
        });
    }
}

} // namespace belvakit
