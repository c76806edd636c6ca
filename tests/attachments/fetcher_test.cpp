#include "belvakit/attachments/cache_keys.hpp"
#include "belvakit/attachments/file_fetcher.hpp"
#include "belvakit/attachments/image_encoding.hpp"
#include "platform/files.hpp"
#include "platform/image_codec.hpp"
#include "platform/main_queue.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <future>
#include <mutex>

using namespace belvakit;
using testing_support::TemporaryDirectory;

namespace {

// Answers at once from a table of URLs; unknown URLs fail.
class TableProvider final : public AttachmentsProvider {
public:
    void getAttachment(const std::string& url, Completion completion) override {
        {
            std::lock_guard lock(mutex);
            requested.push_back(url);
        }
        const auto found = bytes.find(url);
        if (found == bytes.end())
            completion(std::nullopt, dastrel::ProviderError{"Test", 404, "Not found"});
        else
            completion(found->second, std::nullopt);
    }
    std::map<std::string, std::string> bytes;
    std::vector<std::string> requested;
    std::mutex mutex;
};

void drain(Cache& cache) {
    std::promise<void> done;
    cache.run([&] { done.set_value(); });
    done.get_future().wait();
}

std::string pngOf(int width, int height) {
    auto image = std::const_pointer_cast<platform::Image>(platform::makeImage(width, height));
    for (std::size_t i = 0; i < image->rgba.size(); ++i) image->rgba[i] = static_cast<std::uint8_t>(i * 7);
    return *platform::encodePNG(*image);
}

struct Fixture {
    TemporaryDirectory root;
    std::shared_ptr<TableProvider> provider = std::make_shared<TableProvider>();
    std::shared_ptr<ConcreteCache> cache = std::make_shared<ConcreteCache>(root.path() + "/Tickets", true);
};

UserFile fileMessage() {
    return {.id = "12", .filename = "a/b.pdf", .status = DeliveryStatus::delivered,
            .attachmentUrl = "https://belva.example.com/f/12"};
}

AgentImage imageMessage() {
    return {.id = "30", .filename = "shot.png", .imageUrl = "https://belva.example.com/i/30",
            .thumbnailUrl = "https://belva.example.com/t/30"};
}

} // namespace

TEST(FileFetcher, MarksDownloadedOnlyWhenBytesCameAndWritesAFileOnce) {
    Fixture f;
    std::vector<Message> results;
    const auto keep = [&](Message message) { results.push_back(std::move(message)); };
    FileFetcher{nullptr, f.cache}.fetch(fileMessage(), keep);
    const FileFetcher fetcher{f.provider, f.cache};
    fetcher.fetch(fileMessage(), keep);
    fetcher.fetch(UserMessage{.id = "1"}, keep);
    ASSERT_EQ(results.size(), 3u) << "every fetch ends, also without a provider or a file";
    EXPECT_FALSE(results[0].get<UserFile>().downloaded);
    EXPECT_FALSE(results[1].get<UserFile>().downloaded) << "the download failed";
    drain(*f.cache);
    EXPECT_FALSE(f.cache->fileURL("12_data_ab.pdf"));

    // Two downloads of one file close together: the first bytes stay, written once.
    results.clear();
    f.provider->bytes["https://belva.example.com/f/12"] = "%PDF-1";
    fetcher.fetch(fileMessage(), keep);
    f.provider->bytes["https://belva.example.com/f/12"] = "%PDF-2";
    fetcher.fetch(fileMessage(), keep);
    ASSERT_EQ(results.size(), 2u);
    EXPECT_TRUE(results[0].get<UserFile>().downloaded);
    drain(*f.cache);
    EXPECT_EQ(platform::readFile(f.cache->path() / "12_data_ab.pdf"), "%PDF-1");
}

