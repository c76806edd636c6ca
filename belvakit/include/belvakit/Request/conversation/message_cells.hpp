#pragma once

#include "belvakit/Request/conversation/message.hpp"
#include "corvane/action_handler.hpp"
#include "platform/attributed_string.hpp"
#include "platform/url.hpp"
#include "uikit/button.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"
#include "uikit/table_view_cell.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

using MessageHandler = std::function<void(const Message&)>;
using LinkHandler = std::function<void(std::shared_ptr<corvane::ActionHandler>, const platform::URL&)>;

// Styled text whose links can be followed. The kit's taps carry no point, so a tap on the text
// follows its first link; `activateLink` follows a given one.
class MessageTextView final : public uikit::Label {
public:
    MessageTextView();
    std::string_view className() const override { return "UITextView"; }

    void setAttributedText(platform::AttributedString text);
    // The links of the text, in order.
    const std::vector<platform::URL>& links() const { return links_; }

    // Asked before a link is followed; false keeps the platform from opening it.
    std::function<bool(const platform::URL&)> shouldInteractWithURL;
    // Asks `shouldInteractWithURL`, then opens the link if it may. False when it may not.
    bool activateLink(const platform::URL& url);
    bool handleTap() override;

private:
    std::vector<platform::URL> links_;
};

// The rounded background of a message.
class BubbleView final : public uikit::View {
public:
    BubbleView();
    std::string_view className() const override { return "BubbleView"; }
};

// The line under a bubble: the delivered mark, the error, the sending note or the agent's name.
class StatusView final : public uikit::View {
public:
    enum class Kind { none, delivered, error, sending, agentName };

    StatusView();
    std::string_view className() const override { return "StatusView"; }

    // Which line to show for the message, if any.
    static Kind kindFor(const Message& message);
    void show(Kind kind, const Message& message);
    Kind kind() const { return kind_; }

    std::shared_ptr<uikit::View> contentContainer;
    std::shared_ptr<uikit::Label> subscriptLabel;
    double horizontalPadding = 4;
    std::shared_ptr<uikit::View> contentView;
    bool isAgent = false;
    bool isEndOfGroup = false;

    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    Kind kind_ = Kind::none;
};

// What every message cell shares: the message, the tap, the status line and the retry button of a
// failed send.
class MessageCell : public uikit::TableViewCell {
public:
    using uikit::TableViewCell::TableViewCell;

    const std::optional<Message>& message() const { return message_; }
    // Shows the message; the table hands a new one over on each change.
    virtual void setMessage(const Message& message);
    void prepareForReuse() override;

    MessageHandler cellTapHandler;
    MessageHandler errorButtonTapHandler;
    std::shared_ptr<StatusView> statusView() const { return statusView_; }
    const std::shared_ptr<uikit::Button>& errorButton() const { return errorButton_; }

protected:
    void buildStatusAndRetry();
    // Places the status line under `bubble` and the retry button beside it; the cell's height.
    double placeStatus(const uikit::Rect& bubble, double width, bool layOut) const;
    bool isAgent() const;
    bool failed() const;
    void tapped();

    std::optional<Message> message_;
    std::shared_ptr<StatusView> statusView_;
    std::shared_ptr<uikit::Button> errorButton_;
};

class TextCell final : public MessageCell {
public:
    TextCell(uikit::TableViewCellStyle style, std::string reuseIdentifier);
    std::string_view className() const override { return "TextCell"; }

    void setMessage(const Message& message) override;
    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

    std::shared_ptr<MessageTextView> messageTextView;
    std::shared_ptr<uikit::View> messageContainer;
    std::shared_ptr<BubbleView> bubbleView;
    LinkHandler openHelpCenterWithArticleId;
    // Made on first use, from the core object of the time.
    corvane::ActionHandlerRegistry* actionHandlerRegistry();

private:
    bool shouldOpen(const platform::URL& url);
    uikit::Rect bubbleFrame(double width) const;
};

class ImageCell final : public MessageCell {
public:
    ImageCell(uikit::TableViewCellStyle style, std::string reuseIdentifier);
    std::string_view className() const override { return "ImageCell"; }

    void setMessage(const Message& message) override;
    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

    std::shared_ptr<uikit::View> imageHolderView;
    std::shared_ptr<uikit::ImageView> attachmentImageView;
    std::shared_ptr<uikit::View> placeholderView;
    // The side of the screen the picture is measured against; set once by the factory.
    std::optional<double> width;

private:
    uikit::Rect imageFrame(double cellWidth) const;
};

class FileCell final : public MessageCell {
public:
    FileCell(uikit::TableViewCellStyle style, std::string reuseIdentifier);
    std::string_view className() const override { return "FileCell"; }

    void setMessage(const Message& message) override;
    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

    std::shared_ptr<uikit::View> attachmentView;
    std::shared_ptr<BubbleView> bubbleView;
    std::shared_ptr<uikit::ImageView> iconView;
    std::shared_ptr<uikit::Label> filenameLabel;
    std::shared_ptr<uikit::Label> sizeLabel;

private:
    uikit::Rect bubbleFrame(double width) const;
};

// A date row or a notice.
class SystemMessageCell final : public uikit::TableViewCell {
public:
    SystemMessageCell(uikit::TableViewCellStyle style, std::string reuseIdentifier);
    std::string_view className() const override { return "SystemMessageCell"; }

    void configure();
    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

    std::shared_ptr<uikit::Label> label;
    std::optional<CellItem> item;
};

// "12.5 KB" and the like, for a file's size.
std::string fileSizeText(std::int64_t bytes);
// A date row's text: the day, as "MMMM dd" in the user's calendar.
std::string dateRowText(Date date);

} // namespace belvakit
