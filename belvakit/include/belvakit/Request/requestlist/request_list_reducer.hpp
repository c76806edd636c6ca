#pragma once

#include "belvakit/Request/requestlist/request_list_state.hpp"
#include "tivra/reducer.hpp"

namespace belvakit {

// The only writer of RequestListState's rows, status and error.
class RequestListReducer final : public tivra::Reducer<RequestListState> {
public:
    RequestListState initialState() const override { return {}; }
    std::optional<RequestListState> reduce(const RequestListState& state,
                                           const tivra::Action& action) const override;
};

} // namespace belvakit
