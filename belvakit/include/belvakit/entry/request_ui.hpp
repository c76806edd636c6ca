#pragma once

#include "belvakit/entry/Coordinator/coordinating_view_controller.hpp"
#include "belvakit/entry/request_container_controller.hpp"
#include "mirrowset/configurations.hpp"

#include <memory>
#include <string>

namespace belvakit {

// The ticket screens a host can ask for. Each form without configurations passes an empty list.
class RequestUi {
public:
    RequestUi() = delete;

    // The user's tickets, behind a coordinator that builds the list.
    static std::shared_ptr<CoordinatingViewController> buildRequestList();
    static std::shared_ptr<CoordinatingViewController> buildRequestList(const mirrowset::ConfigurationList& with);
    // A new ticket.
    static std::shared_ptr<RequestContainerController> buildRequestUi();
    static std::shared_ptr<RequestContainerController> buildRequestUi(const mirrowset::ConfigurationList& with);
    // An existing ticket.
    static std::shared_ptr<RequestContainerController> buildRequestUi(const std::string& requestId);
    static std::shared_ptr<RequestContainerController> buildRequestUi(const std::string& requestId,
                                                                      const mirrowset::ConfigurationList& configurations);
};

using CRVRequestUi = RequestUi;

} // namespace belvakit
