#include "belvakit/Request/createrequest/create_request_state.hpp"

#include "fenlow/common_theme.hpp"

namespace belvakit {

bool CreateRequestState::operator==(const CreateRequestState& other) const {
    return requiresName == other.requiresName && requiresEmail == other.requiresEmail &&
           sending == other.sending && hasEdits == other.hasEdits && showCorvaneLogo == other.showCorvaneLogo &&
           attachmentButtonState == other.attachmentButtonState && formId == other.formId && sendId == other.sendId;
}

const CreateRequestState& initialCreateRequestState() {
    static const CreateRequestState initial = [] {
        CreateRequestState state;
        state.primaryColor = fenlow::CommonTheme::currentTheme().primaryColor;
        return state;
    }();
    return initial;
}

} // namespace belvakit
