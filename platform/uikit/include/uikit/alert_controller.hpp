#pragma once

#include "uikit/button.hpp"
#include "uikit/text_input.hpp"
#include "uikit/view_controller.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace uikit {

enum class AlertControllerStyle { actionSheet = 0, alert = 1 };
enum class AlertActionStyle { defaultStyle = 0, cancel = 1, destructive = 2 };

struct AlertAction {
    std::string title;
    AlertActionStyle style = AlertActionStyle::defaultStyle;
    std::function<void(const AlertAction&)> handler;
    bool enabled = true;
};

// An alert or action sheet, shown by presenting it. Its view holds the title, the message, any
// text fields and one button per action, identified by the action's title. A tap on a button
// dismisses the alert and, once it is gone, runs the action's handler.
class AlertController : public ViewController {
public:
    AlertController(std::string title, std::string message, AlertControllerStyle style);
    static std::shared_ptr<AlertController> alertController(std::string title, std::string message,
                                                            AlertControllerStyle style) {
        return std::make_shared<AlertController>(std::move(title), std::move(message), style);
    }
    std::string_view className() const override { return "UIAlertController"; }

    const std::string& message() const { return message_; }
    void setMessage(std::string message);
    AlertControllerStyle preferredStyle() const { return style_; }

    void addAction(AlertAction action);
    const std::vector<AlertAction>& actions() const { return actions_; }
    void setActionEnabled(std::size_t index, bool enabled);
    // Only alerts take text fields; an action sheet logs and ignores the call.
    void addTextField(const std::function<void(TextField&)>& configuration = {});
    const std::vector<std::shared_ptr<TextField>>& textFields() const { return textFields_; }

    // The buttons in the order they show (a cancel action goes last, or first of two in an alert).
    std::vector<std::shared_ptr<Button>> buttons() const;

    void loadView() override;
    void viewWillLayoutSubviews() override;

private:
    std::vector<std::size_t> displayOrder() const;
    void choose(std::size_t index);
    void rebuildButtons();
    std::string message_;
    AlertControllerStyle style_;
    std::vector<AlertAction> actions_;
    std::vector<std::shared_ptr<TextField>> textFields_;
    std::vector<std::shared_ptr<Button>> buttons_;  // by action index
    std::shared_ptr<View> panel_;
    std::shared_ptr<Label> titleLabel_;
    std::shared_ptr<Label> messageLabel_;
    bool chosen_ = false;
};

} // namespace uikit
