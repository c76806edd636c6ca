#include "belvakit/Request/requestlist/request_list_table_view_cell.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/toolkit/theme.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace belvakit {

namespace {

constexpr double unreadDiameter = 8;
constexpr double lineGap = 3;

platform::Color failedColor() { return platform::Color::fromRGB(214, 48, 49); }

// The first character of the name, whole even when it takes several bytes.
std::string firstLetter(const std::string& name) {
    const auto start = std::find_if(name.begin(), name.end(), [](char c) { return c != ' '; });
    if (start == name.end()) return "?";
    const auto lead = static_cast<unsigned char>(*start);
    const std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    std::string letter(start, start + static_cast<std::ptrdiff_t>(std::min<std::size_t>(length, name.end() - start)));
    if (letter.size() == 1) letter[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(letter[0])));
    return letter;
}

// The same name always gets the same colour.
platform::Color discColor(const std::string& name) {
    static constexpr int palette[][3] = {{52, 152, 219}, {155, 89, 182}, {26, 188, 156}, {230, 126, 34}, {52, 73, 94}};
    std::uint32_t hash = 2166136261u;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    const auto& rgb = palette[hash % std::size(palette)];
    return platform::Color::fromRGB(rgb[0], rgb[1], rgb[2]);
}

uikit::Size measured(const uikit::Label& label, double width) {
    if (label.isHidden() || label.text().empty()) return {0, 0};
    const uikit::Size size = label.sizeThatFits({width, 0});
    return {std::min(std::ceil(size.width), width), std::ceil(size.height)};
}

} // namespace

LetterAvatarView::LetterAvatarView(double diameter)
    : uikit::View({0, 0, diameter, diameter}), letter_(uikit::make<uikit::Label>()) {
    setCornerRadius(diameter / 2);
    setClipsToBounds(true);
    letter_->setFont(platform::Font::boldSystemFont(std::floor(diameter * 0.45)));
    letter_->setTextColor(platform::Color::white());
    letter_->setTextAlignment(uikit::TextAlignment::center);
    addSubview(letter_);
    setAccessibilityIdentifier("CRVletterAvatar");
}

void LetterAvatarView::setName(const std::string& name) {
    letter_->setText(firstLetter(name));
    setBackgroundColor(discColor(name));
    setAccessibilityLabel(name);
}

void LetterAvatarView::layoutSubviews() {
    uikit::View::layoutSubviews();
    letter_->setFrame(bounds());
}

RequestListTableViewCell::RequestListTableViewCell(uikit::TableViewCellStyle style, std::string reuseIdentifier)
    : uikit::TableViewCell(style, std::move(reuseIdentifier)),
      unreadIndicator(uikit::make<uikit::View>(uikit::Rect{0, 0, unreadDiameter, unreadDiameter})),
      agentAvatarView(uikit::make<AvatarImageView>(avatarSize)),
      letterAvatarView(uikit::make<LetterAvatarView>(avatarSize)),
      agentNamesTitle(uikit::make<uikit::Label>()),
      requestSubjectLabel(uikit::make<uikit::Label>()),
      lastCommentLabel(uikit::make<uikit::Label>()),
      updatedAtTimestamp(uikit::make<uikit::Label>()) {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    setBackgroundColor(theme->primaryBackgroundColor);
    unreadIndicator->setCornerRadius(unreadDiameter / 2);
    unreadIndicator->setAccessibilityIdentifier("CRVunreadIndicator");
    unreadIndicator->setAccessibilityLabel(localized(LocalizedKey::requestsRequestListUnreadAccessibility));
    agentAvatarView->setBorderWidth(0);
    agentNamesTitle->setFont(theme->boldSubtitleFont);
    agentNamesTitle->setTextColor(theme->primaryTextColor);
    agentNamesTitle->setAccessibilityIdentifier("CRVagentNames");
    updatedAtTimestamp->setFont(theme->metaTextFont);
    updatedAtTimestamp->setTextColor(theme->secondaryTextColor);
    updatedAtTimestamp->setTextAlignment(uikit::TextAlignment::right);
    updatedAtTimestamp->setAccessibilityIdentifier("CRVrequestTimestamp");
    requestSubjectLabel->setTextColor(theme->primaryTextColor);
    requestSubjectLabel->setAccessibilityIdentifier("CRVrequestSubject");
    lastCommentLabel->setNumberOfLines(2);
    lastCommentLabel->setFont(theme->subtitleFont);
    lastCommentLabel->setAccessibilityIdentifier("CRVrequestLastComment");
    for (const auto& view : std::initializer_list<std::shared_ptr<uikit::View>>{
             unreadIndicator, agentAvatarView, letterAvatarView, agentNamesTitle, updatedAtTimestamp,
             requestSubjectLabel, lastCommentLabel})
        contentView()->addSubview(view);
    prepareForReuse();
}

std::string RequestListTableViewCell::agentNamesText(const RequestListCellData& data) {
    std::vector<std::string> names;
    if (data.agents)
        for (const auto& agent : *data.agents)
            if (!agent.name.empty() && std::find(names.begin(), names.end(), agent.name) == names.end())
                names.push_back(agent.name);
    if (names.empty() && data.agentAvatarInfo && !data.agentAvatarInfo->agentName.empty())
        names.push_back(data.agentAvatarInfo->agentName);
    names.push_back(localized(LocalizedKey::requestsRequestListCellMe));
    std::string text;
    for (const auto& name : names) {
        if (!text.empty()) text += localized(LocalizedKey::requestsRequestListCellSeperator);
        text += name;
    }
    return text;
}

