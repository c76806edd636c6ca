#pragma once

#include "dastrel/help_center_overview_content_model.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dastrel {

// Errors of the Help Center, in this domain with these codes.
inline constexpr const char* CRVHelpCenterErrorDomain = "com.corvane.help.center";
enum CRVHelpCenterErrorCode : long {
    CRVHelpCenterErrorNoCategories = 100,
    CRVHelpCenterErrorNoSections = 101,
    CRVHelpCenterErrorNoArticlesForLabels = 102,
    CRVHelpCenterErrorEmptyHelpCenter = 103,
};

// Posted on the default notification centre by the Help Center provider, on the main queue:
// around each attachments fetch, and after any failed Help Center request.
inline constexpr const char* CR_HC_AttachmentsStarting = "CR_HC_AttachmentsStarting";
inline constexpr const char* CR_HC_AttachmentsUpdated = "CR_HC_AttachmentsUpdated";
inline constexpr const char* CR_HC_AttachmentsErrored = "CR_HC_AttachmentsErrored";
inline constexpr const char* CR_HC_RequestError = "CR_HC_RequestError";

// Vote values as the server stores them and as the device remembers them.
inline constexpr int CRV_Article_Up_Vote_Number = 1;
inline constexpr int CRV_Article_Down_Vote_Number = -1;
inline constexpr int CRV_Article_Even_Vote_Number = 0;
inline constexpr int CRV_Article_Up_Vote_Button_Index = 1;
inline constexpr int CRV_Article_Down_Vote_Button_Index = 0;

// A whole article as the server serves it. Dates are seconds since 1970.
struct CRVHelpCenterArticle {
    std::int64_t identifier = 0;
    std::string title;
    std::string body;  // HTML
    std::int64_t author_id = 0;
    std::string author_name;
    double created_at = 0;
    double updated_at = 0;
    std::string locale;
    std::int64_t section_id = 0;
    std::vector<std::string> label_names;
    std::string html_url;
    std::int64_t vote_sum = 0;
    std::int64_t vote_count = 0;
    // In search results: the names of the article's category and section.
    std::string articleParents;

    bool operator==(const CRVHelpCenterArticle&) const = default;
};

// An article as a row of the overview.
struct CRVHelpCenterArticleViewModel {
    std::int64_t id = 0;
    std::string name;

    static std::vector<CRVHelpCenterArticleViewModel> convertWithArticles(const std::vector<CRVHelpCenterArticle>& articles);
    bool operator==(const CRVHelpCenterArticleViewModel&) const = default;
};

struct CRVHelpCenterSectionViewModel {
    std::int64_t id = 0;
    std::string name;
    // The text of the row that loads the rest of the section.
    std::string detailTitle;
    // The articles loaded so far.
    std::vector<CRVHelpCenterArticleViewModel> articles;
    // How many articles the section has on the server.
    std::int64_t article_count = 0;

    CRVHelpCenterSectionViewModel sectionByReplacingWithArticles(std::vector<CRVHelpCenterArticleViewModel> all) const;
    bool operator==(const CRVHelpCenterSectionViewModel&) const = default;
};

struct CRVHelpCenterCategoryViewModel {
    std::int64_t id = 0;
    std::string name;
    std::vector<CRVHelpCenterSectionViewModel> sections;

    // A copy in which the section with the same id is replaced; the receiver is unchanged.
    CRVHelpCenterCategoryViewModel updateWithSection(const CRVHelpCenterSectionViewModel& section) const;
    bool operator==(const CRVHelpCenterCategoryViewModel&) const = default;
};

// A file attached to an article; its bytes are served at `content_url`.
struct CRVHelpCenterAttachment {
    std::int64_t identifier = 0;
    std::int64_t article_id = 0;
    std::string file_name;
    std::string content_type;
    std::int64_t size = 0;
    std::string content_url;

    // "512 bytes", "12 KB", "1.5 MB": decimal units, as a phone shows file sizes.
    std::string humanReadableFileSize() const;
    bool operator==(const CRVHelpCenterAttachment&) const = default;
};

// A user's vote on an article; the server removes it only by `identifier`.
struct CRVHelpCenterArticleVote {
    std::int64_t identifier = 0;
    std::int64_t article_id = 0;
    std::optional<std::string> value;  // "1" up, "-1" down

    bool operator==(const CRVHelpCenterArticleVote&) const = default;
};

// A search query with the scope of the overview it was made from.
struct CRVHelpCenterSearch {
    std::optional<std::string> query;
    std::optional<std::vector<std::string>> labels;
    std::vector<std::int64_t> categoryIds;
    std::vector<std::int64_t> sectionIds;

    void setQuery(std::string text) { query = std::move(text); }
    // Limits the search to what the content model shows: its sections or categories, and its labels.
    void addSearchContentScope(const CRVHelpCenterOverviewContentModel& model);
    bool operator==(const CRVHelpCenterSearch&) const = default;
};

struct CRVHelpCenterSettings {
    bool enabled = true;
    // Absent when the account has no Help Center locale.
    std::optional<std::string> locale;
    bool helpCenterArticleVotingEnabled = true;

    bool operator==(const CRVHelpCenterSettings&) const = default;
};

} // namespace dastrel
