#pragma once

#include "belvakit/Request/conversation/message_list.hpp"
#include "belvakit/Request/conversation/request_table_state.hpp"
#include "tivra/action.hpp"

#include <memory>
#include <optional>

namespace belvakit {

class Cache;
class LocalIDStore;
struct RequestsWithFailedMessagesIdStore;

// Brings what the device keeps of a conversation in step with its state: the id stores, the
// request list's row for a failed send, and the saved file. The conversation screen runs it after
// each change; the send queue runs it for a conversation that no screen shows any more, so that a
// late outcome is kept where the user will find it.
struct SavedFileWrite {
    // Until the screen read the saved file, the file's messages the state lacks stay in it.
    bool savedCopyRead = true;
    // Only these messages are written, over what the file holds.
    std::optional<ConversationChanges> onlyChanges;
};
void recordConversation(const RequestTableState& state, LocalIDStore& idStore,
                        const RequestsWithFailedMessagesIdStore& failedRemoteIds,
                        const std::shared_ptr<Cache>& ticketsCache, const tivra::DispatchFunction& dispatch,
                        const SavedFileWrite& write = {});

} // namespace belvakit
