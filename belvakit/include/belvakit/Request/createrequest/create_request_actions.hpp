#pragma once

#include "belvakit/attachments/input_attachment_view_state.hpp"
#include "tivra/action.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace belvakit::CreateRequestActions {

struct InitializeCreateRequest final : tivra::Action {
    bool requiresEmail = false;
    bool requiresName = false;
    bool showCorvnaeLogo = false;
    std::string referrerUrl;
    // The form the slice describes from now on.
    std::uint64_t formId = 0;
};

struct Edited final : tivra::Action {
    bool hasEdits = false;
    std::uint64_t formId = 0;
};

// The powered-by logo was tapped.
struct ReferOpen final : tivra::Action {};

struct SendPressed final : tivra::Action {
    std::string name;
    std::string email;
    std::string description;
    std::vector<std::shared_ptr<InputAttachmentViewState>> attachments;
    // The form that sent, and the id its text message takes: a form's outcome is its own send's.
    std::uint64_t formId = 0;
    std::string id;
};

} // namespace belvakit::CreateRequestActions
