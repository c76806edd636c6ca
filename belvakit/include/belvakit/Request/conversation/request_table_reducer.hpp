#pragma once

#include "belvakit/Request/conversation/request_table_state.hpp"
#include "belvakit/attachments/upload.hpp"
#include "tivra/reducer.hpp"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// The outcome of creating a ticket or a comment: ids recorded, statuses set.
class RequestTabelCreationSubReducer {
public:
    // Nothing when the action is not such an outcome.
    std::optional<RequestTableState> reduce(const RequestTableState& state, const tivra::Action& action) const;
};

// The only writer of RequestTableState.
class RequestTableReducer final : public tivra::Reducer<RequestTableState> {
public:
    RequestTableState initialState() const override { return initialRequestTableState(); }
    std::optional<RequestTableState> reduce(const RequestTableState& state,
                                            const tivra::Action& action) const override;

private:
    RequestTabelCreationSubReducer creation_;
};

// `remote` merged into `local`, both in time order. A local row paired with a remote one through
// `mapLocalToRemote` (or by the same id) keeps its local identity and takes the server's content.
std::vector<Message> mergeMessages(const std::vector<Message>& remote, const std::vector<Message>& local,
                                   const std::map<std::string, std::string>& mapLocalToRemote);

// `local` with what the server owns taken from `remote`; `remote` itself when the kinds differ.
Message mergedMessage(const Message& remote, const Message& local);

// The name an attachment goes by when it came without one.
std::string interpolatedFilename(const Upload::Attachment& attachment);

} // namespace belvakit
