#pragma once

#include "belvakit/Request/conversation/input_field_state.hpp"
#include "uikit/button.hpp"
#include "uikit/label.hpp"
#include "uikit/text_input.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace belvakit {

// The bar under a conversation: the text view with its prompt, the attach button, the chosen
// attachments and the send button. It draws InputFieldState and reports the user's gestures.
class InputField final : public uikit::View {
public:
    InputField();
    std::string_view className() const override { return "InputField"; }

    void render(const InputFieldState& state);
    const InputFieldState& state() const { return state_; }

    std::shared_ptr<uikit::TextView> textView;
    std::shared_ptr<uikit::Label> placeholderLabel;
    std::shared_ptr<uikit::Button> attachButton;
    std::shared_ptr<uikit::Button> sendButton;
    std::shared_ptr<uikit::View> attachmentStrip;

    std::function<void(const std::string& text, const std::vector<InputAttachmentViewStatePtr>& attachments)> sendButtonTapped;
    std::function<void()> attachButtonTapped;
    std::function<void(const std::string& text)> textChanged;
    std::function<void(const std::string& text)> editingBegan;
    std::function<void(const std::string& text)> editingEnded;
    std::function<void(int index, const std::string& identifier)> attachmentRemoveTapped;

    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    void rebuildStrip();
    double textHeight(double width) const;
    double sendWidth() const;

    InputFieldState state_;
    std::vector<InputAttachmentViewStatePtr> shownAttachments_;
};

} // namespace belvakit