TEST(ImageFetcher, AFullImageFromTheNetworkIsKeptForTheRowAndThePreviewAndACachedThumbnailNeedsNoNetwork) {
    Fixture f;
    f.provider->bytes["https://belva.example.com/i/30"] = pngOf(3, 2);
    const ImageFetcher fetcher{f.provider, f.cache};
    std::optional<Message> result;
    fetcher.fetch(imageMessage(), false, [&](Message message) { result = std::move(message); });
    testing_support::pumpMainQueueUntil([&] { return result.has_value(); });
    const auto& image = result->get<AgentImage>();
    ASSERT_NE(image.image, nullptr);
    EXPECT_EQ(image.image->width, 3);
    EXPECT_EQ(image.thumbnailImage, nullptr);
    drain(*f.cache);
    EXPECT_TRUE(f.cache->fileURL("30_img_shot.png"));
    EXPECT_TRUE(f.cache->fileURL("30_data_shot.png"));
    EXPECT_FALSE(f.cache->fileURL("30_thumbnail_shot.png"));

    // A thumbnail in the cache needs no network.
    f.cache->store(thumbnailCacheKey("30", "shot.png"), pngOf(2, 2));
    result.reset();
    fetcher.fetch(imageMessage(), true, [&](Message message) { result = std::move(message); });
    testing_support::pumpMainQueueUntil([&] { return result.has_value(); });
    EXPECT_NE(result->get<AgentImage>().thumbnailImage, nullptr);
    EXPECT_EQ(f.provider->requested, std::vector<std::string>{"https://belva.example.com/i/30"});
}

TEST(ImageFetcher, WithoutAnImageTheMessageComesBackAsItWas) {
    Fixture f;
    f.provider->bytes["https://belva.example.com/t/30"] = "not an image";
    std::vector<Message> results;
    const auto keep = [&](Message message) { results.push_back(std::move(message)); };
    ImageFetcher{f.provider, f.cache}.fetch(imageMessage(), true, keep);  // bytes that are no image
    ImageFetcher{f.provider, f.cache}.fetch(imageMessage(), false, keep);  // no bytes
    ImageFetcher{nullptr, nullptr}.fetch(imageMessage(), true, keep);       // no provider
    ImageFetcher{f.provider, f.cache}.fetch(UserMessage{.id = "1"}, true, keep);
    ASSERT_TRUE(testing_support::pumpMainQueueUntil([&] { return results.size() == 4; }));
    for (const auto& message : results) {
        if (const auto* image = message.getIf<AgentImage>()) {
            EXPECT_EQ(image->image, nullptr);
            EXPECT_EQ(image->thumbnailImage, nullptr);
        }
    }
    drain(*f.cache);
    EXPECT_FALSE(f.cache->fileURL("30_thumbnail_shot.png"));
}

TEST(AttachmentFetcher, AsksOnceForEachAttachmentAndTakesFilesFromTheCacheOnly) {
    Fixture f;
    f.provider->bytes["https://belva.example.com/t/30"] = pngOf(2, 2);
    f.cache->store(fileCacheKey("12", "a/b.pdf"), "%PDF");
    AttachmentFetcher fetcher(FileFetcher{f.provider, f.cache}, ImageFetcher{f.provider, f.cache});
    std::vector<Message> filled;
    fetcher.setCallback([&](const Message& message) { filled.push_back(message); });

    const UserMessage text{.id = "1"};
    auto uncachedFile = fileMessage();
    uncachedFile.id = "13";
    const std::vector<Message> table{text, fileMessage(), uncachedFile, imageMessage()};
    fetcher.fetchAttachments(table);
    fetcher.fetchAttachments(table);
    testing_support::pumpMainQueueUntil([&] { return filled.size() == 2; });
    drain(*f.cache);
    platform::MainQueue::shared().runPending();

    EXPECT_EQ(filled.size(), 2u);
    EXPECT_EQ(f.provider->requested, std::vector<std::string>{"https://belva.example.com/t/30"});
    EXPECT_EQ(fetcher.attachmentsFetched().size(), 3u);
    bool sawDownloadedFile = false;
    for (const auto& message : filled)
        if (const auto* file = message.getIf<UserFile>()) sawDownloadedFile = file->downloaded && file->id == "12";
    EXPECT_TRUE(sawDownloadedFile);
}

