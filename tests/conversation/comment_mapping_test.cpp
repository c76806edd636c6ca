#include "belvakit/Request/queue/comment_mapping.hpp"

#include "belvakit/Request/conversation/local_messages.hpp"
#include "platform/clock.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {

Request::Attachment attachment(std::int64_t id, std::string name, FileType type) {
    Request::Attachment result;
    result.commentId = 10;
    result.id = id;
    result.fileName = std::move(name);
    result.fileUrl = "https://files/" + std::to_string(id);
    result.thumbUrl = "https://thumbs/" + std::to_string(id);
    result.imageSize = {30, 40};
    result.fileType = type;
    result.fileSize = 2048;
    result.createdAt = 1700000050;
    return result;
}

Request::Comment comment(bool isAgent, std::string body, std::vector<Request::Attachment> attachments) {
    Request::Comment result;
    result.id = 10;
    result.body = std::move(body);
    result.htmlBody = "<p>" + result.body + "</p>";
    result.isAgent = isAgent;
    result.attachments = std::move(attachments);
    result.createdAt = 1700000000;
    result.userID = 3;
    result.name = "Ada";
    result.avatarURL = "https://avatars/3";
    return result;
}

} // namespace

TEST(CommentToMessages, UserCommentOfAttachmentsAloneHasNoText) {
    auto messages = messagesFromComment(comment(false, "[a.png]", {attachment(11, "a.png", FileType::png)}));
    ASSERT_EQ(messages.size(), 1u);
    const auto& image = std::get<UserImage>(messages[0]);
    EXPECT_EQ(image.id, "11");
    EXPECT_EQ(image.parentId, "10");
    EXPECT_EQ(image.status, DeliveryStatus::delivered);
    EXPECT_EQ(image.imageUrl, "https://files/11");
    EXPECT_EQ(image.thumbnailUrl, "https://thumbs/11");
    EXPECT_EQ(image.createdAt, 1700000050);

    messages = messagesFromComment(
        comment(false, "[a.png, b.pdf]", {attachment(11, "a.png", FileType::png), attachment(12, "b.pdf", FileType::pdf)}));
    EXPECT_EQ(messages.size(), 2u);
    messages = messagesFromComment(comment(false, "[a.png]", {attachment(11, "a.png", FileType::png),
                                                              attachment(12, "b.pdf", FileType::pdf)}));
    ASSERT_EQ(messages.size(), 3u) << "the text differs from the joined names, so it stays";
    EXPECT_EQ(std::get<UserMessage>(messages[0]).body, "[a.png]");
}

TEST(CommentToMessages, ImagesAreTheImageKindsOnly) {
    const auto messages = messagesFromComment(comment(
        false, "look", {attachment(11, "a.heic", FileType::heic), attachment(12, "b.bin", FileType::unknown),
                        attachment(13, "c.jpeg", FileType::jpeg)}));
    ASSERT_EQ(messages.size(), 4u);
    const auto& text = std::get<UserMessage>(messages[0]);
    EXPECT_EQ(text.id, "10");
    EXPECT_EQ(text.status, DeliveryStatus::delivered);
    EXPECT_EQ(text.htmlBody, "<p>look</p>");
    EXPECT_TRUE(std::holds_alternative<UserImage>(messages[1]));
    const auto& file = std::get<UserFile>(messages[2]);
    EXPECT_EQ(file.size, 2048);
    EXPECT_EQ(file.attachmentUrl, "https://files/12");
    EXPECT_FALSE(file.downloaded);
    EXPECT_TRUE(std::holds_alternative<UserImage>(messages[3]));
    for (const auto& message : messages) EXPECT_FALSE(isEndOfGroup(message));
}

TEST(CommentToMessages, AgentRowsCarryTheirAuthor) {
    const auto messages = messagesFromComment(
        comment(true, "[a.png]", {attachment(11, "a.png", FileType::png), attachment(12, "r.pdf", FileType::pdf)}));
    ASSERT_EQ(messages.size(), 3u) << "an agent's text is never dropped";
    const auto& text = std::get<AgentMessage>(messages[0]);
    EXPECT_EQ(text.name, "Ada");
    EXPECT_EQ(text.userID, 3);
    const auto& image = std::get<AgentImage>(messages[1]);
    EXPECT_EQ(image.avatarURL, "https://avatars/3");
    EXPECT_EQ(std::get<AgentFile>(messages[2]).userID, 3);
}

