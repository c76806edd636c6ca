#include "belvakit/entry/request_container_controller.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/request_controller.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/entry/Coordinator/dismiss_util.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/toolkit/progress_state_machine.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "belvakit/toolkit/ui_util.hpp"
#include "corvane/core_logger.hpp"
#include "dastrel/dispatcher_notifications.hpp"
#include "tivra/filters.hpp"
#include "tivra/store.hpp"
#include "uikit/navigation_controller.hpp"

#include <algorithm>
#include <set>
#include <utility>
#include <variant>

namespace belvakit {

namespace {

// Ids are server numbers or the device's own UUIDs; an id that could not name a file of the
// tickets cache names no conversation.
bool namesConversation(const std::string& requestId) {
    return !requestId.empty() && requestId != "." && requestId != ".." && requestId.find('/') == std::string::npos &&
           requestId.find('\0') == std::string::npos;
}

} // namespace

RequestLoadingController::RequestLoadingController(std::shared_ptr<ProgressBar> bar) : progressBar(std::move(bar)) {}

void RequestLoadingController::viewDidLoad() {
    view()->setBackgroundColor(CRVLegacyTheme::currentAppliedTheme()->primaryBackgroundColor);
    view()->setAccessibilityIdentifier("CRVrequestLoadingView");
    if (!progressBar) return;
    // The bar is shared with the screens that come after; it moves here from wherever it was.
    progressBar->removeFromSuperview();
    progressBar->setContainerView(view());
}

void RequestLoadingController::viewDidLayoutSubviews() {
    if (!progressBar || progressBar->superview() != view().get()) return;
    const auto bounds = view()->bounds();
    progressBar->setFrame({0, topLayoutGuideLength(), bounds.width(), ProgressBar::defaultHeight});
}

void RequestLoadingController::viewDidAppear(bool animated) {
    uikit::ViewController::viewDidAppear(animated);
    if (progressBar) progressBar->stateMachine()->begin(sharedProgressSteps());
}

RequestContainerController::RequestContainerController(Tag, std::optional<std::string> requestId,
                                                       mirrowset::Configurations configs, std::shared_ptr<Cache> cache,
                                                       bool ticketClosed)
    : progressBar(ProgressBar::make()),
      agentNamesView(uikit::make<AgentNamesView>()),
      toastWrapper(uikit::make<CRVToastViewWrapper>()),
      ticketsCache(std::move(cache)),
      requestId_(std::move(requestId)),
      configs_(std::move(configs)),
      ticketClosed_(ticketClosed) {}

RequestContainerController::~RequestContainerController() = default;

std::shared_ptr<RequestContainerController> RequestContainerController::make(
    std::optional<std::string> requestId, mirrowset::ConfigurationList configurations,
    std::optional<corvane::StoreModule> storeModule, std::shared_ptr<Cache> ticketsCache, bool ticketClosed) {
    if (!ticketsCache && storeModule)
        ticketsCache = ConcreteCache::make(&*storeModule, ConcreteCache::ticketsDirectory, true);
    // An empty id names no ticket: the screen is for a new one.
    if (requestId && requestId->empty()) requestId.reset();
    mirrowset::Configurations configs(std::move(configurations));
    configs.addDefaultConfigIfNeeded<RequestUiConfiguration>();
    auto controller = std::make_shared<RequestContainerController>(Tag{}, requestId, configs, std::move(ticketsCache),
                                                                   ticketClosed);
    controller->subscribe();
    controller->initialize(std::move(requestId), true);
    const auto store = sharedStore();
    // The slice may have held this very start already, which the listener's filter keeps quiet.
    if (!controller->rendered_)
        if (const auto* current = store->state().valueOfType<RequestContainerState>()) controller->render(*current);
    return controller;
}

void RequestContainerController::initialize(std::optional<std::string> requestId, bool drawn) {
    RequestContainerActions::Initalize initialize;
    initialize.requestId = std::move(requestId);
    initialize.configs = configs_;
    initialize.ticketClosed = ticketClosed_;
    const auto kept = state;
    initializing_ = true;
    ownsState_ = drawn;
    sharedStore()->dispatch(initialize);
    // Taken back: the slice is this screen's again as it was left, and the child on show stays.
    if (!drawn) sharedStore()->reset(kept);
    initializing_ = false;
    ownsState_ = true;
}

void RequestContainerController::subscribe() {
    const auto store = sharedStore();
    std::weak_ptr<RequestContainerController> weak =
        std::static_pointer_cast<RequestContainerController>(shared_from_this());
    store
        ->addListener<RequestContainerState>(std::nullopt, tivra::EqualsFilter,
                                             [weak](const RequestContainerState& newState) {
                                                 if (auto self = weak.lock(); self && self->ownsState_)
                                                     self->render(newState);
                                             })
        .linkLifeCycleTo(*this);
    store
        ->addListener<RequestTableState>(std::nullopt, tivra::EqualsFilter,
                                         [weak](const RequestTableState& table) {
                                             if (auto self = weak.lock()) self->showAgents(table);
                                         })
        .linkLifeCycleTo(*this);
    store
        ->addActionListener([weak](const tivra::Action& action) {
            const auto self = weak.lock();
            if (!self) return;
            // Another container starts: its states are not this screen's.
            if (tivra::actionAs<RequestContainerActions::Initalize>(action) && !self->initializing_) self->ownsState_ = false;
            if (tivra::actionAs<RequestContainerActions::SettingsFetchFailed>(action) && self->ownsState_)
                self->settingsFetchFailed();
        })
        .linkLifeCycleTo(*this);
    unauthorizedObserver_ = platform::NotificationCenter::defaultCenter().addObserver(
        dastrel::DispatcherNotifications::UnauthorizedNotificationName, nullptr,
        [weak](const platform::Notification&) {
            if (auto self = weak.lock()) self->unauthorizedHandler();
        });
}

void RequestContainerController::viewDidLoad() {
    view()->setBackgroundColor(CRVLegacyTheme::currentAppliedTheme()->primaryBackgroundColor);
    if (navigationItem().title.empty()) setTitle(localized(LocalizedKey::requestsCreateRequestTitle));
}

void RequestContainerController::viewWillAppear(bool animated) {
    ContainerViewController::viewWillAppear(animated);
    if (!discardEditsController) discardEditsController = DiscardEditsController::make(shared_from_this());
    discardEditsController->editSource = std::dynamic_pointer_cast<DiscardEditsControllerEditSource>(activeController());
    discardEditsController->prepare();
    // Back from under another container.
    if (!ownsState_) initialize(requestId_, false);
    // Settings are read at every appearance; an unchanged answer redraws nothing.
    sharedStore()->dispatch(RequestContainerActions::GetSettings{});
}

void RequestContainerController::render(const RequestContainerState& newState) {
    rendered_ = true;
    state = newState;
    switch (state.requestScreenType.kind) {
    case RequestScreenType::Kind::loading:
        setActiveController(std::make_shared<RequestLoadingController>(progressBar));
        break;
    case RequestScreenType::Kind::end: leave(); break;
    case RequestScreenType::Kind::conversation: showConversation(); break;
    case RequestScreenType::Kind::noConversation: showCreateRequest(); break;
    }
    if (!state.configs) progressBar->stateMachine()->queueCompleted();
}

void RequestContainerController::showConversation() {
    if (state.requestId && !namesConversation(*state.requestId)) {
        // Its conversation could be kept nowhere on the device, and what the user wrote would be lost.
        corvane::CoreLogger::error("Not a request id: " + *state.requestId + ". Dismissing Request creation");
        leave();
        return;
    }
    const auto configuration = state.configs ? state.configs->configuration<RequestUiConfiguration>() : nullptr;
    uikit::ViewController::Ptr child;
    // Without its configuration the conversation itself says what is missing.
    if (state.configs && ticketsCache && conversationScreenBuilder) {
        ConversationScreenInput input;
        input.requestId = state.requestId;
        input.configs = *state.configs;
        input.configuration = configuration;
        input.progressBar = progressBar;
        input.toastWrapper = toastWrapper;
        input.attachmentsEnabled = state.settings ? state.settings->attachmentsEnabled : false;
        input.maxAttachmentSize = state.settings ? state.settings->maxAttachmentSize : 0;
        input.ticketClosed = state.ticketClosed;
        input.ticketsCache = ticketsCache;
        child = conversationScreenBuilder(input, *this);
    }
    if (!child) {
        corvane::CoreLogger::error("Failed to create conversations controller");
        return;
    }
    setActiveController(child);
    if (!avatarTitle) {
        const double width = std::max(0.0, view()->bounds().width() - 160);
        avatarTitle = std::make_shared<AvatarTitle>(shared_from_this(), localized(LocalizedKey::requestsCreateRequestTitle),
                                                    ConcreteCache::named(ConcreteCache::avatarsDirectory),
                                                    agentNamesView, width, makeAttachmentsProvider());
    }
    if (const auto* table = sharedStore()->state().valueOfType<RequestTableState>()) showAgents(*table);
}

void RequestContainerController::showCreateRequest() {
    const auto configuration = state.configs ? state.configs->configuration<RequestUiConfiguration>() : nullptr;
    uikit::ViewController::Ptr child;
    if (createRequestScreenBuilder) {
        CreateRequestScreenInput input;
        input.requiresName = state.requestScreenType.requiresName;
        input.requiresEmail = state.requestScreenType.requiresEmail;
        if (state.settings) {
            input.showReferrerLogo = state.settings->showReferrerLogo;
            input.referrerUrl = state.settings->referrerUrl;
            input.attachmentsEnabled = state.settings->attachmentsEnabled;
            input.maxAttachmentSize = state.settings->maxAttachmentSize;
        }
        input.configs = state.configs.value_or(mirrowset::Configurations());
        input.configuration = configuration;
        input.progressBar = progressBar;
        child = createRequestScreenBuilder(input, *this);
    }
    if (!child) {
        corvane::CoreLogger::error("Failed to start create request controller");
        return;
    }
    setActiveController(child);
    if (discardEditsController)
        discardEditsController->editSource = std::dynamic_pointer_cast<DiscardEditsControllerEditSource>(child);
    // The form's send button sits on this screen's bar, with a plain title.
    auto& item = navigationItem();
    item.rightBarButtonItem = std::exchange(child->navigationItem().rightBarButtonItem, nullptr);
    avatarTitle.reset();
    item.titleView = nullptr;
    item.title = child->title().empty() ? localized(LocalizedKey::requestsCreateRequestTitle) : child->title();
    if (!CRVUIUtil::isOlderVersion("11.0")) item.largeTitleDisplayMode = 2;
    if (auto* navigation = navigationController()) navigation->refreshBar();
}

std::vector<AgentAvatarInfo> RequestContainerController::agentsOf(const RequestTableState& table) {
    std::vector<AgentAvatarInfo> agents;
    std::set<std::int64_t> seen;
    const std::string requestId = table.remoteId.value_or(table.localId.value_or(""));
    for (auto message = table.tableData.rbegin(); message != table.tableData.rend(); ++message) {
        message->visit([&](const auto& record) {
            if constexpr (IdentifiableUserMessage<std::decay_t<decltype(record)>>) {
                if (!seen.insert(record.userID).second) return;
                agents.push_back({record.avatarURL, nullptr, requestId, record.name, record.userID});
            }
        });
    }
    return agents;
}

void RequestContainerController::showAgents(const RequestTableState& table) {
    if (!avatarTitle || state.requestScreenType != RequestScreenType::conversation()) return;
    // Another conversation's table while the child's is taken over.
    if (const auto* child = dynamic_cast<const RequestController*>(activeController().get()); child && !child->ownsConversation())
        return;
    avatarTitle->setAgents(agentsOf(table));
}

void RequestContainerController::settingsFetchFailed() {
    if (state.requestScreenType != RequestScreenType::loading()) return;
    std::weak_ptr<RequestContainerController> weak =
        std::static_pointer_cast<RequestContainerController>(shared_from_this());
    // The wait is over: the bar stops promising, and starts again with the retry.
    progressBar->stateMachine()->queueCompleted();
    toastWrapper->showErrorInViewController(shared_from_this(), localized(LocalizedKey::helpCenterSupportContactError),
                                            localized(LocalizedKey::helpCenterToastRetryButton), [weak] {
                                                const auto self = weak.lock();
                                                if (!self) return;
                                                self->progressBar->stateMachine()->begin(sharedProgressSteps());
                                                sharedStore()->dispatch(RequestContainerActions::GetSettings{});
                                            });
}

void RequestContainerController::unauthorizedHandler() {
    corvane::CoreLogger::warn("401 received, clearing storage and dismissing Corvane UI");
    const auto store = sharedStore();
    // Sends still on their way go on without the table, their outcomes kept on the device: a
    // message that the 401 fails stays there as failed instead of vanishing with the slice.
    store->dispatch(Actions::InitializeRequestControllerState{});
    for (const char* key : {"InputFieldState", "CreateRequestState", "RequestTableState", "RequestContainerState"}) {
        std::any initial = initialSharedSlice(key);
        if (initial.has_value()) store->reset(std::move(initial), key);
    }
    leave();
}

void RequestContainerController::willDismiss() {
    const auto keep = shared_from_this();
    leave();
    if (auto delegate = childDelegate.lock()) delegate->willDismiss();
}

void RequestContainerController::setRightBarButtonItemEnabled(bool enabled) {
    if (const auto& send = navigationItem().rightBarButtonItem) send->enabled = enabled;
    auto* navigation = navigationController();
    if (navigation && navigation->topViewController() == this) navigation->refreshBar();
}

void RequestContainerController::leave() { DismissUtil::popOrDismiss(*this, true); }

} // namespace belvakit
