#include "belvakit/Request/queue/comment_mapping.hpp"

#include "belvakit/Request/conversation/local_messages.hpp"
#include "platform/clock.hpp"

#include <gtest/gtest.h>

using namespace belvakit;

namespace {

Request::Attachment attachment(std::int64_t id, std::string name, FileType type) {
    return {.id = id, .fileName = std::move(name), .fileUrl = "https://files/" + std::to_string(id), .fileType = type,
            .fileSize = 2048, .createdAt = 1700000050};
}

Request::Comment comment(bool isAgent, std::string body, std::vector<Request::Attachment> attachments) {
    return Request::Comment{10, std::move(body), "<p>html</p>", isAgent, std::move(attachments), 1700000000, 3, "Ada", "https://avatars/3"};
}

} // namespace

TEST(CommentToMessages, UserCommentOfAttachmentsAloneHasNoTextAndAgentRowsCarryTheirAuthor) {
    auto messages = messagesFromComment(comment(false, "[a.png, b.pdf]", {attachment(11, "a.png", FileType::png),
                                                                         attachment(12, "b.pdf", FileType::pdf)}));
    ASSERT_EQ(messages.size(), 2u);
    const auto& image = messages[0].get<UserImage>();
    EXPECT_EQ(image.id, "11");
    EXPECT_EQ(image.parentId, "10");
    EXPECT_EQ(image.status, DeliveryStatus::delivered);
    EXPECT_EQ(image.imageUrl, "https://files/11");
    EXPECT_EQ(image.createdAt, 1700000050);
    const auto& file = messages[1].get<UserFile>();
    EXPECT_EQ(file.size, 2048);
    EXPECT_FALSE(file.downloaded);

    messages = messagesFromComment(comment(false, "[a.png]", {attachment(11, "a.png", FileType::png),
                                                              attachment(12, "b.heic", FileType::heic)}));
    ASSERT_EQ(messages.size(), 3u) << "a text unlike the joined names stays";
    EXPECT_EQ(messages[0].get<UserMessage>().htmlBody, "<p>html</p>");
    EXPECT_TRUE(messages[2].holds<UserImage>()) << "HEIC is an image";
    EXPECT_TRUE(messagesFromComment(
        comment(false, "x", {attachment(13, "c", FileType::unknown)}))[1].holds<UserFile>());

    // Agent rows carry their author and keep their text.
    messages = messagesFromComment(
        comment(true, "[a.png]", {attachment(11, "a.png", FileType::jpeg), attachment(12, "r.pdf", FileType::pdf)}));
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[0].get<AgentMessage>().name, "Ada");
    EXPECT_EQ(messages[1].get<AgentImage>().avatarURL, "https://avatars/3");
    EXPECT_EQ(messages[2].get<AgentFile>().userID, 3);
}

TEST(LocalMessages, TextAndChosenAttachmentsAreQueuedTogether) {
    const auto previous = platform::setWallClock(std::make_shared<platform::FixedWallClock>(1700000123));
    const auto fresh = makeUserMessage("hello");
    platform::setWallClock(previous);
    EXPECT_EQ(fresh.status, DeliveryStatus::notDelivered);
    EXPECT_EQ(fresh.createdAt, 1700000123);
    EXPECT_EQ(fresh.id.size(), 36u);
    EXPECT_NE(fresh.id, makeUserMessage("hello").id);

    const auto picture = platform::makeImage(4, 3);
    const auto messages = makeLocalMessages(
        makeUserMessage("see files", "T", 1700000000),
        {std::make_shared<InputImageViewModel>(picture, "img-1", std::nullopt, std::nullopt, FileType::png, std::nullopt),
         std::make_shared<InputFileViewModel>("report", 99, nullptr, "bytes", "file-1", FileType::pdf, "pdf")});
    ASSERT_EQ(messages.size(), 3u);
    const auto& image = messages[1].get<UserImage>();
    EXPECT_EQ(image.id, "img-1");
    EXPECT_EQ(image.parentId, "T");
    EXPECT_EQ(image.image, picture);
    const auto& file = messages[2].get<UserFile>();
    EXPECT_EQ(file.filename, "report.pdf");
    EXPECT_EQ(file.status, DeliveryStatus::notDelivered);
    EXPECT_TRUE(file.downloaded);
    EXPECT_EQ(file.createdAt, 1700000000);
}
