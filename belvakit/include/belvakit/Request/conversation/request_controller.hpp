#pragma once

#include "belvakit/Request/conversation/input_field.hpp"
#include "belvakit/Request/conversation/request_table.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/queue/request_fetcher.hpp"
#include "belvakit/Request/createrequest/discard_edits_controller.hpp"
#include "belvakit/entry/ui_configurations.hpp"
#include "belvakit/toolkit/progress_bar.hpp"
#include "belvakit/toolkit/toast_view_wrapper.hpp"
#include "belvakit/toolkit/ui_view_controller.hpp"
#include "corvane/action_handler.hpp"
#include "mirrowset/configurations.hpp"
#include "platform/notification_center.hpp"
#include "platform/object.hpp"
#include "tivra/store.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// Posted when the application comes back from the background.
inline constexpr const char* applicationWillEnterForegroundNotification = "UIApplicationWillEnterForegroundNotification";

// Refreshes an open conversation when the host is told of news on its ticket (a push).
class RequestDetailRefreshActionHandler final : public corvane::ActionHandler {
public:
    static constexpr const char* actionPrefix = "Request_Controller_Refresh_id_";
    // The action name that refreshes the conversation of `requestId`.
    static std::string actionName(const std::string& requestId) { return actionPrefix + requestId; }

    explicit RequestDetailRefreshActionHandler(std::string id) : requestId(std::move(id)) {}

    bool canHandle(const std::string& actionName) const override;
    // Asks the shared store to fetch the news of the ticket under "request_id" (text or number),
    // or of its own ticket without one.
    void handle(const std::map<std::string, std::any>& info) override;
    int priority() const override { return 0; }
    std::optional<corvane::ActionDescription> actionDescription() const override { return description; }
    bool isEqual(const corvane::ActionHandler& other) const override;

    std::string requestId;
    std::optional<corvane::ActionDescription> description;
};

// The screen of one ticket: its messages, the input field and the send progress. It turns
// gestures into actions and keeps the device's copy of the conversation in step with the store.
class RequestController final : public CRVUIViewController, public DiscardEditsControllerEditSource {
public:
    // A reply being written: text that isn't only space, or a chosen attachment.
    bool hasUnsavedEdits() const override;
    // What the request container passes. `requestId` is absent for a new ticket. Without a cache the
    // core's "Tickets" cache is used; without a store, the shared one.
    static std::shared_ptr<RequestController> make(const RequestUiConfiguration& configuration,
                                                   std::optional<std::string> requestId,
                                                   std::shared_ptr<ProgressBar> progressBar,
                                                   std::shared_ptr<CRVToastViewWrapper> toastWrapper,
                                                   bool attachmentsAllowed, std::int64_t maxFileAttachmentSize,
                                                   std::shared_ptr<Cache> ticketsCache = nullptr,
                                                   std::shared_ptr<tivra::Store> store = nullptr);
    ~RequestController() override;
    std::string_view className() const override { return "RequestController"; }

    const std::optional<std::string>& requestId() const { return requestId_; }
    const mirrowset::Configurations& configs() const { return configs_; }
    const std::shared_ptr<RequestTable>& requestTable() const { return requestTable_; }
    const std::shared_ptr<InputField>& inputField() const { return inputField_; }
    bool attachmentsAllowed() const { return attachmentsAllowed_; }
    std::int64_t maxFileAttachmentSize() const { return maxFileAttachmentSize_; }
    const std::shared_ptr<Cache>& ticketsCache() const { return ticketsCache_; }
    const std::shared_ptr<Cache>& attachmentsCache() const { return attachmentsCache_; }
    LocalIDStore& idStore() { return idStore_; }
    const RequestsWithFailedMessagesIdStore& failedRemoteIdStore() const { return failedRemoteIdStore_; }
    const RequestFetcher& requestFetcher() const { return requestFetcher_; }
    const std::shared_ptr<ProgressBar>& progressBar() const { return progressBar_; }
    const std::shared_ptr<CRVToastViewWrapper>& toastWrapper() const { return toastWrapper_; }
    const std::shared_ptr<RequestDetailRefreshActionHandler>& requestRefreshHandler() const { return requestRefreshHandler_; }
    // Work held until the screen has appeared.
    std::function<void()> viewDidAppearBlock;
    // Known closed by whoever opens the screen: the conversation is closed from its start, before
    // the device's copy says so. Set before the view loads.
    bool ticketClosed = false;

