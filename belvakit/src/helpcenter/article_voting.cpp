#include "belvakit/helpcenter/article_voting.hpp"

#include "belvakit/entry/localized_strings.hpp"
#include "belvakit/resources/image_resources.hpp"
#include "belvakit/toolkit/theme.hpp"

#include <boost/json.hpp>

#include <charconv>
#include <cmath>

namespace belvakit {

namespace {

constexpr int noButtonSelected = 999;

std::optional<int> parseDecimal(const std::string& text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 10);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

// The template image's shape in the tint colour, as the platform draws template images.
platform::ImagePtr tinted(const platform::ImagePtr& image, const platform::Color& tint) {
    if (!image) return nullptr;
    auto out = std::make_shared<platform::Image>(*image);
    const auto channel = [](double value) { return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255)); };
    for (std::size_t at = 0; at + 3 < out->rgba.size(); at += 4) {
        out->rgba[at] = channel(tint.red);
        out->rgba[at + 1] = channel(tint.green);
        out->rgba[at + 2] = channel(tint.blue);
        out->rgba[at + 3] = static_cast<std::uint8_t>(std::lround(out->rgba[at + 3] * std::clamp(tint.alpha, 0.0, 1.0)));
    }
    return out;
}

} // namespace

// Handler.

HelpCenterArticleVotingHandler::HelpCenterArticleVotingHandler(PrivateInit, std::string id)
    : hcProvider(dastrel::CRVHelpCenterProvider::make()), articleId(std::move(id)), sessionStore(sessionUserDefaultsStore()) {}

std::shared_ptr<HelpCenterArticleVotingHandler> HelpCenterArticleVotingHandler::initWithArticleId(
    std::string articleId, const std::optional<std::string>&) {
    return std::make_shared<HelpCenterArticleVotingHandler>(PrivateInit{}, std::move(articleId));
}

std::optional<std::map<std::string, std::string>> HelpCenterArticleVotingHandler::storedEntry() const {
    if (!sessionStore) return std::nullopt;
    const auto stored = sessionStore->value(CRVArticleVotingStoreKey);
    if (!stored || !stored->is_object()) return std::nullopt;
    const auto* entry = stored->as_object().if_contains(articleId);
    if (!entry || !entry->is_object()) return std::nullopt;
    std::map<std::string, std::string> strings;
    for (const auto& [key, value] : entry->as_object()) {
        if (!value.is_string()) return std::nullopt;
        strings.emplace(std::string(key), std::string(value.as_string()));
    }
    return strings;
}

int HelpCenterArticleVotingHandler::currentArticleVote() const {
    const auto entry = storedEntry();
    if (!entry) return dastrel::CRV_Article_Even_Vote_Number;
    const auto value = entry->find("vote_value");
    const auto number = value == entry->end() ? std::nullopt : parseDecimal(value->second);
    if (number == dastrel::CRV_Article_Up_Vote_Number || number == dastrel::CRV_Article_Down_Vote_Number) return *number;
    return dastrel::CRV_Article_Even_Vote_Number;
}

void HelpCenterArticleVotingHandler::articleRatingVoteSelected(CRVHelpCenterArticleRatingStateProtocol& view, int vote) {
    if (vote == currentArticleVote()) {
        // Without a remembered vote id the server's vote can't be named: nothing happens.
        if (const auto entry = storedEntry())
            if (const auto voteId = entry->find("vote_id"); voteId != entry->end()) removeVote(view, voteId->second);
        return;
    }
    if (vote == dastrel::CRV_Article_Up_Vote_Number)
        this->vote(view, true);
    else if (vote == dastrel::CRV_Article_Down_Vote_Number)
        this->vote(view, false);
}

