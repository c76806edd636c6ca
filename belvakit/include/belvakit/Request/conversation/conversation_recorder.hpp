#pragma once

#include "belvakit/Request/conversation/request_table_state.hpp"
#include "tivra/action.hpp"

#include <memory>

namespace belvakit {

class Cache;
class LocalIDStore;
struct RequestsWithFailedMessagesIdStore;

// Brings what the device keeps of a conversation in step with its state: the id stores, the
// request list's row for a failed send, and the saved file. The conversation screen runs it after
// each change; the send queue runs it for a conversation that no screen shows any more, so that a
// late outcome is kept where the user will find it. Until `savedCopyRead`, the saved file's
// messages the state lacks stay in it.
void recordConversation(const RequestTableState& state, LocalIDStore& idStore,
                        const RequestsWithFailedMessagesIdStore& failedRemoteIds,
                        const std::shared_ptr<Cache>& ticketsCache, const tivra::DispatchFunction& dispatch,
                        bool savedCopyRead = true);

} // namespace belvakit
