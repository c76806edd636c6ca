#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace belvakit {

// The keys of the texts the system shows; they are the contract with the string tables.
namespace LocalizedKey {
inline constexpr std::string_view requestsCreateRequestTitle = "ios.CRVRequests.createRequest.title";
inline constexpr std::string_view requestsCreateRequestSubmitButton = "ios.CRVRequests.createRequest.submit.button";
inline constexpr std::string_view requestsCreateRequestCancelButton = "ios.CRVRequests.createRequest.cancel.button";
inline constexpr std::string_view requestsLeftBarButtonTitleCancel = "ios.CRVRequests.leftBarButton.title_cancel";
inline constexpr std::string_view requestsCreateRequestNamePlaceholder = "ios.CRVRequests.createRequest.name.placeholder";
inline constexpr std::string_view requestsCreateRequestEmailfieldPlaceholder = "ios.CRVRequests.createRequest.emailfield.placeholder";
inline constexpr std::string_view requestsCreateRequestDescriptionPlaceholder = "ios.CRVRequests.createRequest.description.placeholder";
inline constexpr std::string_view requestsCreateRequestErrorRequest = "ios.CRVRequests.createRequest.error.request";
inline constexpr std::string_view requestsCreateRequestLeaveAMessageTitle = "ios.CRVRequests.createRequest.leaveAMessage.title";
inline constexpr std::string_view requestsCreateRequestInputNew = "ios.CRVRequests.createRequest.input.new";
inline constexpr std::string_view requestsCreateRequestInputReply = "ios.CRVRequests.createRequest.input.reply";
inline constexpr std::string_view requestsCreateRequestInputUnsentTitle = "ios.CRVRequests.createRequest.input.unsent.title";
inline constexpr std::string_view requestsCreateRequestInputUnsentBody = "ios.CRVRequests.createRequest.input.unsent.body";
inline constexpr std::string_view requestsCreateRequestSending = "ios.CRVRequests.createRequest.sending";
inline constexpr std::string_view requestsCreateRequestMessageSent = "ios.CRVRequests.createRequest.message.sent";
inline constexpr std::string_view requestsCreateRequestCellError = "ios.CRVRequests.createRequest.cellError";
inline constexpr std::string_view requestsCreateRequestFailedRetry = "ios.CRVRequests.createRequest.failed.retry";
inline constexpr std::string_view requestsCreateRequestFailedDelete = "ios.CRVRequests.createRequest.failed.delete";
inline constexpr std::string_view requestsCreateRequestFailedClosed = "ios.CRVRequests.createRequest.failed.closed";
inline constexpr std::string_view requestsCreateRequestAttachmentsDownload = "ios.CRVRequests.createRequest.attachments.download";
inline constexpr std::string_view requestsCreateRequestAttachmentsDownloading = "ios.CRVRequests.createRequest.attachments.downloading";
inline constexpr std::string_view requestsCreateRequestAttachmentsConfirm = "ios.CRVRequests.createRequest.attachments.confirm";
inline constexpr std::string_view requestsCreateRequestAttachmentFileTooBig = "ios.sdk.CRVRequests.createRequest.attachment.fileTooBig";
inline constexpr std::string_view requestsCreateRequestMessagesToday = "ios.CRVRequests.createRequest.messages.today";
inline constexpr std::string_view requestsCreateRequestMessagesYesterday = "ios.CRVRequests.createRequest.messages.yesterday";
inline constexpr std::string_view requestsCommentListError = "ios.CRVRequests.commentList.error";
inline constexpr std::string_view requestsConversationsBackButton = "ios.CRVRequests.conversations.back.button";
inline constexpr std::string_view requestsConversationsAddAttachmentsAccessibility = "ios.CRVRequests.conversations.addAttachments.accessibility";
inline constexpr std::string_view requestsConversationsAgentFileAccessibility = "ios.CRVRequests.conversations.agentFile.accessibility";
inline constexpr std::string_view requestsConversationsAgentTextAccessibility = "ios.CRVRequests.conversations.agentText.accessibility";
inline constexpr std::string_view requestsConversationsAgentSentAccessibility = "ios.CRVRequests.conversations.agentSent.accessibility";
inline constexpr std::string_view requestsConversationsUserFileAccessibility = "ios.CRVRequests.conversations.userFile.accessibility";
inline constexpr std::string_view requestsConversationsUserTextAccessibility = "ios.CRVRequests.conversations.userText.accessibility";
inline constexpr std::string_view requestsConversationsUserSentAccessibility = "ios.CRVRequests.conversations.userSent.accessibility";
inline constexpr std::string_view helpCenterDoubleTapHintAccessibility = "ios.CRVHelpCenter.doubleTapHint.accessibility";
inline constexpr std::string_view requestsRequestListTitle = "ios.CRVRequests.requestList.title";
inline constexpr std::string_view requestsRequestListError = "ios.CRVRequests.requestList.error";
inline constexpr std::string_view requestsRequestListCellMe = "ios.CRVRequests.requestList.cell.me";
inline constexpr std::string_view requestsRequestListCellClosed = "ios.CRVRequests.requestList.cell.closed";
inline constexpr std::string_view requestsRequestListCellFailed = "ios.CRVRequests.requestList.cell.failed";
inline constexpr std::string_view requestsRequestListCellSeperator = "ios.CRVRequests.requestList.cell.seperator";
inline constexpr std::string_view requestsRequestListCellResponders = "ios.CRVRequests.requestList.cell.responders";
inline constexpr std::string_view requestsRequestListUnreadAccessibility = "ios.CRVRequests.requestList.unread.accessibility";
inline constexpr std::string_view requestsRequestListEmptySubtitle = "ios.CRVRequests.requestListEmpty.subtitle";
inline constexpr std::string_view requestsRequestListEmptyButton = "ios.CRVRequests.requestListEmpty.button";
inline constexpr std::string_view supportEngineGreetingMessage = "ios.SupportEngine.greeting.message";
inline constexpr std::string_view supportEngineMessageSendErrorMessage = "ios.SupportEngine.messageSend.errorMessage";
inline constexpr std::string_view supportEngineMessageSendRetryButton = "ios.SupportEngine.messageSend.retry.button";
inline constexpr std::string_view supportEngineRequestCreatedConversationsEnabledMessage = "ios.SupportEngine.requestCreated.conversationsEnabledMessage";
inline constexpr std::string_view supportEngineRequestCreatedConversationsOffMessage = "ios.SupportEngine.requestCreated.conversationsOff.message";
inline constexpr std::string_view supportEngineRequestCreatedEmailPromptMessage = "ios.SupportEngine.requestCreated.emailPrompt.message";
inline constexpr std::string_view supportEngineRequestCreatedEmailPromptHint = "ios.SupportEngine.requestCreated.emailPrompt.hint";
inline constexpr std::string_view supportEngineRequestCreatedEmailValidationFailedMessage = "ios.SupportEngine.requestCreated.emailValidationFailed.message";
inline constexpr std::string_view supportEngineRequestCreatedRequestListButton = "ios.SupportEngine.requestCreated.requestList.button";
inline constexpr std::string_view requestsConnectionError = "ios.CRVRequests.connectionError";
inline constexpr std::string_view requestsRightBarButtonTitleContact = "ios.CRVRequests.rightBarButton.title.contact";
inline constexpr std::string_view helpCenterHelpCenterOverviewTitle = "ios.CRVHelpCenter.helpCenterOverview.title";
inline constexpr std::string_view helpCenterSupportContactSupport = "ios.CRVHelpCenter.support.contactSupport";
inline constexpr std::string_view helpCenterSupportContactError = "ios.CRVHelpCenter.support.contactError";
inline constexpr std::string_view helpCenterToastRetryButton = "ios.CRVHelpCenter.toastRetryButton";
inline constexpr std::string_view helpCenterNoArticlesTitle = "ios.CRVHelpCenter.noArticles.title";
inline constexpr std::string_view helpCenterSearchNoResultsTitle = "ios.CRVHelpCenter.search.noResults.title";
inline constexpr std::string_view helpCenterArticleAccessibility = "ios.CRVHelpCenter.article.accessibility";
inline constexpr std::string_view helpCenterArticleAttachmentAccessibility = "ios.CRVHelpCenter.article.attachment.accessibility";
inline constexpr std::string_view helpCenterArticleAttachmentsError = "ios.CRVHelpCenter.articleAttachmentsError";
inline constexpr std::string_view helpCenterArticleVoteYesAccessibility = "ios.CRVHelpCenter.articleVoteYes.accessibility";
inline constexpr std::string_view helpCenterArticleVoteNoAccessibility = "ios.CRVHelpCenter.articleVoteNo.accessibility";
inline constexpr std::string_view helpCenterArticleVotingTitle = "ios.sdk.CRVHelpCenter.article.voting.title";
inline constexpr std::string_view helpCenterCategoryAccessibility = "ios.CRVHelpCenter.category.accessibility";
inline constexpr std::string_view helpCenterSectionAccessibility = "ios.CRVHelpCenter.section.accessibility";
} // namespace LocalizedKey

// The text for a key, resolved through the core's localisation once, on first use, and kept for
// the rest of the run. Safe from any thread.
const std::string& localized(std::string_view key);

// Every key above, in order.
const std::vector<std::string_view>& allLocalizedKeys();

} // namespace belvakit
