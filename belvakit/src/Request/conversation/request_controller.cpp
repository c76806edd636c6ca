#include "belvakit/Request/conversation/request_controller.hpp"

#include "belvakit/Request/conversation/actions.hpp"
#include "belvakit/Request/conversation/conversation_recorder.hpp"
#include "belvakit/Request/conversation/input_field_actions.hpp"
#include "belvakit/Request/conversation/local_messages.hpp"
#include "belvakit/Request/queue/comment_mapping.hpp"
#include "belvakit/Request/queue/request_operations.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"
#include "belvakit/attachments/attachment_preview.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/attachments/cache_keys.hpp"
#include "belvakit/deeplinks/help_center_action_handler.hpp"
#include "belvakit/deeplinks/usage_telemetry.hpp"
#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/entry/shared_store.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "platform/main_queue.hpp"
#include "platform/trimming.hpp"
#include "tivra/state_key.hpp"
#include "uikit/alert_controller.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"

#include <algorithm>
#include <cctype>

namespace belvakit {

namespace {

using corvane::CoreLogger;
using tivra::actionAs;

// The platform's preview of an attachment: the picture, or the file's name and place.
class AttachmentPreviewController final : public uikit::ViewController {
public:
    AttachmentPreviewController(std::string title, platform::ImagePtr image, std::optional<std::string> file)
        : image_(std::move(image)), file_(std::move(file)) {
        setTitle(std::move(title));
    }
    std::string_view className() const override { return "QLPreviewController"; }
    const platform::ImagePtr& image() const { return image_; }
    const std::optional<std::string>& file() const { return file_; }

