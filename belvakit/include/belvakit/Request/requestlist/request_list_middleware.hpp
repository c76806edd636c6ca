#pragma once

#include "belvakit/Request/requestlist/request_list_service.hpp"
#include "tivra/middleware.hpp"

#include <memory>

namespace belvakit {

// Moves the loading of the ticket list on from stage to stage: the end of each stage starts the
// next, and the stages' own actions stop here.
class RequestListMiddleware final : public tivra::Middleware {
public:
    explicit RequestListMiddleware(std::shared_ptr<const RequestListServiceProtocol> listService = RequestListService::shared())
        : service(std::move(listService)) {}

    void onAction(const tivra::Action& action, const tivra::GetState& getState, const tivra::DispatchFunction& dispatch,
                  const tivra::DispatchFunction& next) override;

    std::shared_ptr<const RequestListServiceProtocol> service;
};

} // namespace belvakit
