#include "belvakit/entry/request_container_controller.hpp"

namespace belvakit {

// The conversation and the form that creates a ticket are wired in here when they are part of
// the library; until then the container logs that it could not make them.
RequestContainerController::ConversationScreenBuilder RequestContainerController::defaultConversationScreenBuilder() {
    return nullptr;
}

RequestContainerController::CreateRequestScreenBuilder RequestContainerController::defaultCreateRequestScreenBuilder() {
    return nullptr;
}

} // namespace belvakit
