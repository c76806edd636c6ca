#pragma once

#include "belvakit/Request/createrequest/attachment_button_state.hpp"
#include "platform/color.hpp"

#include <string>

namespace belvakit {

// The new-request form as the store sees it; the texts stay in the views until send.
struct CreateRequestState {
    enum class Sending { unsent, sending, sent, success, failure };

    bool requiresEmail = false;
    bool requiresName = false;
    bool showCorvaneLogo = false;
    std::string referrerUrl;
    bool hasEdits = false;
    platform::Color primaryColor;
    Sending sending = Sending::unsent;
    AttachmentButtonState attachmentButtonState = AttachmentButtonState::hidden;

    // Leaves out `referrerUrl` and `primaryColor`: a change of only these doesn't redraw.
    bool operator==(const CreateRequestState& other) const;
};

// Made once, on first use, with the primary colour of the common theme at that moment.
const CreateRequestState& initialCreateRequestState();

} // namespace belvakit
