#pragma once

#include "belvakit/Request/createrequest/validatable_view.hpp"

#include <memory>
#include <string_view>
#include <vector>

namespace belvakit {

class ValidatableTextField;

// The email and field checks shared by the new-request form and the support engine.
struct FormValidator {
    // The last label has 1 to 4 letters: longer top-level domains are refused on purpose.
    static constexpr std::string_view emailRegex = "[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\\.[A-Za-z]{1,4}";

    // Once true, the email is checked on every keystroke, not only when the field is left.
    bool inlineValidationEnabeled = false;

    // The whole text must match. The first failure turns inline validation on for good.
    bool isValid(std::string_view email);
    // An empty or absent text is no error in itself: the field's own flag stands.
    bool validate(const ValidatableTextField& field);
    // False for an empty list; absent or blank text counts as unfilled.
    static bool allFilled(const std::vector<std::shared_ptr<const TextContainerView>>& views);
};

} // namespace belvakit
