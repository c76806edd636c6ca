#pragma once

#include "belvakit/Request/requestlist/request_list_cell_data.hpp"
#include "belvakit/toolkit/avatar_views.hpp"
#include "uikit/label.hpp"
#include "uikit/table_view_cell.hpp"

#include <memory>
#include <string>

namespace belvakit {

// An agent without a picture: the first letter of the name on a coloured disc.
class LetterAvatarView final : public uikit::View {
public:
    explicit LetterAvatarView(double diameter = 40);
    std::string_view className() const override { return "LetterAvatarView"; }

    void setName(const std::string& name);
    const std::shared_ptr<uikit::Label>& letterLabel() const { return letter_; }
    void layoutSubviews() override;

private:
    std::shared_ptr<uikit::Label> letter_;
};

// One ticket of the list: who took part and when, what it is about, and the last word on it.
class RequestListTableViewCell final : public uikit::TableViewCell {
public:
    static constexpr double avatarSize = 40;
    static constexpr double margin = 16;
    static constexpr double verticalMargin = 12;

    explicit RequestListTableViewCell(uikit::TableViewCellStyle style = uikit::TableViewCellStyle::defaultStyle,
                                      std::string reuseIdentifier = {});
    std::string_view className() const override { return "RequestListTableViewCell"; }

    void configure(const RequestListCellData& data);

    // The texts a row draws.
    static std::string agentNamesText(const RequestListCellData& data);
    // The failure of a ticket that did not go out, or the latest comment, after the closed mark of
    // a closed ticket; no comment when it only repeats the title.
    static std::string lastCommentText(const RequestListCellData& data);

    std::shared_ptr<uikit::View> unreadIndicator;
    std::shared_ptr<AvatarImageView> agentAvatarView;
    std::shared_ptr<LetterAvatarView> letterAvatarView;
    std::shared_ptr<uikit::Label> agentNamesTitle;
    std::shared_ptr<uikit::Label> requestSubjectLabel;
    std::shared_ptr<uikit::Label> lastCommentLabel;
    std::shared_ptr<uikit::Label> updatedAtTimestamp;

    void prepareForReuse() override;
    uikit::Size sizeThatFits(uikit::Size size) const override;
    void layoutSubviews() override;

private:
    // Where the texts start: after the avatar when the row has one.
    double textLeading() const;
    // Lays the texts out at `width`; the height the row needs.
    double placeTexts(double width, bool apply) const;
};

} // namespace belvakit
