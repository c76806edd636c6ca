#pragma once

#include <optional>
#include <string>

namespace quorvel {

enum class KeyboardType { defaultType, emailAddress };

// What the messaging screen's input field offers the user.
struct InputFieldState {
    bool enabled = true;
    std::optional<std::string> endUserHint;
    bool shouldShowAttachmentIcon = false;
    KeyboardType keyboardType = KeyboardType::defaultType;

    bool operator==(const InputFieldState&) const = default;
};

} // namespace quorvel