void HelpCenterArticleVotingHandler::vote(CRVHelpCenterArticleRatingStateProtocol& view, bool up) {
    view.updateButtonStatesForButtonAtIndexSelected(up ? dastrel::CRV_Article_Up_Vote_Button_Index
                                                       : dastrel::CRV_Article_Down_Vote_Button_Index);
    // Held strongly: the vote is remembered even when the screen has gone meanwhile.
    auto done = [self = shared_from_this()](std::optional<std::vector<dastrel::CRVHelpCenterArticleVote>> votes,
                                            std::optional<dastrel::ProviderError>) {
        if (!votes || votes->empty() || !self->sessionStore) return;
        self->storeVote(votes->front());
    };
    if (up)
        hcProvider->upVoteArticleWithId(articleId, std::move(done));
    else
        hcProvider->downVoteArticleWithId(articleId, std::move(done));
}

void HelpCenterArticleVotingHandler::removeVote(CRVHelpCenterArticleRatingStateProtocol& view, const std::string& voteId) {
    view.updateButtonStatesForButtonAtIndexSelected(noButtonSelected);
    hcProvider->removeVoteWithId(voteId, [self = shared_from_this()](std::optional<dastrel::CRVHelpCenterArticleVote> removed,
                                                                     std::optional<dastrel::ProviderError>) {
        // A failed removal keeps the entry, so the vote shows again when the article reopens.
        if (removed) self->forgetVote();
    });
}

void HelpCenterArticleVotingHandler::storeVote(const dastrel::CRVHelpCenterArticleVote& vote) {
    const auto stored = sessionStore->value(CRVArticleVotingStoreKey);
    boost::json::object votes = stored && stored->is_object() ? stored->as_object() : boost::json::object{};
    boost::json::object entry;
    entry["vote_id"] = std::to_string(vote.identifier);
    if (vote.value) entry["vote_value"] = *vote.value;
    votes[articleId] = std::move(entry);
    sessionStore->set(std::move(votes), CRVArticleVotingStoreKey);
}

void HelpCenterArticleVotingHandler::forgetVote() {
    if (!sessionStore) return;
    auto stored = sessionStore->value(CRVArticleVotingStoreKey);
    if (!stored || !stored->is_object()) return;
    stored->as_object().erase(articleId);
    sessionStore->set(std::move(*stored), CRVArticleVotingStoreKey);
}

// View.

CRVHelpCenterArticleRatingView::CRVHelpCenterArticleRatingView() = default;

std::shared_ptr<CRVHelpCenterArticleRatingView> CRVHelpCenterArticleRatingView::loadFromNib() {
    auto view = uikit::make<CRVHelpCenterArticleRatingView>();
    view->awakeFromNib();
    return view;
}

std::shared_ptr<uikit::Button> CRVHelpCenterArticleRatingView::makeButton(const char* imageName, const std::string& label,
                                                                          const char* identifier) {
    auto button = uikit::make<uikit::Button>(uikit::ButtonType::custom);
    button->setBorderWidth(1.0);
    button->setBorderColor(platform::Color{0, 0, 0, 0.1});
    button->setCornerRadius(4.0);
    button->setClipsToBounds(true);
    button->setImage(resourceImage(imageName));
    button->setAccessibilityLabel(label);
    button->setAccessibilityIdentifier(identifier);
    addSubview(button);
    return button;
}

void CRVHelpCenterArticleRatingView::awakeFromNib() {
    const auto theme = CRVLegacyTheme::baseTheme();
    articleRatingLabel = uikit::make<uikit::Label>();
    articleRatingLabel->setText(localized(LocalizedKey::helpCenterArticleVotingTitle));
    articleRatingLabel->setAccessibilityLabel(localized(LocalizedKey::helpCenterArticleVotingTitle));
    articleRatingLabel->setAccessibilityIdentifier("CRVarticleVotingLabel");
    articleRatingLabel->setTextAlignment(uikit::TextAlignment::natural);
    articleRatingLabel->setFont(theme->boldMainFont);
    articleRatingLabel->setTextColor(CRVLegacyTheme::currentAppliedTheme()->primaryTextColor);
    articleRatingLabel->setNumberOfLines(0);
    addSubview(articleRatingLabel);

    upVoteButton = makeButton("icoVoteUp", localized(LocalizedKey::helpCenterArticleVoteYesAccessibility),
                              "CRVarticleUpVoteButton");
    downVoteButton = makeButton("icoVoteDown", localized(LocalizedKey::helpCenterArticleVoteNoAccessibility),
                                "CRVarticleDownVoteButton");
    const std::weak_ptr<uikit::View> weak = weak_from_this();
    upVoteButton->addTarget(uikit::ControlEvent::touchUpInside, [weak] {
        if (auto self = std::static_pointer_cast<CRVHelpCenterArticleRatingView>(weak.lock())) self->upVote();
    });
    downVoteButton->addTarget(uikit::ControlEvent::touchUpInside, [weak] {
        if (auto self = std::static_pointer_cast<CRVHelpCenterArticleRatingView>(weak.lock())) self->downVote();
    });
    updateButtonStatesForButtonAtIndexSelected(noButtonSelected);
}

