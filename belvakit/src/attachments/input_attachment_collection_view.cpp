#include "belvakit/attachments/input_attachment_collection_view.hpp"

#include "belvakit/toolkit/theme.hpp"
#include "uikit/button.hpp"
#include "uikit/image_view.hpp"
#include "uikit/label.hpp"

#include <cmath>
#include <cstdio>

namespace belvakit {

namespace {

constexpr double spacing = 8;
constexpr double inset = 16;

std::string titleOf(const InputAttachmentViewState& attachment) {
    if (const auto* file = dynamic_cast<const InputFileViewModel*>(&attachment))
        return file->fileExtension().empty() ? file->title() : file->title() + "." + file->fileExtension();
    if (const auto* image = dynamic_cast<const InputImageViewModel*>(&attachment))
        return image->filename().value_or("Image");
    return attachment.identifier();
}

platform::ImagePtr pictureOf(const InputAttachmentViewState& attachment) {
    if (const auto* file = dynamic_cast<const InputFileViewModel*>(&attachment))
        return file->icon() ? file->icon() : icon(file->fileType());
    if (const auto* image = dynamic_cast<const InputImageViewModel*>(&attachment)) return image->image();
    return nullptr;
}

// One chip: picture, name over size, and the remove button on the right.
class AttachmentChip final : public uikit::View {
public:
    AttachmentChip(const InputAttachmentViewState& attachment, std::function<void()> remove)
        : picture_(uikit::make<uikit::ImageView>(pictureOf(attachment))), title_(uikit::make<uikit::Label>()),
          size_(uikit::make<uikit::Label>()), remove_(uikit::make<uikit::Button>(uikit::ButtonType::custom)) {
        const auto theme = CRVLegacyTheme::currentAppliedTheme();
        setBackgroundColor(theme->secondaryBackgroundColor);
        setBorderColor(theme->separatorColor);
        setBorderWidth(1);
        setCornerRadius(8);
        setClipsToBounds(true);
        setAccessibilityIdentifier("CRVattachment_" + attachment.identifier());
        setAccessibilityLabel(titleOf(attachment));
        picture_->contentMode = uikit::ContentMode::scaleAspectFill;
        picture_->setClipsToBounds(true);
        picture_->setCornerRadius(4);
        title_->setText(titleOf(attachment));
        title_->setFont(theme->metaTextFont);
        title_->setTextColor(theme->primaryTextColor);
        size_->setText(attachmentSizeText(attachment.size()));
        size_->setFont(theme->metaTextFont);
        size_->setTextColor(theme->metaTextColor);
        remove_->setTitle("\u00D7");
        remove_->titleLabel()->setFont(platform::Font::boldSystemFont(18));
        remove_->setTitleColor(theme->metaTextColor);
        remove_->setAccessibilityIdentifier("CRVremoveAttachmentButton");
        remove_->addTarget(uikit::ControlEvent::touchUpInside, std::move(remove));
        for (const std::shared_ptr<uikit::View>& view : {std::static_pointer_cast<uikit::View>(picture_),
                                                         std::static_pointer_cast<uikit::View>(title_),
                                                         std::static_pointer_cast<uikit::View>(size_),
                                                         std::static_pointer_cast<uikit::View>(remove_)})
            addSubview(view);
    }
    std::string_view className() const override { return "InputAttachmentCell"; }

    void layoutSubviews() override {
        uikit::View::layoutSubviews();
        const auto area = bounds();
        const double side = area.height() - 12;
        picture_->setFrame({6, 6, side, side});
        const double removeWidth = 32;
        const double textLeft = 6 + side + 8;
        const double textWidth = std::max(0.0, area.width() - textLeft - removeWidth);
        title_->setFrame({textLeft, 8, textWidth, std::floor(area.height() / 2) - 8});
        size_->setFrame({textLeft, std::floor(area.height() / 2), textWidth, std::floor(area.height() / 2) - 8});
        remove_->setFrame({area.width() - removeWidth, 0, removeWidth, area.height()});
    }

private:
    std::shared_ptr<uikit::ImageView> picture_;
    std::shared_ptr<uikit::Label> title_;
    std::shared_ptr<uikit::Label> size_;
    std::shared_ptr<uikit::Button> remove_;
};

} // namespace

InputAttachmentCollectionView::InputAttachmentCollectionView() {
    setAccessibilityIdentifier("CRVattachmentCollectionView");
}

void InputAttachmentCollectionView::setState(InputAttachmentCollectionViewState state) {
    if (state == state_) return;
    state_ = std::move(state);
    rebuild();
}

void InputAttachmentCollectionView::rebuild() {
    while (!subviews().empty()) subviews().back()->removeFromSuperview();
    for (const auto& attachment : state_.attachments) {
        if (!attachment) continue;
        addSubview(std::make_shared<AttachmentChip>(*attachment, [this, identifier = attachment->identifier()] {
            if (removeTapped) removeTapped(identifier);
        }));
    }
    setNeedsLayout();
}

uikit::Size InputAttachmentCollectionView::sizeThatFits(uikit::Size size) const {
    return {size.width, state_.attachments.empty() ? 0.0 : chipHeight + 2 * spacing};
}

void InputAttachmentCollectionView::layoutSubviews() {
    uikit::View::layoutSubviews();
    double x = inset;
    for (const auto& chip : subviews()) {
        chip->setFrame({x, spacing, chipWidth, chipHeight});
        x += chipWidth + spacing;
    }
    setContentSize({x - spacing + inset, frame().height()});
}

std::string attachmentSizeText(std::int64_t bytes) {
    if (bytes < 1024) return std::to_string(bytes) + " bytes";
    char text[32];
    if (bytes < 1024 * 1024) {
        std::snprintf(text, sizeof text, "%.0f KB", std::ceil(static_cast<double>(bytes) / 1024));
    } else {
        std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / (1024.0 * 1024.0));
    }
    return text;
}

} // namespace belvakit