TEST(AttachmentFetcher, AFailedKeyIsAskedForAgainOnlyAfterAGrowingWait) {
    testing_support::VirtualTime time;
    Fixture f;
    AttachmentFetcher fetcher(FileFetcher{f.provider, f.cache}, ImageFetcher{f.provider, f.cache});
    std::vector<Message> filled;
    fetcher.setCallback([&](const Message& message) { filled.push_back(message); });
    const std::vector<Message> table{imageMessage()};
    const auto requests = [&] {
        drain(*f.cache);
        platform::MainQueue::shared().runPending();
        drain(*f.cache);
        platform::MainQueue::shared().runPending();
        std::lock_guard lock(f.provider->mutex);
        return f.provider->requested.size();
    };
    // Redraws right after a failure don't ask again.
    fetcher.fetchAttachments(table);
    EXPECT_EQ(requests(), 1u);
    for (int redraw = 0; redraw < 5; ++redraw) fetcher.fetchAttachments(table);
    EXPECT_EQ(requests(), 1u);
    EXPECT_EQ(fetcher.attachmentsFetched().at(thumbnailCacheKey("30", "shot.png")), false);

    time.advance(AttachmentFetcher::firstRetryDelay);
    fetcher.fetchAttachments(table);
    EXPECT_EQ(requests(), 2u);
    // The second failure waits twice as long.
    time.advance(AttachmentFetcher::firstRetryDelay);
    fetcher.fetchAttachments(table);
    EXPECT_EQ(requests(), 2u);
    time.advance(AttachmentFetcher::firstRetryDelay);
    f.provider->bytes["https://belva.example.com/t/30"] = pngOf(2, 2);
    fetcher.fetchAttachments(table);
    EXPECT_EQ(requests(), 3u);
    ASSERT_EQ(filled.size(), 1u);
    EXPECT_NE(filled[0].get<AgentImage>().thumbnailImage, nullptr);
    // Once it came, it is not asked for again.
    time.advance(AttachmentFetcher::longestRetryDelay);
    fetcher.fetchAttachments(table);
    EXPECT_EQ(requests(), 3u);
}

TEST(ImageEncoding, KeepsTheSmallerEncodingOfTheUprightImage) {
    // A flat image packs best as PNG, noise as JPEG.
    auto flat = std::const_pointer_cast<platform::Image>(platform::makeImage(64, 64));
    std::fill(flat->rgba.begin(), flat->rgba.end(), 200);
    const auto flatEncoding = smallestEncoding(flat);
    ASSERT_TRUE(flatEncoding);
    EXPECT_EQ(flatEncoding->fileType, FileType::png);
    EXPECT_LT(flatEncoding->data.size(), platform::encodeJPEG(*flat, 0.7)->size());

    auto noise = std::const_pointer_cast<platform::Image>(platform::makeImage(64, 32, platform::ImageOrientation::right));
    std::uint32_t state = 12345;
    for (auto& byte : noise->rgba) {
        state = state * 1103515245u + 12345u;
        byte = static_cast<std::uint8_t>(state >> 16);
    }
    for (std::size_t i = 3; i < noise->rgba.size(); i += 4) noise->rgba[i] = 255;
    const auto noiseEncoding = smallestEncoding(noise);
    ASSERT_TRUE(noiseEncoding);
    EXPECT_EQ(noiseEncoding->fileType, FileType::jpeg);
    const auto decoded = platform::decodeImage(noiseEncoding->data);
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(decoded->width, 32) << "turned upright before encoding";
    EXPECT_EQ(decoded->height, 64);

    EXPECT_FALSE(smallestEncoding(nullptr));
}