std::string RequestListTableViewCell::lastCommentText(const RequestListCellData& data) {
    if (data.isErrored) return localized(LocalizedKey::requestsRequestListCellFailed);
    const std::string& last = data.requestLastComment ? *data.requestLastComment : data.requestDescription;
    const std::string comment = last == data.requestTitle ? std::string() : last;
    if (data.requestStatus != RequestStatus::closed) return comment;
    // A closed ticket says so where its latest word stands; the time keeps its own place.
    const std::string& closed = localized(LocalizedKey::requestsRequestListCellClosed);
    return comment.empty() ? closed : closed + " \u00B7 " + comment;
}

void RequestListTableViewCell::configure(const RequestListCellData& data) {
    const auto theme = CRVLegacyTheme::currentAppliedTheme();
    unreadIndicator->setHidden(!data.hasUnreadComments);
    unreadIndicator->setBackgroundColor(Theme::currentTheme().primaryColor());

    const auto& agent = data.agentAvatarInfo;
    // A known picture, or one still to come, shows in the image view; an agent without one gets a letter.
    const bool picture = agent && (agent->avatarImage || agent->avatarUrl);
    agentAvatarView->setHidden(!picture);
    letterAvatarView->setHidden(!agent || picture);
    if (agent && picture) agentAvatarView->setAgent(*agent);
    if (agent && !picture) letterAvatarView->setName(agent->agentName);

    const std::string names = agentNamesText(data);
    agentNamesTitle->setText(names);
    agentNamesTitle->setAccessibilityLabel(localized(LocalizedKey::requestsRequestListCellResponders) + " " + names);
    updatedAtTimestamp->setText(data.displayTimestamp);

    const bool closed = data.requestStatus == RequestStatus::closed;
    requestSubjectLabel->setFont(data.hasUnreadComments ? theme->boldSubHeaderFont : theme->subHeaderFont);
    requestSubjectLabel->setTextColor(closed ? theme->secondaryTextColor : theme->primaryTextColor);
    requestSubjectLabel->setText(data.requestTitle);

    lastCommentLabel->setTextColor(data.isErrored ? failedColor() : theme->secondaryTextColor);
    const std::string comment = lastCommentText(data);
    lastCommentLabel->setText(comment);
    lastCommentLabel->setHidden(comment.empty());

    separatorInset.left = textLeading();
    setNeedsLayout();
}

void RequestListTableViewCell::prepareForReuse() {
    uikit::TableViewCell::prepareForReuse();
    unreadIndicator->setHidden(true);
    agentAvatarView->setHidden(true);
    agentAvatarView->setAvatarImage(nullptr);
    letterAvatarView->setHidden(true);
    for (const auto& label : {agentNamesTitle, requestSubjectLabel, lastCommentLabel, updatedAtTimestamp})
        label->setText({});
}

double RequestListTableViewCell::textLeading() const {
    const bool avatar = !agentAvatarView->isHidden() || !letterAvatarView->isHidden();
    return avatar ? margin + avatarSize + verticalMargin : margin;
}

double RequestListTableViewCell::placeTexts(double width, bool apply) const {
    const double leading = textLeading();
    const double textWidth = std::max(0.0, width - leading - margin);
    const uikit::Size stamp = measured(*updatedAtTimestamp, textWidth / 2);
    const uikit::Size names = measured(*agentNamesTitle, std::max(0.0, textWidth - stamp.width - 8));
    const double firstLine = std::max(names.height, stamp.height);
    double y = verticalMargin;
    if (apply) {
        agentNamesTitle->setFrame({leading, y, std::max(0.0, textWidth - stamp.width - 8), firstLine});
        updatedAtTimestamp->setFrame({width - margin - stamp.width, y, stamp.width, firstLine});
        unreadIndicator->setFrame({std::floor((margin - unreadDiameter) / 2), y + std::floor((firstLine - unreadDiameter) / 2),
                                   unreadDiameter, unreadDiameter});
    }
    y += firstLine;
    for (const auto& label : {requestSubjectLabel, lastCommentLabel}) {
        const uikit::Size size = measured(*label, textWidth);
        if (size.height <= 0) continue;
        y += lineGap;
        if (apply) label->setFrame({leading, y, textWidth, size.height});
        y += size.height;
    }
    const bool avatar = leading > margin;
    return std::ceil(std::max(y, avatar ? verticalMargin + avatarSize : 0.0) + verticalMargin);
}

uikit::Size RequestListTableViewCell::sizeThatFits(uikit::Size size) const {
    return {size.width, placeTexts(size.width, false)};
}

void RequestListTableViewCell::layoutSubviews() {
    uikit::TableViewCell::layoutSubviews();
    const double width = contentView()->bounds().width();
    agentAvatarView->setFrame({margin, verticalMargin, avatarSize, avatarSize});
    letterAvatarView->setFrame({margin, verticalMargin, avatarSize, avatarSize});
    placeTexts(width, true);
}

} // namespace belvakit
