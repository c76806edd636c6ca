#include "belvakit/Request/conversation/conversation_recorder.hpp"

#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/queue/local_id_store.hpp"
#include "belvakit/Request/requestlist/request_list_actions.hpp"

#include <algorithm>

namespace belvakit {

namespace {

bool failed(const Message& message) { return status(message) == DeliveryStatus::failed; }

} // namespace

void recordConversation(const RequestTableState& state, LocalIDStore& idStore,
                        const RequestsWithFailedMessagesIdStore& failedRemoteIds,
                        const std::shared_ptr<Cache>& ticketsCache, const tivra::DispatchFunction& dispatch,
                        const SavedFileWrite& write) {
    // An older copy that writes only its changes tells only of their failures: a failed message
    // it still holds may have been deleted since.
    const auto failedNow = [&](const Message& message) {
        return failed(message) && (!write.onlyChanges || write.onlyChanges->changed.contains(id(message)));
    };
    if (state.remoteId && state.localId) {
        idStore.remoteToLocal[*state.remoteId] = *state.localId;
        idStore.addLocalId(*state.localId);
    }
    if (state.localId) {
        // One list row per conversation: only the first failure of a local id reports it. Every
        // later failed text would find the id known, so one look at the store does for all.
        const auto failedText = std::find_if(state.tableData.begin(), state.tableData.end(), [&](const Message& message) {
            return message.holds<UserMessage>() && failedNow(message);
        });
        if (failedText != state.tableData.end() && idStore.addLocalId(*state.localId)) {
            const auto& text = failedText->get<UserMessage>();
            Actions::RequestCreationOrUpdateError error;
            error.id = text.id;
            error.requestDescription = text.body;
            error.createdAtDate = text.createdAt;
            if (dispatch) dispatch(error);
        }
    }
    if (state.remoteId) {
        if (std::ranges::any_of(state.tableData, failedNow))
            failedRemoteIds.add(*state.remoteId);
        else if (std::ranges::none_of(state.tableData, failed))
            failedRemoteIds.remove(*state.remoteId);
    }
    const auto version = MessageList::currentVersion;
    if (write.onlyChanges)
        persistChangesOver(state.tableData, *write.onlyChanges, state.localId, state.remoteId, state.mapLocalToRemote,
                           version, state.ticketClosed, ticketsCache);
    else
        (write.savedCopyRead ? persistConversation : persistConversationOver)(
            state.tableData, state.localId, state.remoteId, state.mapLocalToRemote, version, state.ticketClosed, ticketsCache);
}

} // namespace belvakit
