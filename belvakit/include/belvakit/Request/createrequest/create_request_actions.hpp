#pragma once

#include "belvakit/attachments/input_attachment_view_state.hpp"
#include "tivra/action.hpp"

#include <memory>
#include <string>
#include <vector>

namespace belvakit::CreateRequestActions {

struct InitializeCreateRequest final : tivra::Action {
    bool requiresEmail = false;
    bool requiresName = false;
    bool showCorvnaeLogo = false;
    std::string referrerUrl;
};

struct Edited final : tivra::Action {
    bool hasEdits = false;
};

// The powered-by logo was tapped.
struct ReferOpen final : tivra::Action {};

struct SendPressed final : tivra::Action {
    std::string name;
    std::string email;
    std::string description;
    std::vector<std::shared_ptr<InputAttachmentViewState>> attachments;
};

} // namespace belvakit::CreateRequestActions