    // The user's send: a text and the chosen attachments.
    void sendButtonTapped(const std::string& text, const std::vector<InputAttachmentViewStatePtr>& attachments);
    // The messages of the send that `message` belongs to, in table order.
    std::vector<Message> messagesOfSend(const Message& message) const;
    // Those of them that the table shows as failed now: what a retry or a delete may act on.
    std::vector<Message> failedMessagesOfSend(const Message& message) const;
    // Fetches what was written on the ticket since the latest known comment.
    void refresh();
    // Whether the shared conversation slices and the send queue hold this screen's conversation.
    // Another ticket screen that starts takes them over; this one takes them back as it shows
    // again or as the user acts on it, so its messages never join another ticket.
    bool ownsConversation() const { return ownsConversation_; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidLayoutSubviews() override;

private:
    struct Tag {};

public:
    RequestController(Tag, const RequestUiConfiguration& configuration, std::optional<std::string> requestId,
                      std::shared_ptr<ProgressBar> progressBar, std::shared_ptr<CRVToastViewWrapper> toastWrapper,
                      bool attachmentsAllowed, std::int64_t maxFileAttachmentSize, std::shared_ptr<Cache> ticketsCache,
                      std::shared_ptr<tivra::Store> store);

private:
    std::shared_ptr<RequestController> self();
    void start();
    // Resets the shared slices and the queue for this screen's conversation; `input` is what the
    // input field holds.
    void claimConversation(const InputFieldState& input);
    // Takes the conversation back from the ticket screen that took it over; false when it was held.
    bool reclaimConversation();
    void subscribe();
    void openConversation();
    // Tells the queue and the table the help desk's ticket this conversation talks to, and its key.
    void knowTicket(const std::string& requestId, const std::string& key);
    void fetchComments(const std::string& requestId);
    // The shown ticket took the key of the device conversation that made it: that conversation's
    // saved copy joins the table, and is written over, not replaced, until it has.
    void adoptKey(const std::string& key);
    // Hands the saved copy of `key`, as read from the disk, to the table.
    void takeSavedCopy(const std::string& key, std::vector<Message> messages, std::map<std::string, std::string> map);
    void stateChanged();
    void actionSeen(const tivra::Action& action);
    void showActions(const Message& failed);
    void deleteMessages(const std::vector<Message>& messages);
    void retry(const std::vector<Message>& messages);
    // The id the conversation is kept under, as far as the screen knows it yet.
    std::optional<std::string> conversationId() const;
    void openAttachment(const Message& message);
    void presentPreview(const std::string& title, platform::ImagePtr image, std::optional<std::string> file);
    void registerRefreshHandler();
    void unregisterRefreshHandler();
    const RequestTableState* tableState() const;

    std::optional<std::string> requestId_;
    mirrowset::Configurations configs_;
    std::shared_ptr<RequestUiConfiguration> configuration_;
    std::shared_ptr<RequestTable> requestTable_;
    std::shared_ptr<InputField> inputField_;
    // The input bar's colour carried down under the safe area, so no blank band shows below it.
    std::shared_ptr<uikit::View> inputBackdrop_;
    bool attachmentsAllowed_ = false;
    std::int64_t maxFileAttachmentSize_ = 0;
    std::shared_ptr<Cache> attachmentsCache_;
    std::shared_ptr<Cache> ticketsCache_;
    LocalIDStore idStore_;
    RequestsWithFailedMessagesIdStore failedRemoteIdStore_;
    RequestFetcher requestFetcher_;
    std::shared_ptr<ProgressBar> progressBar_;
    std::shared_ptr<CRVToastViewWrapper> toastWrapper_;
    std::shared_ptr<RequestDetailRefreshActionHandler> requestRefreshHandler_;
    std::shared_ptr<corvane::ActionHandler> helpCenterHandler_;
    platform::ObservationToken backgroundNotificationObserver_;
    std::shared_ptr<tivra::Store> store_;
    // Subscriptions end with this object, that is with the screen.
    platform::Object lifetime_;
    // The first state after a load from disk is what the disk holds: it isn't written back.
    bool skipNextPersist_ = false;
    // Until the saved copy is read, a write keeps what it holds that the table lacks.
    bool savedCopyRead_ = true;
    // The key whose saved copy that is.
    std::optional<std::string> awaitedCopy_;
    // The send queue has work of this screen's: it, not the first load, ends the progress bar.
    bool queueWorking_ = false;
    bool started_ = false;
    bool ownsConversation_ = false;
    // Set while this screen resets the slices itself.
    bool claiming_ = false;
    // The conversation's key in the tickets cache, once it has one.
    std::optional<std::string> conversationKey_;
};

} // namespace belvakit
