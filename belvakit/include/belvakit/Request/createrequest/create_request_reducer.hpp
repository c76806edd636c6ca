#pragma once

#include "belvakit/Request/createrequest/create_request_state.hpp"
#include "tivra/reducer.hpp"

namespace belvakit {

// The only writer of CreateRequestState.
class CreateRequestReducer final : public tivra::Reducer<CreateRequestState> {
public:
    explicit CreateRequestReducer(CreateRequestState initialState = initialCreateRequestState());

    CreateRequestState initialState() const override { return initialState_; }
    std::optional<CreateRequestState> reduce(const CreateRequestState& state,
                                             const tivra::Action& action) const override;

private:
    CreateRequestState initialState_;
};

} // namespace belvakit
