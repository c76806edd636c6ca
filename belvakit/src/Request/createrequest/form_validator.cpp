#include "belvakit/Request/createrequest/form_validator.hpp"

#include "belvakit/Request/createrequest/validatable_text_field.hpp"
#include "platform/regular_expression.hpp"
#include "platform/trimming.hpp"

#include <algorithm>

namespace belvakit {

namespace {

const platform::RegularExpression& emailExpression() {
    // The pattern is a constant that compiles; compiled once for the process.
    static const platform::RegularExpression expression =
        *platform::RegularExpression::compile(FormValidator::emailRegex);
    return expression;
}

} // namespace

bool FormValidator::isValid(std::string_view email) {
    const bool valid = emailExpression().matchesWhole(email);
    if (!valid && !inlineValidationEnabeled) inlineValidationEnabeled = true;
    return valid;
}

bool FormValidator::validate(const ValidatableTextField& field) {
    const auto text = field.text();
    if (text && !text->empty()) return isValid(*text);
    return field.isViewValid();
}

bool FormValidator::allFilled(const std::vector<std::shared_ptr<const TextContainerView>>& views) {
    if (views.empty()) return false;
    return std::all_of(views.begin(), views.end(), [](const auto& view) {
        const auto text = view->text();
        return text && !platform::trimmingWhitespaceAndNewlines(*text).empty();
    });
}

} // namespace belvakit