    void viewDidLoad() override {
        view()->setBackgroundColor(platform::Color::black());
        view()->setAccessibilityIdentifier("CRVattachmentPreview");
        if (image_) {
            picture_ = uikit::make<uikit::ImageView>(image_);
            picture_->contentMode = uikit::ContentMode::scaleAspectFit;
            view()->addSubview(picture_);
        }
        caption_ = uikit::make<uikit::Label>();
        caption_->setText(title());
        caption_->setTextColor(platform::Color::white());
        caption_->setTextAlignment(uikit::TextAlignment::center);
        caption_->setNumberOfLines(0);
        view()->addSubview(caption_);
        // A tap anywhere closes the preview.
        view()->addTapAction([this] { dismissViewController(true); });
    }
    void viewWillLayoutSubviews() override {
        const auto bounds = view()->bounds();
        if (picture_) picture_->setFrame({0, 60, bounds.width(), std::max(0.0, bounds.height() - 140)});
        caption_->setFrame({16, bounds.height() - 70, std::max(0.0, bounds.width() - 32), 50});
    }

private:
    platform::ImagePtr image_;
    std::optional<std::string> file_;
    std::shared_ptr<uikit::ImageView> picture_;
    std::shared_ptr<uikit::Label> caption_;
};

// A UUID, as the device names its own messages and tickets.
bool isDeviceId(const std::string& id) {
    if (id.size() != 36) return false;
    for (std::size_t i = 0; i < id.size(); ++i) {
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (dash != (id[i] == '-')) return false;
        if (!dash && !std::isxdigit(static_cast<unsigned char>(id[i]))) return false;
    }
    return true;
}

bool isImageRow(const Message& message) {
    return message.holds<UserImage>() || message.holds<AgentImage>();
}

std::string filenameOf(const Message& message) {
    return message.visit([](const auto& record) -> std::string {
        if constexpr (AttachmentMessage<std::decay_t<decltype(record)>>)
            return record.filename;
        else
            return {};
    });
}

platform::ImagePtr imageOf(const Message& message) {
    return message.visit([](const auto& record) -> platform::ImagePtr {
        if constexpr (ImageMessage<std::decay_t<decltype(record)>>)
            return record.image ? record.image : record.thumbnailImage;
        else
            return nullptr;
    });
}

bool downloaded(const Message& message) {
    return message.visit([](const auto& record) {
        if constexpr (FileMessage<std::decay_t<decltype(record)>>)
            return record.downloaded;
        else
            return false;
    });
}

} // namespace

// RequestDetailRefreshActionHandler

bool RequestDetailRefreshActionHandler::canHandle(const std::string& name) const { return name == actionName(requestId); }

void RequestDetailRefreshActionHandler::handle(const std::map<std::string, std::any>& info) {
    Actions::FetchRequest fetch;
    // Only this handler's own action reaches it, so without a usable "request_id" the ticket is
    // its own.
    fetch.requestId = requestId;
    if (const auto found = info.find("request_id"); found != info.end()) {
        if (const auto* text = std::any_cast<std::string>(&found->second))
            fetch.requestId = *text;
        else if (const auto* number = std::any_cast<std::int64_t>(&found->second))
            fetch.requestId = std::to_string(*number);
    }
    sharedStore()->dispatch(fetch);
}

bool RequestDetailRefreshActionHandler::isEqual(const corvane::ActionHandler& other) const {
    const auto* same = dynamic_cast<const RequestDetailRefreshActionHandler*>(&other);
    return same && same->requestId == requestId;
}

// RequestController

std::shared_ptr<RequestController> RequestController::make(const RequestUiConfiguration& configuration,
                                                           std::optional<std::string> requestId,
                                                           std::shared_ptr<ProgressBar> progressBar,
                                                           std::shared_ptr<CRVToastViewWrapper> toastWrapper,
                                                           bool attachmentsAllowed, std::int64_t maxFileAttachmentSize,
                                                           std::shared_ptr<Cache> ticketsCache,
                                                           std::shared_ptr<tivra::Store> store) {
    return std::make_shared<RequestController>(Tag{}, configuration, std::move(requestId), std::move(progressBar),
                                               std::move(toastWrapper), attachmentsAllowed, maxFileAttachmentSize,
                                               std::move(ticketsCache), std::move(store));
}

RequestController::RequestController(Tag, const RequestUiConfiguration& configuration,
                                     std::optional<std::string> requestId, std::shared_ptr<ProgressBar> progressBar,
                                     std::shared_ptr<CRVToastViewWrapper> toastWrapper, bool attachmentsAllowed,
                                     std::int64_t maxFileAttachmentSize, std::shared_ptr<Cache> ticketsCache,
                                     std::shared_ptr<tivra::Store> store)
    : requestId_(std::move(requestId)), configuration_(std::make_shared<RequestUiConfiguration>(configuration)),
      attachmentsAllowed_(attachmentsAllowed), maxFileAttachmentSize_(maxFileAttachmentSize),
      progressBar_(progressBar ? std::move(progressBar) : ProgressBar::make()),
      toastWrapper_(toastWrapper ? std::move(toastWrapper) : uikit::make<CRVToastViewWrapper>()),
      store_(store ? std::move(store) : sharedStore()) {
    configs_ = mirrowset::Configurations({configuration_});
    ticketsCache_ = ticketsCache ? std::move(ticketsCache) : ConcreteCache::named(ConcreteCache::ticketsDirectory);
    attachmentsCache_ = ticketsCache_;
    requestFetcher_ = RequestFetcher(makeRequestProvider(), ticketsCache_);
    setTitle(localized(LocalizedKey::requestsCreateRequestTitle));
}

RequestController::~RequestController() {
    unregisterRefreshHandler();
    // The send queue keeps the conversation's sends still on their way, and records their
    // outcomes on the device, once the table is another's: without a screen nothing else would.
    if (ownsConversation_ && platform::MainQueue::shared().isMainThread())
        store_->dispatch(Actions::InitializeRequestControllerState{});
}

std::shared_ptr<RequestController> RequestController::self() {
    return std::static_pointer_cast<RequestController>(shared_from_this());
}

const RequestTableState* RequestController::tableState() const {
    return store_->state().value<RequestTableState>(tivra::stateKeyOf<RequestTableState>());
}

void RequestController::viewDidLoad() {
    CRVUIViewController::viewDidLoad();
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    view()->setBackgroundColor(theme->primaryBackgroundColor);
    std::weak_ptr<RequestController> weak = self();
    auto dispatch = [weak](const tivra::Action& action) {
        if (auto screen = weak.lock(); screen && screen->ownsConversation_) screen->store_->dispatch(action);
    };
    // What the user does on this screen makes its conversation the one in the shared slices.
    auto act = [weak](const tivra::Action& action) {
        if (auto screen = weak.lock()) {
            screen->reclaimConversation();
            screen->store_->dispatch(action);
        }
    };

    auto tableView = uikit::make<uikit::TableView>();
    tableView->setBackgroundColor(theme->primaryBackgroundColor);
    auto provider = makeAttachmentsProvider();
    auto fetcher = std::make_shared<AttachmentFetcher>(FileFetcher{provider, attachmentsCache_},
                                                       ImageFetcher{provider, attachmentsCache_});
    requestTable_ = RequestTable::make(tableView, std::move(fetcher));
    requestTable_->didTapCell = [act](const Message& message) {
        Actions::CellTapped tapped;
        tapped.message = message;
        act(tapped);
    };
    requestTable_->didTapOnErrorButton = [weak](const Message& message) {
        if (auto screen = weak.lock()) screen->showActions(message);
    };
    requestTable_->openHCArticleID = [act](std::shared_ptr<corvane::ActionHandler> handler, const platform::URL& url) {
        act(Actions::OpenHelpCenter(std::move(handler), url));
    };
    requestTable_->attachmentFetched = [dispatch](const Message& message) {
        Actions::AttachmentFetched fetched;
        fetched.message = message;
        dispatch(fetched);
    };

    inputField_ = uikit::make<InputField>();
    inputField_->sendButtonTapped = [weak](const std::string& text, const std::vector<InputAttachmentViewStatePtr>& attachments) {
        if (auto screen = weak.lock()) screen->sendButtonTapped(text, attachments);
    };
    inputField_->textChanged = [weak, act](const std::string& text) {
        Actions::PlaceHolderTextViewTextChanged changed;
        changed.text = text;
        act(changed);
        // The field grows with its text.
        if (auto screen = weak.lock()) screen->view()->setNeedsLayout();
    };
    inputField_->editingBegan = [act](const std::string& text) {
        Actions::PlaceHolderTextViewEditingBegan began;
        began.text = text;
        act(began);
    };
    inputField_->editingEnded = [dispatch](const std::string& text) {
        Actions::PlaceHolderTextViewEditingEnded ended;
        ended.text = text;
        dispatch(ended);
    };
    inputField_->attachButtonTapped = [weak, act] {
        auto screen = weak.lock();
        if (!screen) return;
        screen->reclaimConversation();
        Actions::AttachmentButtonStateChanged changed;
        changed.isSelected = screen->inputField_->state().attachmentState != AttachmentButtonState::selected;
        act(changed);
    };
    inputField_->attachmentRemoveTapped = [act](int index, const std::string& identifier) {
        Actions::AttachmentRemoved removed;
        removed.index = index;
        removed.identifier = identifier;
        act(removed);
    };

    contentView()->addSubview(tableView);
    contentView()->addSubview(inputField_);
    inputBackdrop_ = uikit::make<uikit::View>();
    if (const auto& colour = inputField_->backgroundColor()) inputBackdrop_->setBackgroundColor(*colour);
    view()->insertSubview(inputBackdrop_, 0);
    if (!progressBar_->superview()) progressBar_->setContainerView(view());
    backgroundNotificationObserver_ = platform::NotificationCenter::defaultCenter().addObserver(
        applicationWillEnterForegroundNotification, nullptr, [weak](const platform::Notification&) {
            if (auto screen = weak.lock()) screen->refresh();
        });
    start();
}

void RequestController::start() {
    if (started_) return;
    started_ = true;
    InputFieldState input = initialInputFieldState();
    if (!attachmentsAllowed_) input.attachmentState = AttachmentButtonState::hidden;
    claimConversation(input);

    subscribe();
    inputField_->render(input);
    if (ticketClosed) store_->dispatch(Actions::TicketClosed{});

    if (!configuration_->fileAttachments.empty()) {
        if (!attachmentsAllowed_) {
            CoreLogger::error("File attachments are disabled at account level, unabled to pre-attach files to request");
        } else {
            Actions::InitialFileAttachmentsAdded initial;
            initial.fileAttachments = configuration_->fileAttachments;
            initial.maxFileAttachmentSize = maxFileAttachmentSize_;
            store_->dispatch(initial);
        }
    }
    if (requestId_) sendRequestViewed(*requestId_);
    openConversation();
}

void RequestController::claimConversation(const InputFieldState& input) {
    auto& store = *store_;
    // The container's settings reached the slices before this screen reset them.
    const auto* before = tableState();
    const auto systemMessage = before ? before->systemMessage : std::nullopt;
    claiming_ = true;
    store.dispatch(Actions::InitializeRequestControllerState{});
    claiming_ = false;
    ownsConversation_ = true;
    if (const auto* table = tableState()) {
        RequestTableState settled = *table;
        settled.maxAttachmentSize = maxFileAttachmentSize_;
        settled.systemMessage = systemMessage;
        store.reset(std::move(settled));
    }
    store.reset(input);
    store.dispatch(RequestQueueActions::ResetQueue{});
    RequestQueueActions::SetConfig config;
    config.config = *configuration_;
    store.dispatch(config);
}

bool RequestController::reclaimConversation() {
    if (ownsConversation_ || !started_) return false;
    CoreLogger::debug("Taking the conversation back: " + requestId_.value_or(conversationKey_.value_or("new")));
    // What the user has in the field stays there.
    claimConversation(inputField_->state());
    openConversation();
    return true;
}

void RequestController::subscribe() {
    std::weak_ptr<RequestController> weak = self();
    auto& store = *store_;
    store.addListener<RequestTableState>(std::nullopt, tivra::EqualsFilter, [weak](const RequestTableState&) {
             if (auto screen = weak.lock()) screen->stateChanged();
         }).linkLifeCycleTo(lifetime_);
    store.addListener<InputFieldState>(std::nullopt, tivra::EqualsFilter, [weak](const InputFieldState& state) {
             if (auto screen = weak.lock(); screen && screen->ownsConversation_) {
                 screen->inputField_->render(state);
                 screen->view()->setNeedsLayout();
             }
         }).linkLifeCycleTo(lifetime_);
    store.addActionListener([weak](const tivra::Action& action) {
             if (auto screen = weak.lock()) screen->actionSeen(action);
         }).linkLifeCycleTo(lifetime_);
}

void RequestController::openConversation() {
    std::string id;
    std::string key;
    bool localOnly = false;
    idStore_.reload();
    // Opened by the device's own id, or shown again as a new ticket: the ticket the help desk made
    // for that conversation meanwhile, if any, is the one to talk to.
    if (const auto local = requestId_ ? requestId_ : conversationKey_; local && !idStore_.remoteToLocal.contains(*local)) {
        for (const auto& [remote, kept] : idStore_.remoteToLocal)
            if (kept == *local && remote != kept) requestId_ = remote;
    }
    if (requestId_) {
        id = *requestId_;
        const auto mapped = idStore_.remoteToLocal.find(id);
        key = mapped != idStore_.remoteToLocal.end() ? mapped->second : id;
        const bool mappedTo = std::any_of(idStore_.remoteToLocal.begin(), idStore_.remoteToLocal.end(),
                                          [&](const auto& entry) { return entry.second == id; });
        // The device's own ids are UUIDs, the help desk's numbers: an unmapped UUID names a ticket of
        // this device, even before a failure listed it.
        localOnly = mapped == idStore_.remoteToLocal.end() && !mappedTo &&
                    (isDeviceId(id) ||
                     std::find(idStore_.localIdList.begin(), idStore_.localIdList.end(), id) != idStore_.localIdList.end());
    } else if (conversationKey_) {
        // A new ticket with messages but no id at the help desk yet: they are on the device alone.
        id = key = *conversationKey_;
        localOnly = true;
    } else {
        return;
    }
    if (!localOnly) {
        // The help desk's ticket, known as such and by its key before the saved copy comes back: a
        // send meanwhile is kept under the ticket, and never taken for a ticket of the device's own.
        knowTicket(id, key);
    } else {
        // Named before the disk answers: a message sent meanwhile stays with this conversation
        // rather than naming a new one after itself.
        Actions::NameConversation named;
        named.localId = key;
        store_->dispatch(named);
    }
    savedCopyRead_ = false;
    awaitedCopy_ = key;
    progressBar_->stateMachine()->begin(sharedProgressSteps());
    std::weak_ptr<RequestController> weak = self();
    requestFetcher_.loadFromDisk(key, [weak, id, key, localOnly](std::vector<Message> messages,
                                                                 std::map<std::string, std::string> map,
                                                                 std::optional<std::string> remote, bool closed) {
        auto screen = weak.lock();
        if (!screen) return;
        // Another screen took the conversation meanwhile: it gets it back, and reads it again, when shown.
        if (!screen->ownsConversation_) return screen->progressBar_->stateMachine()->queueCompleted();
        const auto* table = screen->tableState();
        screen->skipNextPersist_ = table && table->tableData.empty();
        screen->takeSavedCopy(key, std::move(messages), std::move(map));
        screen->skipNextPersist_ = false;
        if (closed) screen->store_->dispatch(Actions::TicketClosed{});
        // The send queue wrote the ticket it made into the file, while another screen held that
        // ticket under a key of its own: the conversation talks to that ticket, not a new one.
        if (localOnly && remote && !screen->queueWorking_) {
            screen->requestId_ = *remote;
            screen->knowTicket(*remote, key);
            return screen->fetchComments(*remote);
        }
        if (localOnly) {
            Actions::LoadedFailedRequest failed;
            failed.requestId = id;
            screen->store_->dispatch(failed);
            if (!screen->queueWorking_) screen->progressBar_->stateMachine()->queueCompleted();
            return;
        }
        screen->fetchComments(id);
    });
}

void RequestController::adoptKey(const std::string& key) {
    savedCopyRead_ = false;
    awaitedCopy_ = key;
    std::weak_ptr<RequestController> weak = self();
    requestFetcher_.loadFromDisk(key, [weak, key](std::vector<Message> messages, std::map<std::string, std::string> map,
                                                  std::optional<std::string>, bool) {
        auto screen = weak.lock();
        if (!screen || !screen->ownsConversation_) return;
        screen->takeSavedCopy(key, std::move(messages), std::move(map));
    });
}

void RequestController::takeSavedCopy(const std::string& key, std::vector<Message> messages,
                                      std::map<std::string, std::string> map) {
    // Only the copy of the key the screen is kept under now ends the careful writes.
    if (awaitedCopy_ == key) savedCopyRead_ = true;
    Actions::MessagesLoadedFromDisk loaded;
    loaded.messages = std::move(messages);
    loaded.mapLocalToRemote = std::move(map);
    loaded.localId = key;
    store_->dispatch(loaded);
}

void RequestController::knowTicket(const std::string& requestId, const std::string& key) {
    RequestQueueActions::SetRequestId known;
    known.id = requestId;
    store_->dispatch(known);
    Actions::SetRemoteId remote;
    remote.remoteRequestID = requestId;
    remote.localId = key;
    store_->dispatch(remote);
}

void RequestController::fetchComments(const std::string& requestId) {
    std::weak_ptr<RequestController> weak = self();
    requestFetcher_.fetchComments(requestId, [weak, requestId](std::optional<std::vector<Request::Comment>> comments) {
        // Providers answer on any thread; the screen works on the main one.
        platform::MainQueue::shared().async([weak, requestId, comments = std::move(comments)] {
            auto screen = weak.lock();
            if (!screen) return;
            if (!screen->ownsConversation_) {
                // The table shows another ticket now; this one is read again when its screen shows.
            } else if (!comments) {
                screen->store_->dispatch(Actions::InitalFetchCommentsError{});
            } else {
                Actions::MessagesLoadedFromNetwork loaded;
                loaded.requestId = requestId;
                for (const auto& comment : *comments)
                    for (auto& message : messagesFromComment(comment)) loaded.messages.push_back(std::move(message));
                screen->store_->dispatch(loaded);
            }
            // A send under way keeps the bar until its queue is done.
            if (!screen->queueWorking_) screen->progressBar_->stateMachine()->queueCompleted();
        });
    });
}

void RequestController::stateChanged() {
    // Another ticket screen's conversation: neither shown, nor kept, nor taken for this one's.
    if (!ownsConversation_) return;
    const tivra::State state = store_->state();
    const auto* table = state.value<RequestTableState>(tivra::stateKeyOf<RequestTableState>());
    if (!table) return;
    if (table->localId)
        conversationKey_ = table->localId;
    else if (!requestId_ && !conversationKey_ && !table->tableData.empty())
        conversationKey_ = id(table->tableData.front());  // a new ticket is kept under its first message's id
    if (requestTable_) requestTable_->update(state);
    const auto store = store_;
    idStore_.reload();
    recordConversation(*table, idStore_, failedRemoteIdStore_, skipNextPersist_ ? nullptr : ticketsCache_,
                       [store](const tivra::Action& action) { store->dispatch(action); }, {.savedCopyRead = savedCopyRead_});
    skipNextPersist_ = false;

    if (const auto* input = state.value<InputFieldState>(tivra::stateKeyOf<InputFieldState>())) {
        const auto& texts = input->inputTextAndImageViewState.textViewState;
        const auto isAgent = [](const Message& message) { return !status(message).has_value(); };
        if (!texts.hasAgentMessages && std::any_of(table->tableData.begin(), table->tableData.end(), isAgent))
            store_->dispatch(Actions::AgentMessagesPosted{});
        else if (!texts.hasMessages && !table->tableData.empty())
            store_->dispatch(Actions::MessagesPosted{});
    }
    // A new ticket got its id: news of it can now be asked for.
    if (!requestId_ && table->remoteId) {
        requestId_ = table->remoteId;
        if (isVisible()) registerRefreshHandler();
    }
}

void RequestController::actionSeen(const tivra::Action& action) {
    if (actionAs<Actions::InitializeRequestControllerState>(action)) {
        // Another screen begins a conversation in the shared slices.
        if (!claiming_) ownsConversation_ = false;
        return;
    }
    if (!ownsConversation_) return;
    if (const auto* named = actionAs<Actions::NameConversation>(action); named && named->replacing) {
        if (const auto* table = tableState(); !table || table->localId != named->localId) adoptKey(named->localId);
    } else if (actionAs<RequestQueueActions::QueueCompleted>(action)) {
        queueWorking_ = false;
        progressBar_->stateMachine()->queueCompleted();
    } else if (actionAs<RequestQueueActions::DispatchDetails>(action) ||
               actionAs<RequestQueueActions::DispatchOperations>(action)) {
        queueWorking_ = true;
    } else if (actionAs<Actions::AttachmentTooBig>(action)) {
        toastWrapper_->showErrorInViewController(self(), localized(LocalizedKey::requestsCreateRequestAttachmentFileTooBig));
    } else if (actionAs<Actions::InitalFetchCommentsError>(action)) {
        std::weak_ptr<RequestController> weak = self();
        toastWrapper_->showErrorInViewController(self(), localized(LocalizedKey::requestsCommentListError),
                                                 localized(LocalizedKey::helpCenterToastRetryButton), [weak] {
                                                     auto screen = weak.lock();
                                                     if (!screen || !screen->requestId_) return;
                                                     if (screen->reclaimConversation()) return;
                                                     screen->progressBar_->stateMachine()->begin(sharedProgressSteps());
                                                     screen->fetchComments(*screen->requestId_);
                                                 });
    } else if (const auto* tapped = actionAs<Actions::CellTapped>(action)) {
        openAttachment(tapped->message);
    } else if (const auto* open = actionAs<Actions::OpenHelpCenter>(action)) {
        if (open->actionHandler)
            open->actionHandler->handle({{"url", open->url},
                                         {"controller", std::static_pointer_cast<uikit::ViewController>(self())},
                                         {"configs", configs_.list()}});
    } else if (const auto* fetch = actionAs<Actions::FetchRequest>(action)) {
        const auto* table = tableState();
        if ((requestId_ && fetch->requestId == *requestId_) || (table && table->remoteId == fetch->requestId)) refresh();
    }
}

void RequestController::refresh() {
    if (!ownsConversation_) return;  // the screen that holds the slices refreshes its own
    const auto* table = tableState();
    if (!table || !table->remoteId) return;
    RequestQueueActions::DispatchOperations operations;
    operations.operations.push_back(std::make_shared<FetchNewCommentsOperation>());
    store_->dispatch(operations);
}

void RequestController::sendButtonTapped(const std::string& text,
                                         const std::vector<InputAttachmentViewStatePtr>& attachments) {
    reclaimConversation();
    progressBar_->stateMachine()->begin(sharedProgressSteps());
    const UserMessage message = makeUserMessage(text);
    const auto messages = makeLocalMessages(message, attachments);

    RequestQueueActions::DispatchDetails details;
    details.id = message.id;
    details.body = text;
    details.conversation = conversationId();
    for (const auto& attachment : attachments) {
        const auto* attachable = dynamic_cast<const Attachable*>(attachment.get());
        auto upload = attachable ? attachable->attachment() : std::nullopt;
        if (!upload) continue;
        // Kept for a retry and for the preview.
        if (attachmentsCache_)
            for (const auto& row : messages)
                if (id(row) == upload->id) attachmentsCache_->storeIfAbsent(fileCacheKey(id(row), filenameOf(row)), upload->data);
        details.attachments.push_back(std::move(*upload));
    }

    Actions::NewMessages added;
    added.messages = messages;
    store_->dispatch(added);
    store_->dispatch(Actions::SendButtonTapped{});
    store_->dispatch(details);
}

std::vector<Message> RequestController::messagesOfSend(const Message& message) const {
    const auto* table = tableState();
    const std::string* parent = parentIdOf(message);
    const std::string text = parent ? *parent : id(message);
    std::vector<Message> send;
    if (table)
        for (const auto& row : table->tableData) {
            const std::string* rowParent = parentIdOf(row);
            if (id(row) == text || (rowParent && *rowParent == text)) send.push_back(row);
        }
    const bool hasTapped = std::any_of(send.begin(), send.end(), [&](const Message& row) { return id(row) == id(message); });
    if (!hasTapped) send.insert(send.begin(), message);
    return send;
}

std::vector<Message> RequestController::failedMessagesOfSend(const Message& message) const {
    std::vector<Message> send = messagesOfSend(message);
    const auto* table = tableState();
    std::erase_if(send, [table](const Message& row) {
        if (status(row) != DeliveryStatus::failed || !table) return true;
        return std::none_of(table->tableData.begin(), table->tableData.end(),
                            [&](const Message& shown) { return id(shown) == id(row); });
    });
    return send;
}

void RequestController::showActions(const Message& failed) {
    if (reclaimConversation()) return;  // the row was another screen's; this one's rows come back
    std::weak_ptr<RequestController> weak = self();
    auto sheet = uikit::AlertController::alertController("", "", uikit::AlertControllerStyle::actionSheet);
    // The send is looked up again when the choice runs: another sheet's retry or delete may have
    // run since this one showed, and acting on its rows twice would post them twice.
    sheet->addAction({localized(LocalizedKey::requestsCreateRequestFailedDelete), uikit::AlertActionStyle::destructive,
                      [weak, failed](const uikit::AlertAction&) {
                          auto screen = weak.lock();
                          if (!screen || screen->reclaimConversation()) return;
                          if (const auto messages = screen->failedMessagesOfSend(failed); !messages.empty())
                              screen->deleteMessages(messages);
                      }});
    sheet->addAction({localized(LocalizedKey::requestsCreateRequestFailedRetry), uikit::AlertActionStyle::defaultStyle,
                      [weak, failed](const uikit::AlertAction&) {
                          auto screen = weak.lock();
                          if (!screen || screen->reclaimConversation()) return;
                          if (const auto messages = screen->failedMessagesOfSend(failed); !messages.empty())
                              screen->retry(messages);
                      }});
    sheet->addAction({localized(LocalizedKey::requestsLeftBarButtonTitleCancel), uikit::AlertActionStyle::cancel, {}});
    presentViewController(sheet, true);
}

void RequestController::deleteMessages(const std::vector<Message>& messages) {
    const auto* table = tableState();
    if (!table) return;
    // Only a ticket of the device's own goes whole: the help desk's stays, with its other comments.
    const bool whole = messages.size() == table->tableData.size() && !table->remoteId;
    const auto localId = table->localId;
    Actions::DeleteMessages removed;
    removed.messages = messages;
    removed.isDeletingWholeTicket = whole;
    store_->dispatch(removed);
    idStore_.reload();
    if (whole && localId && idStore_.removeLocalId(*localId)) {
        platform::MainQueue::shared().async([store = store_, ticket = *localId] {
            Actions::DeleteRequestFromList gone;
            gone.ticketId = ticket;
            store->dispatch(gone);
        });
    }
}

std::optional<std::string> RequestController::conversationId() const {
    // Shown again, the screen knows its conversation before the saved copy names the table.
    if (const auto* table = tableState(); table && table->localId) return table->localId;
    return conversationKey_ ? conversationKey_ : requestId_;
}

void RequestController::retry(const std::vector<Message>& messages) {
    Actions::MoveMessagesToBottom moved;
    moved.messages = messages;
    store_->dispatch(moved);
    progressBar_->stateMachine()->begin(sharedProgressSteps());

    RequestQueueActions::DispatchDetails details;
    details.conversation = conversationId();
    std::vector<Message> files;
    for (const auto& message : messages) {
        if (const auto* text = message.getIf<UserMessage>()) {
            details.id = text->id;
            details.body = text->body;
        } else if (hasAttachment(message)) {
            if (details.id.empty())
                if (const auto* parent = parentIdOf(message)) details.id = *parent;
            files.push_back(message);
        }
    }
    if (details.id.empty()) {
        // Nothing that names the send: nothing goes to the queue, so nothing would end the bar.
        if (!queueWorking_) progressBar_->stateMachine()->queueCompleted();
        return;
    }
    // The bytes were kept when the message was first sent; a picture in memory does as well.
    auto send = [store = store_, details, files](const std::vector<std::optional<std::string>>& kept) mutable {
        for (std::size_t i = 0; i < files.size(); ++i) {
            const Message& file = files[i];
            const auto type = file.visit([](const auto& record) {
                if constexpr (AttachmentMessage<std::decay_t<decltype(record)>>)
                    return record.fileType;
                else
                    return FileType::unknown;
            });
            std::optional<std::string> data = i < kept.size() ? kept[i] : std::nullopt;
            if (!data)
                if (const auto image = imageOf(file)) {
                    InputImageViewModel model(image, id(file), std::nullopt, std::nullopt, type, filenameOf(file));
                    if (auto encoded = model.attachment()) data = std::move(encoded->data);
                }
            if (!data) continue;
            details.attachments.push_back({std::move(*data), id(file), type, filenameOf(file)});
        }
        store->dispatch(details);
    };
    if (!attachmentsCache_ || files.empty()) return send({});
    // The bytes take a while: the send stays this conversation's if the screen goes meanwhile.
    RequestQueueActions::SendComing coming;
    coming.id = details.id;
    store_->dispatch(coming);
    std::vector<std::string> keys;
    for (const auto& file : files) keys.push_back(fileCacheKey(id(file), filenameOf(file)));
    attachmentsCache_->run([cache = attachmentsCache_, keys, send]() mutable {
        auto kept = cache->readEntries(keys);
        platform::MainQueue::shared().async([send, kept = std::move(kept)]() mutable { send(kept); });
    });
}

void RequestController::openAttachment(const Message& message) {
    if (!hasAttachment(message)) return;
    const std::string filename = filenameOf(message);
    std::weak_ptr<RequestController> weak = self();
    if (isImageRow(message)) {
        if (const auto full = message.visit([](const auto& record) -> platform::ImagePtr {
            if constexpr (ImageMessage<std::decay_t<decltype(record)>>)
                return record.image;
            else
                return nullptr;
        })) {
            presentPreview(filename, full, std::nullopt);
            return;
        }
        if (!requestTable_ || !requestTable_->attachmentFetcher()) return;
        requestTable_->attachmentFetcher()->imageFetcher().fetch(message, false, [weak, filename](Message filled) {
            platform::MainQueue::shared().async([weak, filename, filled = std::move(filled)] {
                auto screen = weak.lock();
                if (!screen) return;
                const auto image = filled.visit([](const auto& record) -> platform::ImagePtr {
                    if constexpr (ImageMessage<std::decay_t<decltype(record)>>)
                        return record.image;
                    else
                        return nullptr;
                });
                if (!image) {
                    CoreLogger::error("Unable to show attachment: no image for " + filename);
                    return;
                }
                Actions::AttachmentFetched fetched;
                fetched.message = filled;
                screen->store_->dispatch(fetched);
                screen->presentPreview(filename, image, std::nullopt);
            });
        });
        return;
    }
    auto present = [weak, filename](const Message& file) {
        auto screen = weak.lock();
        if (!screen) return;
        if (!screen->attachmentsCache_) {
            CoreLogger::error("Unable to show attachment: no cache for " + filename);
            return;
        }
        AttachmentDetailPresenter presenter(file, *screen->attachmentsCache_);
        if (!presenter.canPresent()) {
            CoreLogger::error("Unable to show attachment: " + filename);
            return;
        }
        screen->presentPreview(filename, nullptr, presenter.previewItem().previewItemURL->string());
    };
    if (downloaded(message)) return present(message);
    if (!requestTable_ || !requestTable_->attachmentFetcher()) return;
    requestTable_->attachmentFetcher()->fileFetcher().fetch(message, [weak, present](Message file) {
        platform::MainQueue::shared().async([weak, present, file = std::move(file)] {
            auto screen = weak.lock();
            if (!screen) return;
            Actions::AttachmentFetched fetched;
            fetched.message = file;
            screen->store_->dispatch(fetched);
            present(file);
        });
    });
}

void RequestController::presentPreview(const std::string& title, platform::ImagePtr image,
                                       std::optional<std::string> file) {
    presentViewController(std::make_shared<AttachmentPreviewController>(title, std::move(image), std::move(file)), true);
}

void RequestController::registerRefreshHandler() {
    if (!requestId_) return;
    const auto core = corvane::Corvane::instance();
    if (!core) return;
    if (!requestRefreshHandler_ || requestRefreshHandler_->requestId != *requestId_)
        requestRefreshHandler_ = std::make_shared<RequestDetailRefreshActionHandler>(*requestId_);
    core->actionHandlerRegistry().add(requestRefreshHandler_);
}

void RequestController::unregisterRefreshHandler() {
    if (!requestRefreshHandler_) return;
    if (const auto core = corvane::Corvane::instance()) core->actionHandlerRegistry().remove(*requestRefreshHandler_);
}

void RequestController::viewWillAppear(bool animated) {
    CRVUIViewController::viewWillAppear(animated);
    reclaimConversation();
    registerForKeyboardNotifications();
    registerRefreshHandler();
}

void RequestController::viewDidAppear(bool animated) {
    CRVUIViewController::viewDidAppear(animated);
    // Help Center links in agents' comments open articles while the conversation shows; a handler
    // made anew replaces the one of an earlier visit, as they compare by account.
    if (const auto core = corvane::Corvane::instance()) {
        helpCenterHandler_ = HelpCenterActionHandler::forCurrentAccount();
        if (helpCenterHandler_) core->actionHandlerRegistry().add(helpCenterHandler_);
    }
    if (viewDidAppearBlock) std::exchange(viewDidAppearBlock, nullptr)();
}

void RequestController::viewWillDisappear(bool animated) {
    CRVUIViewController::viewWillDisappear(animated);
    unregisterRefreshHandler();
    if (const auto core = corvane::Corvane::instance(); core && helpCenterHandler_)
        core->actionHandlerRegistry().remove(*helpCenterHandler_);
}

void RequestController::viewDidLayoutSubviews() {
    CRVUIViewController::viewDidLayoutSubviews();
    const auto bounds = contentView()->bounds();
    const double inputHeight = std::min(bounds.height(), inputField_->sizeThatFits({bounds.width(), 0}).height);
    auto& table = *requestTable_->tableView();
    const uikit::Rect frame{0, 0, bounds.width(), bounds.height() - inputHeight};
    // A reader at the end stays there when the keyboard, the field or a turn of the device resizes the table.
    const bool follow = table.frame().size != frame.size && requestTable_->isAtBottom();
    table.setFrame(frame);
    if (follow) requestTable_->scrollToLast();
    inputField_->setFrame({0, bounds.height() - inputHeight, bounds.width(), inputHeight});
    const double inputTop = inputField_->convert(inputField_->bounds(), view().get()).minY();
    const auto whole = view()->bounds();
    inputBackdrop_->setFrame({0, inputTop, whole.width(), std::max(0.0, whole.height() - inputTop)});
    if (progressBar_->superview() == view().get())
        progressBar_->setFrame({0, topViewOffset(), view()->bounds().width(), ProgressBar::defaultHeight});
}

bool RequestController::hasUnsavedEdits() const {
    const auto* input = store_->state().valueOfType<InputFieldState>();
    return input && (!platform::trimmingWhitespaceAndNewlines(input->text()).empty() || !input->attachments().empty());
}

} // namespace belvakit
