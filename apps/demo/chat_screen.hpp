#pragma once

#include "platform/notification_center.hpp"
#include "quorvel/engine.hpp"
#include "quorvel/observable.hpp"
#include "quorvel/update.hpp"
#include "uikit/button.hpp"
#include "uikit/label.hpp"
#include "uikit/scroll_view.hpp"
#include "uikit/text_input.hpp"
#include "uikit/view_controller.hpp"

#include <memory>
#include <string>
#include <vector>

namespace belvademo {

// The host's messaging screen: it drives a conversation engine by events and shows its updates as
// chat bubbles, a typing row, options and action buttons, over an input field.
class ChatScreen final : public uikit::ViewController {
public:
    // The screen over the library's support engine; a screen that says why when none can be made.
    static std::shared_ptr<ChatScreen> withSupportEngine();
    // Without an engine the screen only says why: `unavailable`.
    ChatScreen(std::shared_ptr<quorvel::Engine> engine, std::shared_ptr<quorvel::Observable> updates, std::string botName,
               std::string unavailable = {});
    ~ChatScreen() override;
    std::string_view className() const override { return "DemoChatScreen"; }

    void viewDidLoad() override;
    void viewDidAppear(bool animated) override;
    void viewDidLayoutSubviews() override;

private:
    struct Row {
        std::string itemId;
        std::shared_ptr<uikit::View> view;
        bool fromUser = false;
        bool wide = false;  // option and action rows take the whole width
    };

    void show(const quorvel::Update& update);
    std::shared_ptr<uikit::View> rowView(const quorvel::MessagingItem& item, bool& fromUser, bool& wide);
    std::shared_ptr<uikit::View> bubble(const std::string& text, bool fromUser, const std::string& identifier);
    void append(const quorvel::MessagingItem& item);
    void replace(const quorvel::MessagingItem& item);
    void setTyping(const std::string* agentName);
    void send();
    void relayout();

    std::shared_ptr<quorvel::Engine> engine_;
    std::shared_ptr<quorvel::Observable> updates_;
    quorvel::ObservationToken token_;
    std::string botName_;
    std::string unavailable_;
    bool started_ = false;
    std::vector<Row> rows_;
    std::shared_ptr<uikit::View> typing_;
    std::shared_ptr<uikit::ScrollView> transcript_;
    std::shared_ptr<uikit::View> inputBar_;
    std::shared_ptr<uikit::TextField> input_;
    std::shared_ptr<uikit::Button> sendButton_;
    std::shared_ptr<uikit::Label> notice_;
    platform::ObservationToken keyboardShown_;
    platform::ObservationToken keyboardHidden_;
};

} // namespace belvademo
