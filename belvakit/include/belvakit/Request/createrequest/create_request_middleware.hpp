#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "belvakit/Request/queue/request_queue_actions.hpp"
#include "belvakit/attachments/input_attachment.hpp"
#include "corvane/corvane.hpp"
#include "tivra/middleware.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// Turns the form's send into the identity it names, a message and an entry of the send queue.
// Every other action passes untouched.
class CreateRequestMiddleware final : public tivra::Middleware {
public:
    void onAction(const tivra::Action& action, const tivra::GetState& getState, const tivra::DispatchFunction& dispatch,
                  const tivra::DispatchFunction& next) override;
};

// The anonymous identity of the core object, with the name and email the user typed into the form
// in place of its own. A JWT identity is left alone, and so is any identity when both are absent.
void updateIdentityFromForm(const std::shared_ptr<corvane::Corvane>& core, const std::optional<std::string>& name,
                            const std::optional<std::string>& email);

// The queue's request for one send: the text message's id and body with the files of the chosen
// attachments. The files are made, and `dispatchDetails` called, on a serial background queue, so
// the call comes after the current dispatch and in the order of the calls. An attachment that
// gives no file is left out. Nothing happens for an empty list or one that does not start with a
// user's text.
void prepareDispatchDetails(std::vector<Message> messages, std::vector<InputAttachmentViewStatePtr> attachments,
                            std::function<void(const RequestQueueActions::DispatchDetails&)> dispatchDetails);

} // namespace belvakit
