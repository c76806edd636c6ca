#pragma once

#include "dastrel/help_center.hpp"
#include "dastrel/request_provider.hpp"
#include "dastrel/settings.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dastrel {

// The help desk's Help Center calls. Every callback runs on the main queue, because the Help
// Center screens touch their views from it; a failure also posts `CR_HC_RequestError`.
class CRVHelpCenterProvider {
public:
    virtual ~CRVHelpCenterProvider() = default;

    // The provider registered with the current core, or one that fails every call when there is none.
    static std::shared_ptr<CRVHelpCenterProvider> make();

    // Categories with their sections; each section holds its first `initialNumberOfArticles`
    // articles and says in `article_count` how many it has.
    virtual void getHelpCenterOverviewWithHelpCenterOverviewModel(
        const CRVHelpCenterOverviewContentModel& model,
        CRVCallback<std::vector<CRVHelpCenterCategoryViewModel>> callback) = 0;
    // Every article of a section, limited to `labels` when given.
    virtual void getArticlesWithSectionId(std::int64_t sectionId,
                                          const std::optional<std::vector<std::string>>& labels,
                                          CRVCallback<std::vector<CRVHelpCenterArticle>> callback) = 0;
    // A list of one article; an unknown or malformed id is an error.
    virtual void getArticleWithId(const std::string& articleId,
                                  CRVCallback<std::vector<CRVHelpCenterArticle>> callback) = 0;
    // Posts `CR_HC_AttachmentsStarting` at once, then calls back and posts `CR_HC_AttachmentsUpdated`
    // or `CR_HC_AttachmentsErrored`.
    virtual void getAttachmentWithArticleId(const std::string& articleId,
                                            CRVCallback<std::vector<CRVHelpCenterAttachment>> callback) = 0;
    virtual void searchArticles(const CRVHelpCenterSearch& search,
                                CRVCallback<std::vector<CRVHelpCenterArticle>> callback) = 0;
    // Counts one view of the article.
    virtual void submitRecordArticleView(const CRVHelpCenterArticle& article,
                                         std::function<void(std::optional<ProviderError>)> callback) = 0;
    // Each answers with the user's new vote on the article, as a list of one.
    virtual void upVoteArticleWithId(const std::string& articleId,
                                     CRVCallback<std::vector<CRVHelpCenterArticleVote>> callback) = 0;
    virtual void downVoteArticleWithId(const std::string& articleId,
                                       CRVCallback<std::vector<CRVHelpCenterArticleVote>> callback) = 0;
    // Answers with the removed vote.
    virtual void removeVoteWithId(const std::string& voteId, CRVCallback<CRVHelpCenterArticleVote> callback) = 0;
};

// What a help desk offers for the Help Center settings.
class HelpCenterSettingsProviderProtocol {
public:
    virtual ~HelpCenterSettingsProviderProtocol() = default;
    virtual void getHelpCenterSettings(std::function<void(std::optional<CRVHelpCenterSettings>)> completion) = 0;
};

// The Help Center settings of the current core's account. Without a core or a registered provider
// the answer is no settings. Answers on the main queue.
class CRVHelpCenterSettingsProvider {
public:
    static void getHelpCenterSettingsWithCallback(std::function<void(std::optional<CRVHelpCenterSettings>)> callback);
};

// The conversations setting of the current core's account, as `CRVHelpCenterSettingsProvider`.
class CRVConversationsSettingsProvider {
public:
    static void getConversationsSettingsWithCallback(
        std::function<void(std::optional<CRVConversationsSettings>)> callback);
};

} // namespace dastrel
