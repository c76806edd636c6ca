#include "chat_screen.hpp"

#include "belvakit/engine/support_engine.hpp"
#include "belvakit/toolkit/theme.hpp"
#include "platform/main_queue.hpp"
#include "uikit/navigation_controller.hpp"
#include "uikit/window.hpp"

#include <algorithm>

namespace belvademo {

namespace {

constexpr double margin = 12;
constexpr double inputHeight = 52;
constexpr double bubblePadding = 10;

platform::Color userColour() { return platform::Color::fromRGB(52, 120, 246); }
platform::Color botColour() { return platform::Color::fromRGB(233, 233, 235); }

// A bubble's label and its padding.
class Bubble final : public uikit::View {
public:
    explicit Bubble(std::shared_ptr<uikit::Label> label) : label_(std::move(label)) { addSubview(label_); }
    uikit::Size sizeThatFits(uikit::Size size) const override {
        const auto text = label_->sizeThatFits({size.width - 2 * bubblePadding, 10000});
        return {std::ceil(text.width) + 2 * bubblePadding, std::ceil(text.height) + 2 * bubblePadding};
    }
    void layoutSubviews() override {
        uikit::View::layoutSubviews();
        label_->setFrame({bubblePadding, bubblePadding, bounds().width() - 2 * bubblePadding,
                          bounds().height() - 2 * bubblePadding});
    }

private:
    std::shared_ptr<uikit::Label> label_;
};

// Buttons one under the other, with an optional title above them.
class ButtonStack final : public uikit::View {
public:
    uikit::Size sizeThatFits(uikit::Size size) const override {
        double height = 0;
        for (const auto& child : subviews()) height += std::ceil(child->sizeThatFits({size.width, 10000}).height) + 8;
        return {size.width, std::max(0.0, height - 8)};
    }
    void layoutSubviews() override {
        uikit::View::layoutSubviews();
        double y = 0;
        for (const auto& child : subviews()) {
            const double height = std::ceil(child->sizeThatFits({bounds().width(), 10000}).height);
            child->setFrame({0, y, bounds().width(), height});
            y += height + 8;
        }
    }
};

std::shared_ptr<uikit::Button> choiceButton(const std::string& title, const std::string& identifier) {
    auto button = uikit::make<uikit::Button>(uikit::ButtonType::system);
    button->setTitle(title);
    button->setTitleColor(userColour());
    button->titleLabel()->setFont(belvakit::CRVLegacyTheme::currentAppliedTheme()->mainFont);
    button->setBorderWidth(1);
    button->setBorderColor(userColour());
    button->setCornerRadius(16);
    button->contentEdgeInsets = {8, 14, 8, 14};
    button->setAccessibilityIdentifier(identifier);
    return button;
}

} // namespace

std::shared_ptr<ChatScreen> ChatScreen::withSupportEngine() {
    auto made = belvakit::SupportEngine::engine();
    if (auto* engine = std::get_if<std::shared_ptr<belvakit::SupportEngine>>(&made))
        return std::make_shared<ChatScreen>(*engine, *engine, "Bela");
    return std::make_shared<ChatScreen>(nullptr, nullptr, "",
                                        "The support engine could not be made: support is not initialized.");
}

ChatScreen::ChatScreen(std::shared_ptr<quorvel::Engine> engine, std::shared_ptr<quorvel::Observable> updates,
                       std::string botName, std::string unavailable)
    : engine_(std::move(engine)), updates_(std::move(updates)), botName_(std::move(botName)),
      unavailable_(std::move(unavailable)) {
    setTitle(botName_.empty() ? "Chat" : "Chat with " + botName_);
}

ChatScreen::~ChatScreen() {
    token_.cancel();
    if (engine_) engine_->stop();
}

void ChatScreen::viewDidLoad() {
    const auto theme = belvakit::CRVLegacyTheme::currentAppliedTheme();
    view()->setBackgroundColor(theme->primaryBackgroundColor);
    view()->setAccessibilityIdentifier("DemoChatScreen");

    transcript_ = uikit::make<uikit::ScrollView>();
    transcript_->setAccessibilityIdentifier("DemoChatTranscript");
    view()->addSubview(transcript_);

    inputBar_ = uikit::make<uikit::View>();
    inputBar_->setBackgroundColor(theme->secondaryBackgroundColor);
    view()->addSubview(inputBar_);
    input_ = uikit::make<uikit::TextField>();
    input_->setAccessibilityIdentifier("DemoChatInput");
    input_->setPlaceholder("Message");
    input_->font = theme->mainFont;
    input_->setBackgroundColor(platform::Color::white());
    input_->setCornerRadius(16);
    input_->setBorderWidth(1);
    input_->setBorderColor(theme->separatorColor);
    input_->textInsets = {6, 12, 6, 12};
    input_->shouldReturn = [this] {
        send();
        return false;
    };
    inputBar_->addSubview(input_);
    sendButton_ = uikit::make<uikit::Button>(uikit::ButtonType::system);
    sendButton_->setTitle("Send");
    sendButton_->setTitleColor(userColour());
    sendButton_->titleLabel()->setFont(theme->boldMainFont);
    sendButton_->setAccessibilityIdentifier("DemoChatSend");
    sendButton_->addTarget(uikit::ControlEvent::touchUpInside, [this] { send(); });
    inputBar_->addSubview(sendButton_);

    if (!engine_) {
        notice_ = uikit::make<uikit::Label>();
        notice_->setNumberOfLines(0);
        notice_->setTextAlignment(uikit::TextAlignment::center);
        notice_->setTextColor(theme->metaTextColor);
        notice_->setText(unavailable_);
        notice_->setAccessibilityIdentifier("DemoChatUnavailable");
        view()->addSubview(notice_);
        input_->setEnabled(false);
        sendButton_->setEnabled(false);
    }

    // The input field keeps above the keyboard.
    auto relayoutOnKeyboard = [weak = std::weak_ptr<uikit::View>(view())](const platform::Notification&) {
        if (auto root = weak.lock()) root->setNeedsLayout();
    };
    keyboardShown_ = platform::NotificationCenter::defaultCenter().addObserver(uikit::keyboardWillShowNotification,
                                                                               nullptr, relayoutOnKeyboard);
    keyboardHidden_ = platform::NotificationCenter::defaultCenter().addObserver(uikit::keyboardWillHideNotification,
                                                                                nullptr, relayoutOnKeyboard);
}

void ChatScreen::viewDidAppear(bool animated) {
    uikit::ViewController::viewDidAppear(animated);
    if (started_ || !engine_) return;
    started_ = true;
    std::weak_ptr<ChatScreen> weak = std::static_pointer_cast<ChatScreen>(shared_from_this());
    token_ = updates_->observeUpdates([weak](const quorvel::Update& update) {
        if (auto self = weak.lock()) self->show(update);
    });
    engine_->start(quorvel::QuorvelAPI(quorvel::ConversationLog(), {"bot", botName_, true, std::nullopt}, {}));
}

void ChatScreen::viewDidLayoutSubviews() {
    const auto bounds = view()->bounds();
    const auto insets = safeAreaInsets();
    const auto* window = view()->window();
    const double keyboard = window ? window->keyboardHeight() : 0;
    const double bottom = keyboard > 0 ? keyboard : insets.bottom;
    const double barTop = bounds.height() - bottom - inputHeight;
    inputBar_->setFrame({0, barTop, bounds.width(), inputHeight + bottom});
    const double sendWidth = std::ceil(sendButton_->sizeThatFits({0, 0}).width) + 8;
    input_->setFrame({margin, 8, bounds.width() - 3 * margin - sendWidth, inputHeight - 16});
    sendButton_->setFrame({bounds.width() - margin - sendWidth, 8, sendWidth, inputHeight - 16});
    transcript_->setFrame({0, insets.top, bounds.width(), std::max(0.0, barTop - insets.top)});
    if (notice_) notice_->setFrame({2 * margin, insets.top + 40, bounds.width() - 4 * margin, 80});

    // The rows one under the other, the user's on the right, the latest in view.
    const double width = bounds.width();
    const double bubbleWidth = std::floor(width * 0.75);
    double y = margin;
    auto place = [&](uikit::View& row, bool fromUser, bool wide) {
        const double maxWidth = wide ? width - 2 * margin : bubbleWidth;
        auto size = row.sizeThatFits({maxWidth, 10000});
        size.width = wide ? maxWidth : std::min(maxWidth, size.width);
        const double x = fromUser ? width - margin - size.width : margin;
        row.setFrame({x, y, size.width, std::ceil(size.height)});
        y += std::ceil(size.height) + 8;
    };
    for (const auto& row : rows_) place(*row.view, row.fromUser, row.wide);
    if (typing_) place(*typing_, false, false);
    transcript_->setContentSize({width, y + margin});
    const double overflow = y + margin - transcript_->bounds().height();
    transcript_->setContentOffset({0, std::max(0.0, overflow)});
}

void ChatScreen::show(const quorvel::Update& update) {
    std::visit(
        [this](const auto& change) {
            using T = std::decay_t<decltype(change)>;
            if constexpr (std::is_same_v<T, quorvel::Update::AppendMessagingItems>) {
                for (const auto& item : change.items) append(item);
            } else if constexpr (std::is_same_v<T, quorvel::Update::UpdateMessagingItem>) {
                replace(change.item);
            } else if constexpr (std::is_same_v<T, quorvel::Update::ShowTyping>) {
                const std::string name = change.agent.agentName.empty() ? botName_ : change.agent.agentName;
                setTyping(&name);
            } else if constexpr (std::is_same_v<T, quorvel::Update::HideTyping>) {
                setTyping(nullptr);
            } else if constexpr (std::is_same_v<T, quorvel::Update::UpdateInputFieldState>) {
                input_->setEnabled(change.state.enabled);
                sendButton_->setEnabled(change.state.enabled);
                input_->setPlaceholder(change.state.endUserHint.value_or(change.state.enabled ? "Message" : ""));
                if (!change.state.enabled) {
                    input_->resignFirstResponder();
                }
            }
        },
        update.value);
    relayout();
}

std::shared_ptr<uikit::View> ChatScreen::bubble(const std::string& text, bool fromUser, const std::string& identifier) {
    const auto theme = belvakit::CRVLegacyTheme::currentAppliedTheme();
    auto label = uikit::make<uikit::Label>();
    label->setNumberOfLines(0);
    label->setFont(theme->mainFont);
    label->setTextColor(fromUser ? platform::Color::white() : theme->primaryTextColor);
    label->setText(text);
    label->setAccessibilityIdentifier(identifier);
    auto view = std::make_shared<Bubble>(label);
    view->setBackgroundColor(fromUser ? userColour() : botColour());
    view->setCornerRadius(14);
    return view;
}

std::shared_ptr<uikit::View> ChatScreen::rowView(const quorvel::MessagingItem& item, bool& fromUser, bool& wide) {
    std::weak_ptr<ChatScreen> weak = std::static_pointer_cast<ChatScreen>(shared_from_this());
    fromUser = std::holds_alternative<quorvel::TextQuery>(item);
    wide = false;
    if (const auto* query = std::get_if<quorvel::TextQuery>(&item)) return bubble(query->message, true, "DemoChatUserText");
    if (const auto* response = std::get_if<quorvel::TextResponse>(&item))
        return bubble(response->message, false, "DemoChatBotText");
    wide = true;
    auto stack = uikit::make<ButtonStack>();
    if (const auto* options = std::get_if<quorvel::OptionsResponse>(&item)) {
        for (const auto& option : options->options) {
            auto button = choiceButton(option.text, "DemoChatOption");
            button->addTarget(uikit::ControlEvent::touchUpInside, [weak, option] {
                if (auto self = weak.lock()) self->engine_->onEvent({quorvel::Event::ResponseOptionClicked{option.id, option.text}});
            });
            stack->addSubview(button);
        }
    } else if (const auto* actions = std::get_if<quorvel::ActionResponse>(&item)) {
        stack->addSubview(bubble(actions->titleText, false, "DemoChatBotText"));
        for (const auto& action : actions->actions) {
            auto button = choiceButton(action.text, "DemoChatAction");
            const std::string itemId = actions->id;
            button->addTarget(uikit::ControlEvent::touchUpInside, [weak, itemId, action] {
                auto self = weak.lock();
                if (!self) return;
                // The engine's action opens its screen on this screen's navigation.
                self->engine_->onEvent({quorvel::Event::ActionOptionClicked{itemId, action, std::any(self->navigationController())}});
            });
            stack->addSubview(button);
        }
    }
    return stack;
}

void ChatScreen::append(const quorvel::MessagingItem& item) {
    Row row{quorvel::itemId(item), nullptr};
    row.view = rowView(item, row.fromUser, row.wide);
    transcript_->addSubview(row.view);
    rows_.push_back(std::move(row));
}

void ChatScreen::replace(const quorvel::MessagingItem& item) {
    const auto& id = quorvel::itemId(item);
    auto found = std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) { return row.itemId == id; });
    if (found == rows_.end()) {
        append(item);
        return;
    }
    found->view->removeFromSuperview();
    found->view = rowView(item, found->fromUser, found->wide);
    transcript_->addSubview(found->view);
}

void ChatScreen::setTyping(const std::string* agentName) {
    if (typing_) typing_->removeFromSuperview();
    typing_ = nullptr;
    if (!agentName) return;
    typing_ = bubble(*agentName + " is typing…", false, "DemoChatTyping");
    typing_->setAlpha(0.7);
    transcript_->addSubview(typing_);
}

void ChatScreen::send() {
    if (!engine_ || !input_->isEnabled() || input_->text().empty()) return;
    const std::string text = input_->text();
    input_->setText("");
    engine_->onEvent({quorvel::Event::MessageSubmitted{text}});
}

void ChatScreen::relayout() {
    view()->setNeedsLayout();
}

} // namespace belvademo
