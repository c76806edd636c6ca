#pragma once

#include "belvakit/Request/createrequest/attachment_button_state.hpp"
#include "platform/color.hpp"

#include <cstdint>
#include <optional>
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
    // Which form this is, and the id of the send it waits on: other forms' sends and outcomes
    // leave it alone.
    std::uint64_t formId = 0;
    std::optional<std::string> sendId;

    // Leaves out `referrerUrl` and `primaryColor`: a change of only these doesn't redraw.
    bool operator==(const CreateRequestState& other) const;
};

// Made once, on first use, with the primary colour of the common theme at that moment.
const CreateRequestState& initialCreateRequestState();

} // namespace belvakit
