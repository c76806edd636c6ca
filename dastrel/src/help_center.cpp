#include "dastrel/help_center.hpp"
#include "dastrel/help_center_provider.hpp"

#include "corvane/corvane.hpp"
#include "platform/main_queue.hpp"
#include "platform/notification_center.hpp"

#include <cmath>
#include <cstdio>

namespace dastrel {

std::vector<CRVHelpCenterArticleViewModel> CRVHelpCenterArticleViewModel::convertWithArticles(
    const std::vector<CRVHelpCenterArticle>& articles) {
    std::vector<CRVHelpCenterArticleViewModel> models;
    models.reserve(articles.size());
    for (const auto& article : articles) models.push_back({article.identifier, article.title});
    return models;
}

CRVHelpCenterSectionViewModel CRVHelpCenterSectionViewModel::sectionByReplacingWithArticles(
    std::vector<CRVHelpCenterArticleViewModel> all) const {
    auto copy = *this;
    copy.articles = std::move(all);
    return copy;
}

CRVHelpCenterCategoryViewModel CRVHelpCenterCategoryViewModel::updateWithSection(
    const CRVHelpCenterSectionViewModel& section) const {
    auto copy = *this;
    for (auto& mine : copy.sections)
        if (mine.id == section.id) mine = section;
    return copy;
}

std::string CRVHelpCenterAttachment::humanReadableFileSize() const {
    char text[32];
    const double bytes = static_cast<double>(std::max<std::int64_t>(size, 0));
    if (bytes < 1000)
        std::snprintf(text, sizeof text, "%lld bytes", static_cast<long long>(bytes));
    else if (bytes < 1000 * 1000)
        std::snprintf(text, sizeof text, "%.0f KB", std::round(bytes / 1000));
    else if (bytes < 1000.0 * 1000 * 1000)
        std::snprintf(text, sizeof text, "%.1f MB", bytes / (1000 * 1000));
    else
        std::snprintf(text, sizeof text, "%.1f GB", bytes / (1000.0 * 1000 * 1000));
    return text;
}

void CRVHelpCenterSearch::addSearchContentScope(const CRVHelpCenterOverviewContentModel& model) {
    labels = model.labels;
    categoryIds.clear();
    sectionIds.clear();
    if (model.groupType == CRVHelpCenterOverviewGroupType::section) sectionIds = model.groupIds;
    if (model.groupType == CRVHelpCenterOverviewGroupType::category) categoryIds = model.groupIds;
}

namespace {

ProviderError notInitialized() {
    return {CRVHelpCenterErrorDomain, -1, "The Help Center has no provider: is the core initialized?"};
}

// Every call fails, on the main queue, as a provider's failures come.
class UnavailableHelpCenterProvider final : public CRVHelpCenterProvider {
public:
    void getHelpCenterOverviewWithHelpCenterOverviewModel(
        const CRVHelpCenterOverviewContentModel&, CRVCallback<std::vector<CRVHelpCenterCategoryViewModel>> callback) override {
        fail(std::move(callback));
    }
    void getArticlesWithSectionId(std::int64_t, const std::optional<std::vector<std::string>>&,
                                  CRVCallback<std::vector<CRVHelpCenterArticle>> callback) override {
        fail(std::move(callback));
    }
    void getArticleWithId(const std::string&, CRVCallback<std::vector<CRVHelpCenterArticle>> callback) override {
        fail(std::move(callback));
    }
    void getAttachmentWithArticleId(const std::string&, CRVCallback<std::vector<CRVHelpCenterAttachment>> callback) override {
        platform::NotificationCenter::defaultCenter().post(CR_HC_AttachmentsStarting, nullptr);
        platform::MainQueue::shared().async([callback = std::move(callback)] {
            callback(std::nullopt, notInitialized());
            platform::NotificationCenter::defaultCenter().post(CR_HC_AttachmentsErrored, nullptr);
        });
    }
    void searchArticles(const CRVHelpCenterSearch&, CRVCallback<std::vector<CRVHelpCenterArticle>> callback) override {
        fail(std::move(callback));
    }
    void submitRecordArticleView(const CRVHelpCenterArticle&,
                                 std::function<void(std::optional<ProviderError>)> callback) override {
        platform::MainQueue::shared().async([callback = std::move(callback)] {
            if (callback) callback(notInitialized());
        });
    }
    void upVoteArticleWithId(const std::string&, CRVCallback<std::vector<CRVHelpCenterArticleVote>> callback) override {
        fail(std::move(callback));
    }
    void downVoteArticleWithId(const std::string&, CRVCallback<std::vector<CRVHelpCenterArticleVote>> callback) override {
        fail(std::move(callback));
    }
    void removeVoteWithId(const std::string&, CRVCallback<CRVHelpCenterArticleVote> callback) override {
        fail(std::move(callback));
    }

private:
    template <class Result>
    static void fail(CRVCallback<Result> callback) {
        platform::MainQueue::shared().async([callback = std::move(callback)] {
            if (callback) callback(std::nullopt, notInitialized());
        });
    }
};

template <class Interface>
std::shared_ptr<Interface> registered() {
    auto core = corvane::Corvane::instance();
    return core ? core->providerModule().provider<Interface>() : nullptr;
}

} // namespace

std::shared_ptr<CRVHelpCenterProvider> CRVHelpCenterProvider::make() {
    auto provider = registered<CRVHelpCenterProvider>();
    return provider ? provider : std::make_shared<UnavailableHelpCenterProvider>();
}

void CRVHelpCenterSettingsProvider::getHelpCenterSettingsWithCallback(
    std::function<void(std::optional<CRVHelpCenterSettings>)> callback) {
    if (auto provider = registered<HelpCenterSettingsProviderProtocol>())
        return provider->getHelpCenterSettings(std::move(callback));
    platform::MainQueue::shared().async([callback = std::move(callback)] {
        if (callback) callback(std::nullopt);
    });
}

void CRVConversationsSettingsProvider::getConversationsSettingsWithCallback(
    std::function<void(std::optional<CRVConversationsSettings>)> callback) {
    if (auto provider = registered<ConversationsSettingsProviderProtocol>())
        return provider->getConversationsSettings(std::move(callback));
    platform::MainQueue::shared().async([callback = std::move(callback)] {
        if (callback) callback(std::nullopt);
    });
}

} // namespace dastrel