TEST(ProviderComment, TakesItsAuthorAndAttachmentKindsFromTheRecords) {
    dastrel::CRVCommentWithUser source;
    source.comment.commentId = 55;
    source.comment.body = "hi";
    source.comment.createdAt = 1700000000;
    dastrel::CRVAttachment photo;
    photo.attachmentId = 56;
    photo.filename = "p.heic";
    photo.contentURLString = "https://files/56";
    photo.contentType = "IMAGE/HEIC";
    photo.width = 10;
    photo.height = 20;
    photo.thumbnailURLString = "https://thumbs/56";
    dastrel::CRVAttachment sheet;
    sheet.contentType = "application/x-odd";
    source.comment.attachments = {photo, sheet};
    source.user = {9, "Grace", "https://avatars/9", true};

    const auto comment = commentFromProvider(source);
    EXPECT_EQ(comment.id, 55);
    EXPECT_TRUE(comment.isAgent);
    EXPECT_EQ(comment.userID, 9);
    EXPECT_EQ(comment.name, "Grace");
    EXPECT_EQ(comment.avatarURL, "https://avatars/9");
    ASSERT_EQ(comment.attachments.size(), 2u);
    const auto& first = comment.attachments[0];
    EXPECT_EQ(first.fileType, FileType::heic);
    EXPECT_EQ(first.commentId, 55);
    EXPECT_EQ(first.fileUrl, "https://files/56");
    EXPECT_EQ(first.thumbUrl, "https://thumbs/56");
    EXPECT_EQ(first.imageSize, (platform::Size{10, 20}));
    EXPECT_EQ(first.createdAt, 1700000000);
    EXPECT_EQ(comment.attachments[1].fileType, FileType::unknown);
}

TEST(LocalMessages, TextIsQueuedUnderAFreshIdAndDatedNow) {
    const auto clock = std::make_shared<platform::FixedWallClock>(1700000123);
    const auto previous = platform::setWallClock(clock);
    const auto first = makeUserMessage("hello");
    const auto second = makeUserMessage("hello");
    platform::setWallClock(previous);
    EXPECT_EQ(first.status, DeliveryStatus::notDelivered);
    EXPECT_EQ(first.createdAt, 1700000123);
    EXPECT_EQ(first.id.size(), 36u);
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(makeUserMessage("x", "given", 5.0).id, "given");
}

TEST(LocalMessages, ChosenAttachmentsBecomeRowsOfTheText) {
    const auto picture = platform::makeImage(4, 3);
    const auto text = makeUserMessage("see files", "T", 1700000000);
    const std::vector<InputAttachmentViewStatePtr> chosen{
        std::make_shared<InputImageViewModel>(picture, "img-1", std::nullopt, std::nullopt, FileType::png, std::nullopt),
        std::make_shared<InputFileViewModel>("report", 99, nullptr, "bytes", "file-1", FileType::pdf, "pdf")};
    const auto messages = makeLocalMessages(text, chosen);
    ASSERT_EQ(messages.size(), 3u);
    const auto& image = std::get<UserImage>(messages[1]);
    EXPECT_EQ(image.id, "img-1");
    EXPECT_EQ(image.parentId, "T");
    EXPECT_EQ(image.status, DeliveryStatus::notDelivered);
    EXPECT_EQ(image.image, picture);
    EXPECT_EQ(image.createdAt, 1700000000);
    const auto& file = std::get<UserFile>(messages[2]);
    EXPECT_EQ(file.id, "file-1");
    EXPECT_EQ(file.filename, "report.pdf");
    EXPECT_EQ(file.size, 99);
    EXPECT_TRUE(file.downloaded);
    EXPECT_TRUE(file.attachmentUrl.empty());
    EXPECT_EQ(file.fileType, FileType::pdf);
}