void CRVHelpCenterArticleRatingView::upVote() {
    if (auto handler = delegate.lock()) handler->articleRatingVoteSelected(*this, dastrel::CRV_Article_Up_Vote_Number);
}

void CRVHelpCenterArticleRatingView::downVote() {
    if (auto handler = delegate.lock()) handler->articleRatingVoteSelected(*this, dastrel::CRV_Article_Down_Vote_Number);
}

void CRVHelpCenterArticleRatingView::updateButtonStatesForButtonAtIndexSelected(int index) {
    if (!upVoteButton || !downVoteButton) return;
    const platform::Color primary = CRVLegacyTheme::currentAppliedTheme()->primaryTextColor;
    const platform::Color white = platform::Color::white();
    const bool up = index == dastrel::CRV_Article_Up_Vote_Button_Index;
    const bool down = index == dastrel::CRV_Article_Down_Vote_Button_Index;
    const auto paint = [](uikit::Button& button, const char* imageName, platform::Color background, platform::Color tint) {
        button.setBackgroundColor(background);
        button.setTintColor(tint);
        button.setImage(tinted(resourceImage(imageName), tint));
    };
    paint(*upVoteButton, "icoVoteUp", up ? primary : white, up ? white : primary);
    paint(*downVoteButton, "icoVoteDown", down ? primary : white, down ? white : primary);
}

namespace {
constexpr double sidePadding = 15;
constexpr double topPadding = 16;
constexpr double titleToButtons = 12;
constexpr double bottomPadding = 20;
constexpr double buttonGap = 12;
} // namespace

uikit::Size CRVHelpCenterArticleRatingView::sizeThatFits(uikit::Size size) const {
    const double width = size.width > 0 ? size.width : 0;
    // Without a width the title keeps to one line.
    const double titleWidth = width > 0 ? std::max(1.0, width - 2 * sidePadding) : 0;
    const double titleHeight = articleRatingLabel ? std::ceil(articleRatingLabel->sizeThatFits({titleWidth, 0}).height) : 0;
    const double height = topPadding + titleHeight + titleToButtons + buttonHeight + bottomPadding;
    return {width > 0 ? width : 2 * buttonWidth + buttonGap + 2 * sidePadding, height};
}

void CRVHelpCenterArticleRatingView::layoutSubviews() {
    uikit::View::layoutSubviews();
    if (!articleRatingLabel) return;
    const double width = frame().width();
    const double titleWidth = std::max(1.0, width - 2 * sidePadding);
    const double titleHeight = std::ceil(articleRatingLabel->sizeThatFits({titleWidth, 0}).height);
    articleRatingLabel->setFrame({sidePadding, topPadding, titleWidth, titleHeight});
    const double y = topPadding + titleHeight + titleToButtons;
    const double left = std::floor((width - (2 * buttonWidth + buttonGap)) / 2);
    upVoteButton->setFrame({left, y, buttonWidth, buttonHeight});
    downVoteButton->setFrame({left + buttonWidth + buttonGap, y, buttonWidth, buttonHeight});
}

} // namespace belvakit
