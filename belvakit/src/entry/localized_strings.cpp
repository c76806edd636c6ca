#include "belvakit/entry/localized_strings.hpp"

#include "corvane/localization.hpp"

#include <boost/json.hpp>
#include <mutex>
#include <unordered_map>

// The English table shipped with the library, embedded at build time.
extern const char* const belvakitLocalizableJson;

namespace belvakit {

namespace {

void registerShippedTable() {
    static std::once_flag once;
    std::call_once(once, [] {
        std::map<std::string, std::string> table;
        const boost::json::value parsed = boost::json::parse(belvakitLocalizableJson);
        for (const auto& [key, text] : parsed.as_object())
            if (text.is_string()) table.emplace(std::string(key), std::string(text.as_string()));
        corvane::CRVLocalization::registerDefaults(table);
    });
}

} // namespace

const std::string& localized(std::string_view key) {
    registerShippedTable();
    static std::mutex mutex;
    // Node-based, so references handed out stay valid as the map grows.
    static std::unordered_map<std::string, std::string> resolved;
    std::lock_guard lock(mutex);
    auto found = resolved.find(std::string(key));
    if (found == resolved.end())
        found = resolved.emplace(key, corvane::CRVLocalization::localizedStringWithKey(std::string(key))).first;
    return found->second;
}

const std::vector<std::string_view>& allLocalizedKeys() {
    using namespace LocalizedKey;
    static const std::vector<std::string_view> keys{
        requestsCreateRequestTitle,
        requestsCreateRequestSubmitButton,
        requestsCreateRequestCancelButton,
        requestsLeftBarButtonTitleCancel,
        requestsCreateRequestNamePlaceholder,
        requestsCreateRequestEmailfieldPlaceholder,
        requestsCreateRequestDescriptionPlaceholder,
        requestsCreateRequestErrorRequest,
        requestsCreateRequestLeaveAMessageTitle,
        requestsCreateRequestInputNew,
        requestsCreateRequestInputReply,
        requestsCreateRequestInputUnsentTitle,
        requestsCreateRequestInputUnsentBody,
        requestsCreateRequestSending,
        requestsCreateRequestMessageSent,
        requestsCreateRequestCellError,
        requestsCreateRequestFailedRetry,
        requestsCreateRequestFailedDelete,
        requestsCreateRequestFailedClosed,
        requestsCreateRequestAttachmentsDownload,
        requestsCreateRequestAttachmentsDownloading,
        requestsCreateRequestAttachmentsConfirm,
        requestsCreateRequestAttachmentFileTooBig,
        requestsCreateRequestMessagesToday,
        requestsCreateRequestMessagesYesterday,
        requestsCommentListError,
        requestsConversationsBackButton,
        requestsConversationsAddAttachmentsAccessibility,
        requestsConversationsAgentFileAccessibility,
        requestsConversationsAgentTextAccessibility,
        requestsConversationsAgentSentAccessibility,
        requestsConversationsUserFileAccessibility,
        requestsConversationsUserTextAccessibility,
        requestsConversationsUserSentAccessibility,
        helpCenterDoubleTapHintAccessibility,
        requestsRequestListTitle,
        requestsRequestListError,
        requestsRequestListCellMe,
        requestsRequestListCellClosed,
        requestsRequestListCellFailed,
        requestsRequestListCellSeperator,
        requestsRequestListCellResponders,
        requestsRequestListUnreadAccessibility,
        requestsRequestListEmptySubtitle,
        requestsRequestListEmptyButton,
        supportEngineGreetingMessage,
        supportEngineMessageSendErrorMessage,
        supportEngineMessageSendRetryButton,
        supportEngineRequestCreatedConversationsEnabledMessage,
        supportEngineRequestCreatedConversationsOffMessage,
        supportEngineRequestCreatedEmailPromptMessage,
        supportEngineRequestCreatedEmailPromptHint,
        supportEngineRequestCreatedEmailValidationFailedMessage,
        supportEngineRequestCreatedRequestListButton,
        requestsConnectionError,
        requestsRightBarButtonTitleContact,
        helpCenterHelpCenterOverviewTitle,
        helpCenterSupportContactSupport,
        helpCenterSupportContactError,
        helpCenterToastRetryButton,
        helpCenterNoArticlesTitle,
        helpCenterSearchNoResultsTitle,
        helpCenterArticleAccessibility,
        helpCenterArticleAttachmentAccessibility,
        helpCenterArticleAttachmentsError,
        helpCenterArticleVoteYesAccessibility,
        helpCenterArticleVoteNoAccessibility,
        helpCenterArticleVotingTitle,
        helpCenterCategoryAccessibility,
        helpCenterSectionAccessibility,
    };
    return keys;
}

} // namespace belvakit
