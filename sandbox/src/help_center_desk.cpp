#include "sandbox/help_center_desk.hpp"

#include "answer.hpp"
#include "corvane/reachability.hpp"
#include "platform/notification_center.hpp"
#include "platform/text_search.hpp"

#include <algorithm>
#include <charconv>

namespace sandbox {

namespace {

dastrel::ProviderError offlineError() {
    return {"NSURLErrorDomain", -1009, "The Internet connection appears to be offline."};
}
dastrel::ProviderError serverError() { return {"HTTP", 500, "Internal Server Error"}; }
dastrel::ProviderError notFoundError() { return {"HTTP", 404, "Not Found"}; }
dastrel::ProviderError badIdError() { return {"HTTP", 400, "Bad Request: the id is not a number"}; }

dastrel::ProviderError overviewError(long code) {
    switch (code) {
    case dastrel::CRVHelpCenterErrorNoCategories: return {dastrel::CRVHelpCenterErrorDomain, code, "Unable to load categories"};
    case dastrel::CRVHelpCenterErrorNoSections: return {dastrel::CRVHelpCenterErrorDomain, code, "Unable to load sections"};
    case dastrel::CRVHelpCenterErrorNoArticlesForLabels:
        return {dastrel::CRVHelpCenterErrorDomain, code, "Unable to load articles with labels"};
    default: return {dastrel::CRVHelpCenterErrorDomain, code, "No help center content available"};
    }
}

std::optional<std::int64_t> parseId(const std::string& text) {
    std::int64_t id = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size() || id <= 0) return std::nullopt;
    return id;
}

bool hasAnyLabel(const dastrel::CRVHelpCenterArticle& article, const std::optional<std::vector<std::string>>& labels) {
    if (!labels || labels->empty()) return true;
    for (const auto& label : article.label_names)
        if (std::find(labels->begin(), labels->end(), label) != labels->end()) return true;
    return false;
}

bool contains(const std::vector<std::int64_t>& ids, std::int64_t id) {
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

// The text a reader sees in an article's HTML: tags dropped, the common entities decoded.
std::string visibleText(const std::string& html) {
    std::string text;
    text.reserve(html.size());
    bool inTag = false;
    for (std::size_t at = 0; at < html.size(); ++at) {
        const char c = html[at];
        if (inTag) {
            if (c == '>') {
                inTag = false;
                text.push_back(' ');
            }
            continue;
        }
        if (c == '<') {
            inTag = true;
            continue;
        }
        if (c == '&') {
            static constexpr std::pair<std::string_view, char> entities[] = {
                {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&#39;", '\''}, {"&nbsp;", ' '}};
            bool decoded = false;
            for (const auto& [entity, character] : entities)
                if (html.compare(at, entity.size(), entity) == 0) {
                    text.push_back(character);
                    at += entity.size() - 1;
                    decoded = true;
                    break;
                }
            if (decoded) continue;
        }
        text.push_back(c);
    }
    return text;
}

bool blank(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
}

class DeskProvider final : public dastrel::CRVHelpCenterProvider {
public:
    explicit DeskProvider(std::shared_ptr<HelpCenterDesk> desk) : desk_(std::move(desk)) {}

    void getHelpCenterOverviewWithHelpCenterOverviewModel(
        const dastrel::CRVHelpCenterOverviewContentModel& model,
        dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterCategoryViewModel>> callback) override {
        desk_->getOverview(model, std::move(callback));
    }
    void getArticlesWithSectionId(std::int64_t sectionId, const std::optional<std::vector<std::string>>& labels,
                                  dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback) override {
        desk_->getArticlesWithSectionId(sectionId, labels, std::move(callback));
    }
    void getArticleWithId(const std::string& articleId,
                          dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback) override {
        desk_->getArticleWithId(articleId, std::move(callback));
    }
    void getAttachmentWithArticleId(const std::string& articleId,
                                    dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterAttachment>> callback) override {
        desk_->getAttachments(articleId, std::move(callback));
    }
    void searchArticles(const dastrel::CRVHelpCenterSearch& search,
                        dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback) override {
        desk_->search(search, std::move(callback));
    }
    void submitRecordArticleView(const dastrel::CRVHelpCenterArticle& article,
                                 std::function<void(std::optional<dastrel::ProviderError>)> callback) override {
        desk_->recordArticleView(article.identifier, std::move(callback));
    }
    void upVoteArticleWithId(const std::string& articleId,
                             dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticleVote>> callback) override {
        desk_->vote(articleId, dastrel::CRV_Article_Up_Vote_Number, std::move(callback));
    }
    void downVoteArticleWithId(const std::string& articleId,
                               dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticleVote>> callback) override {
        desk_->vote(articleId, dastrel::CRV_Article_Down_Vote_Number, std::move(callback));
    }
    void removeVoteWithId(const std::string& voteId,
                          dastrel::CRVCallback<dastrel::CRVHelpCenterArticleVote> callback) override {
        desk_->removeVote(voteId, std::move(callback));
    }

private:
    std::shared_ptr<HelpCenterDesk> desk_;
};

class DeskSettingsProvider final : public dastrel::HelpCenterSettingsProviderProtocol {
public:
    explicit DeskSettingsProvider(std::shared_ptr<HelpCenterDesk> desk) : desk_(std::move(desk)) {}
    void getHelpCenterSettings(std::function<void(std::optional<dastrel::CRVHelpCenterSettings>)> completion) override {
        desk_->getSettings(std::move(completion));
    }

private:
    std::shared_ptr<HelpCenterDesk> desk_;
};

// The call of a provider's callback with an answer or its error.
template <class T>
std::function<void()> delivery(dastrel::CRVCallback<T> callback, std::optional<dastrel::ProviderError> error, T value) {
    return [callback = std::move(callback), error = std::move(error), value = std::move(value)]() mutable {
        if (error) return callback(std::nullopt, error);
        callback(std::move(value), std::nullopt);
    };
}

} // namespace

HelpCenterDesk::HelpCenterDesk(HelpCenterContent content, std::shared_ptr<AttachmentStore> files,
                               std::string accountUrl)
    : files_(std::move(files)), accountUrl_(std::move(accountUrl)), content_(std::move(content)) {
    serveAttachmentsLocked();
}

std::shared_ptr<HelpCenterDesk> HelpCenterDesk::make(HelpCenterContent content, std::shared_ptr<AttachmentStore> files,
                                                     std::string accountUrl) {
    return std::shared_ptr<HelpCenterDesk>(new HelpCenterDesk(std::move(content), std::move(files), std::move(accountUrl)));
}

std::optional<std::string> HelpCenterDesk::load(std::string_view json) {
    auto loaded = HelpCenterContent::parse(json, accountUrl_);
    if (!loaded.content) return loaded.error;
    std::lock_guard lock(mutex_);
    content_ = std::move(*loaded.content);
    serveAttachmentsLocked();
    return std::nullopt;
}

HelpCenterContent HelpCenterDesk::content() const {
    std::lock_guard lock(mutex_);
    return content_;
}

void HelpCenterDesk::serveAttachmentsLocked() const {
    if (!files_) return;
    for (const auto& article : content_.articles)
        for (const auto& attachment : article.attachments) files_->serve(attachment.record.content_url, attachment.data);
}

std::vector<std::int64_t> HelpCenterDesk::recordedArticleViews() const {
    std::lock_guard lock(mutex_);
    return views_;
}

std::vector<dastrel::CRVHelpCenterArticleVote> HelpCenterDesk::votes() const {
    std::lock_guard lock(mutex_);
    std::vector<dastrel::CRVHelpCenterArticleVote> all;
    for (const auto& [id, vote] : votes_) all.push_back(vote);
    return all;
}

std::size_t HelpCenterDesk::callCount() const {
    std::lock_guard lock(mutex_);
    return calls_;
}

void HelpCenterDesk::setLocale(std::optional<std::string> locale) {
    std::lock_guard lock(mutex_);
    content_.settings.locale = std::move(locale);
}

void HelpCenterDesk::setVotingEnabled(bool enabled) {
    std::lock_guard lock(mutex_);
    content_.settings.helpCenterArticleVotingEnabled = enabled;
}

void HelpCenterDesk::setSettingsFailing(bool failing) {
    std::lock_guard lock(mutex_);
    settingsFailing_ = failing;
}

void HelpCenterDesk::setOffline(bool offline) {
    // Reachability observers run while the outage changes, and may call the desk: never under its lock.
    std::shared_ptr<void> outage = offline ? corvane::NetworkMonitor::shared().beginOutage() : nullptr;
    {
        std::lock_guard lock(mutex_);
        offline_ = offline;
        std::swap(outage_, outage);
    }
}

void HelpCenterDesk::setLatency(platform::Duration latency) {
    std::lock_guard lock(mutex_);
    latency_ = latency;
}

void HelpCenterDesk::failNext(int count) {
    std::lock_guard lock(mutex_);
    failNext_ = count;
}

void HelpCenterDesk::setEmptyAnswers(bool empty) {
    std::lock_guard lock(mutex_);
    emptyAnswers_ = empty;
}

void HelpCenterDesk::setOverviewErrorCode(std::optional<long> code) {
    std::lock_guard lock(mutex_);
    overviewErrorCode_ = code;
}

std::shared_ptr<dastrel::CRVHelpCenterProvider> HelpCenterDesk::provider() {
    return std::make_shared<DeskProvider>(shared_from_this());
}

std::shared_ptr<dastrel::HelpCenterSettingsProviderProtocol> HelpCenterDesk::settingsProvider() {
    return std::make_shared<DeskSettingsProvider>(shared_from_this());
}

std::optional<dastrel::ProviderError> HelpCenterDesk::admitLocked() {
    ++calls_;
    if (offline_) return offlineError();
    if (failNext_ > 0) {
        --failNext_;
        return serverError();
    }
    return std::nullopt;
}

void HelpCenterDesk::answer(std::function<void()> work, bool failed) const {
    platform::Duration latency;
    {
        std::lock_guard lock(mutex_);
        latency = latency_;
    }
    deliverAnswer(latency, false, [work = std::move(work), failed] {
        if (failed) platform::NotificationCenter::defaultCenter().post(dastrel::CR_HC_RequestError, nullptr);
        work();
    });
}

const HelpCenterContent::Article* HelpCenterDesk::articleLocked(const std::string& articleId,
                                                                std::optional<dastrel::ProviderError>& error) const {
    const auto id = parseId(articleId);
    if (!id) {
        error = badIdError();
        return nullptr;
    }
    const auto* article = articleLocked(*id);
    if (!article) error = notFoundError();
    return article;
}

const HelpCenterContent::Article* HelpCenterDesk::articleLocked(std::int64_t id) const {
    for (const auto& article : content_.articles)
        if (article.record.identifier == id) return &article;
    return nullptr;
}

const HelpCenterContent::Section* HelpCenterDesk::sectionLocked(std::int64_t id) const {
    for (const auto& section : content_.sections)
        if (section.id == id) return &section;
    return nullptr;
}

const HelpCenterContent::Category* HelpCenterDesk::categoryLocked(std::int64_t id) const {
    for (const auto& category : content_.categories)
        if (category.id == id) return &category;
    return nullptr;
}

void HelpCenterDesk::getOverview(const dastrel::CRVHelpCenterOverviewContentModel& model,
                                 dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterCategoryViewModel>> callback) {
    using GroupType = dastrel::CRVHelpCenterOverviewGroupType;
    std::optional<dastrel::ProviderError> error;
    std::vector<dastrel::CRVHelpCenterCategoryViewModel> categories;
    {
        std::lock_guard lock(mutex_);
        error = admitLocked();
        if (!error && overviewErrorCode_) error = overviewError(*overviewErrorCode_);
        if (!error && !emptyAnswers_) {
            for (const auto& category : content_.categories) {
                if (model.groupType == GroupType::category && !contains(model.groupIds, category.id)) continue;
                dastrel::CRVHelpCenterCategoryViewModel categoryModel{category.id, category.name, {}};
                for (const auto& section : content_.sections) {
                    if (section.category_id != category.id) continue;
                    if (model.groupType == GroupType::section && !contains(model.groupIds, section.id)) continue;
                    dastrel::CRVHelpCenterSectionViewModel sectionModel{section.id, section.name, {}, {}, 0};
                    for (const auto& article : content_.articles) {
                        if (article.record.section_id != section.id || !hasAnyLabel(article.record, model.labels)) continue;
                        if (sectionModel.articles.size() < model.initialNumberOfArticles)
                            sectionModel.articles.push_back({article.record.identifier, article.record.title});
                        ++sectionModel.article_count;
                    }
                    if (sectionModel.article_count == 0) continue;
                    sectionModel.detailTitle = "See all " + std::to_string(sectionModel.article_count) + " articles";
                    categoryModel.sections.push_back(std::move(sectionModel));
                }
                if (!categoryModel.sections.empty()) categories.push_back(std::move(categoryModel));
            }
        }
    }
    answer(delivery(std::move(callback), error, std::move(categories)), error.has_value());
}

void HelpCenterDesk::getArticlesWithSectionId(std::int64_t sectionId,
                                              const std::optional<std::vector<std::string>>& labels,
                                              dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback) {
    std::optional<dastrel::ProviderError> error;
    std::vector<dastrel::CRVHelpCenterArticle> articles;
    {
        std::lock_guard lock(mutex_);
        error = admitLocked();
        if (!error && !sectionLocked(sectionId)) error = notFoundError();
        if (!error && !emptyAnswers_)
            for (const auto& article : content_.articles)
                if (article.record.section_id == sectionId && hasAnyLabel(article.record, labels))
                    articles.push_back(article.record);
    }
    answer(delivery(std::move(callback), error, std::move(articles)), error.has_value());
}

void HelpCenterDesk::getArticleWithId(const std::string& articleId,
                                      dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback) {
    std::optional<dastrel::ProviderError> error;
    std::vector<dastrel::CRVHelpCenterArticle> articles;
    {
        std::lock_guard lock(mutex_);
        error = admitLocked();
        const auto* article = error ? nullptr : articleLocked(articleId, error);
        if (article) articles.push_back(article->record);
    }
    answer(delivery(std::move(callback), error, std::move(articles)), error.has_value());
}

void HelpCenterDesk::getAttachments(const std::string& articleId,
                                    dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterAttachment>> callback) {
    platform::NotificationCenter::defaultCenter().post(dastrel::CR_HC_AttachmentsStarting, nullptr);
    std::optional<dastrel::ProviderError> error;
    std::vector<dastrel::CRVHelpCenterAttachment> attachments;
    {
        std::lock_guard lock(mutex_);
        error = admitLocked();
        const auto* article = error ? nullptr : articleLocked(articleId, error);
        if (article && !emptyAnswers_)
            for (const auto& attachment : article->attachments) attachments.push_back(attachment.record);
    }
    const bool failed = error.has_value();
    answer(
        [callback = std::move(callback), error, attachments = std::move(attachments)]() mutable {
            auto& center = platform::NotificationCenter::defaultCenter();
            if (error) {
                callback(std::nullopt, error);
                return center.post(dastrel::CR_HC_AttachmentsErrored, nullptr);
            }
            callback(std::move(attachments), std::nullopt);
            center.post(dastrel::CR_HC_AttachmentsUpdated, nullptr);
        },
        failed);
}

void HelpCenterDesk::search(const dastrel::CRVHelpCenterSearch& query,
                            dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback) {
    std::optional<dastrel::ProviderError> error;
    std::vector<dastrel::CRVHelpCenterArticle> inTitle, inBody;
    {
        std::lock_guard lock(mutex_);
        error = admitLocked();
        const std::string term = query.query.value_or("");
        if (!error && !emptyAnswers_ && !blank(term)) {
            for (const auto& article : content_.articles) {
                const auto* section = sectionLocked(article.record.section_id);
                const auto* category = section ? categoryLocked(section->category_id) : nullptr;
                if (!section || !category) continue;
                if (!query.sectionIds.empty() && !contains(query.sectionIds, section->id)) continue;
                if (!query.categoryIds.empty() && !contains(query.categoryIds, category->id)) continue;
                if (!hasAnyLabel(article.record, query.labels)) continue;
                const bool titleMatch = platform::rangeOfStringCaseInsensitive(article.record.title, term).has_value();
                if (!titleMatch && !platform::rangeOfStringCaseInsensitive(visibleText(article.record.body), term)) continue;
                auto result = article.record;
                result.articleParents = category->name + " > " + section->name;
                (titleMatch ? inTitle : inBody).push_back(std::move(result));
            }
        }
    }
    inTitle.insert(inTitle.end(), std::make_move_iterator(inBody.begin()), std::make_move_iterator(inBody.end()));
    const bool failed = error.has_value();
    answer(
        [callback = std::move(callback), error, results = std::move(inTitle)]() mutable {
            if (error) return callback(std::nullopt, error);
            callback(std::move(results), std::nullopt);
        },
        failed);
}

void HelpCenterDesk::recordArticleView(std::int64_t articleId,
                                       std::function<void(std::optional<dastrel::ProviderError>)> callback) {
    std::optional<dastrel::ProviderError> error;
    {
        std::lock_guard lock(mutex_);
        error = admitLocked();
        if (!error && !articleLocked(articleId)) error = notFoundError();
        if (!error) views_.push_back(articleId);
    }
    answer(
        [callback = std::move(callback), error] {
            if (callback) callback(error);
        },
        error.has_value());
}

void HelpCenterDesk::vote(const std::string& articleId, int value,
                          dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticleVote>> callback) {
    std::optional<dastrel::ProviderError> error;
    std::vector<dastrel::CRVHelpCenterArticleVote> answerList;
    {
        std::lock_guard lock(mutex_);
        error = admitLocked();
        const auto* article = error ? nullptr : articleLocked(articleId, error);
        if (article) {
            const auto id = article->record.identifier;
            // One vote per user and article: a new one replaces the old.
            for (auto it = votes_.begin(); it != votes_.end();)
                it = it->second.article_id == id ? votes_.erase(it) : std::next(it);
            dastrel::CRVHelpCenterArticleVote vote{nextVoteId_++, id, std::to_string(value)};
            votes_[vote.identifier] = vote;
            answerList.push_back(vote);
        }
    }
    answer(delivery(std::move(callback), error, std::move(answerList)), error.has_value());
}

void HelpCenterDesk::removeVote(const std::string& voteId, dastrel::CRVCallback<dastrel::CRVHelpCenterArticleVote> callback) {
    std::optional<dastrel::ProviderError> error;
    std::optional<dastrel::CRVHelpCenterArticleVote> removed;
    {
        std::lock_guard lock(mutex_);
        error = admitLocked();
        const auto id = parseId(voteId);
        if (!error && !id) error = badIdError();
        if (!error) {
            auto found = votes_.find(*id);
            if (found == votes_.end()) {
                error = notFoundError();
            } else {
                removed = found->second;
                votes_.erase(found);
            }
        }
    }
    const bool failed = error.has_value();
    answer(
        [callback = std::move(callback), error, removed] {
            if (error) return callback(std::nullopt, error);
            callback(removed, std::nullopt);
        },
        failed);
}

void HelpCenterDesk::getSettings(std::function<void(std::optional<dastrel::CRVHelpCenterSettings>)> callback) {
    std::optional<dastrel::CRVHelpCenterSettings> settings;
    {
        std::lock_guard lock(mutex_);
        if (!settingsFailing_ && !offline_) settings = content_.settings;
    }
    answer(
        [callback = std::move(callback), settings] {
            if (callback) callback(settings);
        },
        false);
}

} // namespace sandbox
