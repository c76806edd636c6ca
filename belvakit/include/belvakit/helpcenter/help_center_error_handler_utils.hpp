#pragma once

#include "dastrel/help_center.hpp"
#include "dastrel/provider_error.hpp"

#include <memory>

namespace belvakit {

class CRVHelpCenterOverviewController;

inline constexpr const char* CRVHelpCenterNoCategoriesLocalisedDescription = "Unable to load categories";
inline constexpr const char* CRVHelpCenterNoSectionsLocalisedDescription = "Unable to load sections";
inline constexpr const char* CRVHelpCenterNoArticlesForLabelsDescription = "Unable to load articles with labels";
inline constexpr const char* CRVHelpCenterEmptyHelpCenterDescription = "No help center content available";

// Turns an empty overview into an error, and errors into the overview's toasts.
class CRVHelpCenterErrorHandlerUtils {
public:
    CRVHelpCenterErrorHandlerUtils() = delete;

    // Codes 100 to 102 show the no-results toast; every other error the contact-issue toast.
    static void handleError(const dastrel::ProviderError& error, const std::shared_ptr<CRVHelpCenterOverviewController>& inViewController);
    // Retry fetches the overview again.
    static void showToastForNoResultsIn(const std::shared_ptr<CRVHelpCenterOverviewController>& controller);
    // Retry fetches the settings first, then the overview.
    static void showToastforContactIssueIn(const std::shared_ptr<CRVHelpCenterOverviewController>& controller);
    static const std::string& errorMessageForToast();
    // What an empty answer to the content model means: codes 100 to 103.
    static dastrel::ProviderError buildErrorForEmptyReturnForHelpCenterModel(const dastrel::CRVHelpCenterOverviewContentModel& model);
};

} // namespace belvakit
