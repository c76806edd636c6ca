#pragma once

#include "belvakit/Request/queue/user_defaults_store.hpp"
#include "dastrel/help_center_provider.hpp"
#include "uikit/button.hpp"
#include "uikit/label.hpp"

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// Where the device remembers the user's votes: article id -> {"vote_id", "vote_value"}.
inline constexpr const char* CRVArticleVotingStoreKey = "HC.article.voting";

// What the vote view shows: the index of the selected button, or 999 for neither.
class CRVHelpCenterArticleRatingStateProtocol {
public:
    virtual ~CRVHelpCenterArticleRatingStateProtocol() = default;
    virtual void updateButtonStatesForButtonAtIndexSelected(int index) = 0;
};

class CRVHelpCenterArticleRatingHandlerProtocol {
public:
    virtual ~CRVHelpCenterArticleRatingHandlerProtocol() = default;
    // `atIndex` is a vote number (CRV_Article_..._Vote_Number), not a button index.
    virtual void articleRatingVoteSelected(CRVHelpCenterArticleRatingStateProtocol& view, int atIndex) = 0;
};

// The rule of voting on one article: a tap votes, a second tap on the same button takes the vote
// back by the server's vote id, a tap on the other button changes the vote. The buttons change
// before the request; failures are silent. Requests hold the handler, so a vote finishes and is
// remembered after its screen closed. Main thread.
class HelpCenterArticleVotingHandler final : public CRVHelpCenterArticleRatingHandlerProtocol,
                                             public std::enable_shared_from_this<HelpCenterArticleVotingHandler> {
public:
    // The locale is not used.
    static std::shared_ptr<HelpCenterArticleVotingHandler> initWithArticleId(std::string articleId,
                                                                             const std::optional<std::string>& andLocale);

    std::shared_ptr<dastrel::CRVHelpCenterProvider> hcProvider;
    std::string articleId;
    // The core's session store; none without a core.
    std::shared_ptr<UserDefaultsStore> sessionStore;
    // Never called.
    std::function<void(std::optional<std::vector<std::any>>, std::optional<dastrel::ProviderError>)> callback;

    // The remembered vote: the up or down number, else the even number.
    int currentArticleVote() const;
    void articleRatingVoteSelected(CRVHelpCenterArticleRatingStateProtocol& view, int atIndex) override;

    struct PrivateInit {};
    HelpCenterArticleVotingHandler(PrivateInit, std::string articleId);

private:
    // The article's entry, when the store holds one as a dictionary of strings.
    std::optional<std::map<std::string, std::string>> storedEntry() const;
    void vote(CRVHelpCenterArticleRatingStateProtocol& view, bool up);
    void removeVote(CRVHelpCenterArticleRatingStateProtocol& view, const std::string& voteId);
    void storeVote(const dastrel::CRVHelpCenterArticleVote& vote);
    void forgetVote();
};

// "Was this article helpful?" with a yes and a no button. Main thread.
class CRVHelpCenterArticleRatingView final : public uikit::View, public CRVHelpCenterArticleRatingStateProtocol {
public:
    // Made and set up as loaded from its interface file.
    static std::shared_ptr<CRVHelpCenterArticleRatingView> loadFromNib();
    CRVHelpCenterArticleRatingView();
    std::string_view className() const override { return "CRVHelpCenterArticleRatingView"; }

    std::shared_ptr<uikit::Button> upVoteButton;
    std::shared_ptr<uikit::Button> downVoteButton;
    std::shared_ptr<uikit::Label> articleRatingLabel;
    std::weak_ptr<CRVHelpCenterArticleRatingHandlerProtocol> delegate;

    // Borders, images, texts and identifiers of the label and the buttons.
    void awakeFromNib();
    // The buttons' actions: the up or down vote number to the delegate.
    void upVote();
    void downVote();
    void updateButtonStatesForButtonAtIndexSelected(int index) override;

    static constexpr double buttonWidth = 64;
    static constexpr double buttonHeight = 36;
    void layoutSubviews() override;
    // As wide as asked; as tall as the title wrapped to that width and the buttons under it.
    uikit::Size sizeThatFits(uikit::Size size) const override;

private:
    std::shared_ptr<uikit::Button> makeButton(const char* imageName, const std::string& label, const char* identifier);
};

} // namespace belvakit
