#pragma once

#include "belvakit/Request/createrequest/discard_edits_controller.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/entry/Coordinator/container_view_controller.hpp"
#include "belvakit/entry/container_child_delegate.hpp"
#include "belvakit/entry/navigation_item_delegate.hpp"
#include "belvakit/entry/request_container_state.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "belvakit/toolkit/avatar_title.hpp"
#include "belvakit/toolkit/avatar_views.hpp"
#include "belvakit/toolkit/progress_bar.hpp"
#include "belvakit/toolkit/toast_view_wrapper.hpp"
#include "corvane/store_module.hpp"
#include "platform/notification_center.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

struct RequestTableState;

// Hosts the progress bar while the container waits for its settings; the bar starts on appearing.
class RequestLoadingController final : public uikit::ViewController {
public:
    explicit RequestLoadingController(std::shared_ptr<ProgressBar> progressBar);
    std::string_view className() const override { return "RequestLoadingController"; }

    std::shared_ptr<ProgressBar> progressBar;

    void viewDidLoad() override;
    void viewDidLayoutSubviews() override;
    void viewDidAppear(bool animated) override;
};

class RequestContainerController;

// What the container hands the conversation it embeds.
struct ConversationScreenInput {
    std::optional<std::string> requestId;
    mirrowset::Configurations configs;
    std::shared_ptr<RequestUiConfiguration> configuration;
    std::shared_ptr<ProgressBar> progressBar;
    std::shared_ptr<CRVToastViewWrapper> toastWrapper;
    bool attachmentsEnabled = false;
    std::int64_t maxAttachmentSize = 0;
    bool ticketClosed = false;
    std::shared_ptr<Cache> ticketsCache;
};

// What the container hands the form that creates a ticket.
struct CreateRequestScreenInput {
    bool requiresName = false;
    bool requiresEmail = false;
    bool showReferrerLogo = false;
    std::optional<std::string> referrerUrl;
    bool attachmentsEnabled = false;
    std::int64_t maxAttachmentSize = 0;
    mirrowset::Configurations configs;
    std::shared_ptr<RequestUiConfiguration> configuration;
    std::shared_ptr<ProgressBar> progressBar;
};

// The ticket screen a host gets: it picks, from settings and identity, a spinner, the
// conversation, the form that creates a ticket, or its own end, and swaps that child in.
// Shows the conversation's agents in its title. Main thread.
class RequestContainerController final : public ContainerViewController,
                                         public CRVContainerChildControllerDelegate,
                                         public NavigationItemDelegate {
public:
    // Null when the screen could not be built.
    using ConversationScreenBuilder =
        std::function<uikit::ViewController::Ptr(const ConversationScreenInput&, RequestContainerController&)>;
    using CreateRequestScreenBuilder =
        std::function<uikit::ViewController::Ptr(const CreateRequestScreenInput&, RequestContainerController&)>;

    // Subscribes to the shared store and starts the container afresh in it. Without a cache, one
    // for "Tickets" is made under the store module.
    static std::shared_ptr<RequestContainerController> make(std::optional<std::string> requestId,
                                                            mirrowset::ConfigurationList configurations,
                                                            std::optional<corvane::StoreModule> storeModule,
                                                            std::shared_ptr<Cache> ticketsCache = nullptr,
                                                            bool ticketClosed = false);
    ~RequestContainerController() override;
    std::string_view className() const override { return "RequestContainerController"; }

    RequestContainerState state;
    std::weak_ptr<CRVContainerChildControllerDelegate> childDelegate;
    std::shared_ptr<ProgressBar> progressBar;
    std::shared_ptr<AgentNamesView> agentNamesView;
    std::shared_ptr<AvatarTitle> avatarTitle;
    std::shared_ptr<CRVToastViewWrapper> toastWrapper;
    std::shared_ptr<Cache> ticketsCache;
    // Asks before the way out drops what the child holds unsent; made on first appearance.
    std::shared_ptr<DiscardEditsController> discardEditsController;

    // How the children are made; the library's own screens unless replaced.
    ConversationScreenBuilder conversationScreenBuilder = defaultConversationScreenBuilder();
    CreateRequestScreenBuilder createRequestScreenBuilder = defaultCreateRequestScreenBuilder();
    static ConversationScreenBuilder defaultConversationScreenBuilder();
    static CreateRequestScreenBuilder defaultCreateRequestScreenBuilder();

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;

    // A 401: the ticket slices go back to their defaults and the screen leaves.
    void unauthorizedHandler();

    uikit::NavigationItem& navItem() override { return navigationItem(); }
    // The child is done: the screen leaves as for `end`, and its own delegate hears of it.
    void willDismiss() override;
    // The child's send button, which sits on this screen's bar.
    void setRightBarButtonItemEnabled(bool enabled) override;

    // The agents of a conversation, the latest to write first, each once.
    static std::vector<AgentAvatarInfo> agentsOf(const RequestTableState& table);

private:
    struct Tag {};

public:
    RequestContainerController(Tag, std::optional<std::string> requestId, mirrowset::Configurations configs,
                               std::shared_ptr<Cache> ticketsCache, bool ticketClosed);

private:
    void subscribe();
    void render(const RequestContainerState& newState);
    void showConversation();
    void showCreateRequest();
    void showAgents(const RequestTableState& table);
    void settingsFetchFailed();
    void leave();
    // Starts the container afresh in the shared slice, or, not `drawn`, takes the slice back as it was.
    void initialize(std::optional<std::string> requestId, bool drawn);

    std::optional<std::string> requestId_;
    mirrowset::Configurations configs_;
    bool ticketClosed_ = false;
    bool rendered_ = false;
    // Whether the shared container slice holds this screen's start. Another container that starts
    // takes it; this one ignores that container's states and takes the slice back as it shows again.
    bool ownsState_ = false;
    bool initializing_ = false;
    platform::ObservationToken unauthorizedObserver_;
};

} // namespace belvakit
