#include "belvakit/attachments/attachment_uploader.hpp"
#include "belvakit/attachments/attachments_provider.hpp"
#include "belvakit/attachments/cache.hpp"
#include "sandbox/help_desk.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

using namespace belvakit;
using testing_support::TemporaryDirectory;

namespace {

struct Desk {
    TemporaryDirectory directory;
    std::shared_ptr<sandbox::HelpDesk> helpDesk = sandbox::HelpDesk::make({.storageDirectory = directory.path()});
    std::shared_ptr<corvane::Corvane> core = helpDesk->initializeCorvane(std::make_shared<corvane::Anonymous>(std::string("Ada"), std::string("ada@example.com")));
    ~Desk() { corvane::Corvane::reset(); }
};

std::optional<std::string> download(const std::string& url) {
    std::optional<std::string> bytes;
    bool done = false;
    makeAttachmentsProvider()->getAttachment(url, [&](std::optional<std::string> data, auto) {
        bytes = std::move(data);
        done = true;
    });
    testing_support::pumpMainQueueUntil([&] { return done; });
    return bytes;
}

} // namespace

TEST(SandboxAttachments, UploadsGiveTokensAndTheirFilesAreServedBack) {
    Desk desk;
    std::optional<UploadOutcome> outcome;
    auto uploader = ConcreteAttachmentUploader::make();
    uploader->upload({Upload::Attachment{"%PDF", "A", FileType::pdf, std::string("a.pdf")},
                      Upload::Attachment{"img", "B", FileType::png, std::nullopt}},
                     [&](UploadOutcome value) { outcome = std::move(value); });
    testing_support::pumpMainQueueUntil([&] { return outcome.has_value(); });
    const auto& results = std::get<UploadResults>(*outcome);
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(desk.helpDesk->attachments()->uploadCount(), 2u);
    for (const auto& [file, response] : results) {
        const auto stored = desk.helpDesk->attachments()->uploadWithToken(response.uploadToken);
        ASSERT_TRUE(stored);
        EXPECT_EQ(stored->data, file.data);
        ASSERT_TRUE(response.attachment);
        EXPECT_EQ(download(response.attachment->contentURLString), file.data);
    }
    EXPECT_NE(results[0].second.uploadToken, results[1].second.uploadToken);
    EXPECT_NE(results[0].second.attachment->attachmentId, results[1].second.attachment->attachmentId);
    EXPECT_EQ(desk.helpDesk->attachments()->uploadWithToken(results[1].second.uploadToken)->attachment.filename,
              "AttachmentB.png");
    EXPECT_FALSE(download("https://belva.example.com/nothing"));
}

TEST(SandboxAttachments, SwitchesMakeUploadsFailAndAnswersWait) {
    Desk desk;
    testing_support::VirtualTime time;
    desk.helpDesk->attachments()->setLatency(platform::seconds(2));
    desk.helpDesk->attachments()->serve("https://belva.example.com/avatar/1", "avatar");
    std::optional<std::string> avatar;
    makeAttachmentsProvider()->getAttachment("https://belva.example.com/avatar/1",
                                             [&](std::optional<std::string> data, auto) { avatar = std::move(data); });
    time.advance(platform::seconds(1.9));
    EXPECT_FALSE(avatar);
    time.advance(platform::seconds(0.1));
    EXPECT_EQ(avatar, "avatar");

    desk.helpDesk->attachments()->setLatency({});
    desk.helpDesk->attachments()->setFailUploads(true);
    std::optional<UploadOutcome> outcome;
    auto uploader = ConcreteAttachmentUploader::make();
    uploader->upload({Upload::Attachment{"x", "A", FileType::txt, std::nullopt}},
                     [&](UploadOutcome value) { outcome = std::move(value); });
    time.advance({});
    testing_support::pumpMainQueueUntil([&] { return outcome.has_value(); });
    EXPECT_EQ(std::get<dastrel::ProviderError>(*outcome).domain, "UploadError");
    EXPECT_EQ(desk.helpDesk->attachments()->uploadCount(), 0u);

    desk.helpDesk->attachments()->setFailDownloads(true);
    bool failed = false;
    makeAttachmentsProvider()->getAttachment("https://belva.example.com/avatar/1",
                                             [&](auto data, auto error) { failed = !data && error; });
    time.advance({});
    EXPECT_TRUE(failed);
}

TEST(SandboxAttachments, TheNamedCachesLiveUnderTheCoresCacheDirectory) {
    Desk desk;
    const auto tickets = ConcreteCache::named(ConcreteCache::ticketsDirectory);
    ASSERT_NE(tickets, nullptr);
    EXPECT_EQ(tickets->path(), std::filesystem::path(desk.directory.path()) / "Caches" / "Tickets");
    EXPECT_TRUE(std::filesystem::is_directory(tickets->path()));
}
