#pragma once

#include "dastrel/help_center_provider.hpp"
#include "platform/scheduler.hpp"
#include "sandbox/attachment_store.hpp"
#include "sandbox/help_center_content.hpp"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace sandbox {

// The help desk's Help Center: serves its content as a server would (the overview for a content
// model, sections, articles, attachments as bytes, search, votes, recorded views, settings), with
// switches for offline, latency, failures, empty answers and the overview's error codes.
// Every answer arrives on the main queue after the latency; failures also post CR_HC_RequestError.
class HelpCenterDesk : public std::enable_shared_from_this<HelpCenterDesk> {
public:
    // Starts with `content`, read for the account at `accountUrl`; attachments are served through `files`.
    static std::shared_ptr<HelpCenterDesk> make(HelpCenterContent content, std::shared_ptr<AttachmentStore> files,
                                                std::string accountUrl);

    // Replaces the content. On a fault the old content stays and the error is given.
    std::optional<std::string> load(std::string_view json);
    HelpCenterContent content() const;

    // What the help desk recorded, for tests and the demo.
    std::vector<std::int64_t> recordedArticleViews() const;
    std::vector<dastrel::CRVHelpCenterArticleVote> votes() const;
    std::size_t callCount() const;

    // Settings.
    void setLocale(std::optional<std::string> locale);
    void setVotingEnabled(bool enabled);
    // While failing, settings requests answer with no settings.
    void setSettingsFailing(bool failing);

    // Switches. Going offline also takes the network's reachability down.
    void setOffline(bool offline);
    void setLatency(platform::Duration latency);
    // The next `count` calls fail with a server error (settings excepted).
    void failNext(int count);
    // Lists come back empty: the overview, a section's articles, search and attachments.
    void setEmptyAnswers(bool empty);
    // The overview fails with this code of the Help Center's error domain (100 to 103), until cleared.
    void setOverviewErrorCode(std::optional<long> code);

    std::shared_ptr<dastrel::CRVHelpCenterProvider> provider();
    std::shared_ptr<dastrel::HelpCenterSettingsProviderProtocol> settingsProvider();

    // The calls, as the providers make them.
    void getOverview(const dastrel::CRVHelpCenterOverviewContentModel& model,
                     dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterCategoryViewModel>> callback);
    void getArticlesWithSectionId(std::int64_t sectionId, const std::optional<std::vector<std::string>>& labels,
                                  dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback);
    void getArticleWithId(const std::string& articleId,
                          dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback);
    void getAttachments(const std::string& articleId,
                        dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterAttachment>> callback);
    void search(const dastrel::CRVHelpCenterSearch& search,
                dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticle>> callback);
    void recordArticleView(std::int64_t articleId, std::function<void(std::optional<dastrel::ProviderError>)> callback);
    void vote(const std::string& articleId, int value,
              dastrel::CRVCallback<std::vector<dastrel::CRVHelpCenterArticleVote>> callback);
    void removeVote(const std::string& voteId, dastrel::CRVCallback<dastrel::CRVHelpCenterArticleVote> callback);
    void getSettings(std::function<void(std::optional<dastrel::CRVHelpCenterSettings>)> callback);

private:
    HelpCenterDesk(HelpCenterContent content, std::shared_ptr<AttachmentStore> files, std::string accountUrl);
    // The error this call meets, if any; counts the call. Locked.
    std::optional<dastrel::ProviderError> admitLocked();
    // Hands `work` to the main queue after the latency; a failure posts CR_HC_RequestError first.
    void answer(std::function<void()> work, bool failed) const;
    void serveAttachmentsLocked() const;
    const HelpCenterContent::Article* articleLocked(std::int64_t id) const;
    // The article a caller names by its id text; on a bad or unknown id, nothing and `error` set.
    const HelpCenterContent::Article* articleLocked(const std::string& articleId, std::optional<dastrel::ProviderError>& error) const;
    const HelpCenterContent::Section* sectionLocked(std::int64_t id) const;
    const HelpCenterContent::Category* categoryLocked(std::int64_t id) const;

    std::shared_ptr<AttachmentStore> files_;
    const std::string accountUrl_;
    mutable std::mutex mutex_;
    HelpCenterContent content_;
    std::vector<std::int64_t> views_;
    std::map<std::int64_t, dastrel::CRVHelpCenterArticleVote> votes_;  // by vote id
    std::int64_t nextVoteId_ = 70001;
    std::size_t calls_ = 0;
    bool settingsFailing_ = false;
    bool offline_ = false;
    std::shared_ptr<void> outage_;
    platform::Duration latency_{};
    int failNext_ = 0;
    bool emptyAnswers_ = false;
    std::optional<long> overviewErrorCode_;
};

} // namespace sandbox
