#include "belvakit/attachments/attachment_preview.hpp"
#include "belvakit/attachments/cache.hpp"
#include "belvakit/attachments/cache_keys.hpp"
#include "platform/files.hpp"
#include "platform/main_queue.hpp"
#include "test_support.hpp"

#include <gtest/gtest.h>

#include <future>

using namespace belvakit;
using platform::LogLevel;
using testing_support::CapturedLog;
using testing_support::TemporaryDirectory;

namespace {

// Waits until the cache's queue has done what it was given so far.
void drain(Cache& cache) {
    std::promise<void> done;
    cache.run([&] { done.set_value(); });
    done.get_future().wait();
}

struct Fetched {
    bool called = false;
    bool onMainThread = false;
    std::optional<std::string> bytes;
};

Fetched fetchNow(Cache& cache, const std::string& key) {
    auto result = std::make_shared<Fetched>();
    cache.fetch(key, [result](std::optional<std::string> bytes) {
        result->called = true;
        result->onMainThread = platform::MainQueue::shared().isMainThread();
        result->bytes = std::move(bytes);
    });
    testing_support::pumpMainQueueUntil([&] { return result->called; });
    return *result;
}

std::shared_ptr<ConcreteCache> cacheIn(const std::string& root, bool allowOverwrite) {
    const corvane::StoreModule module{root, nullptr};
    return ConcreteCache::make(&module, "Tickets", allowOverwrite);
}

} // namespace

TEST(CacheKeys, SlashesAreLeftOutOfBothParts) {
    EXPECT_EQ(imageCacheKey("12", "a/b.png"), "12_img_ab.png");
    EXPECT_EQ(thumbnailCacheKey("1/2", "b.png"), "12_thumbnail_b.png");
    EXPECT_EQ(fileCacheKey("../..", "../../etc/passwd"), "...._data_....etcpasswd");
}

TEST(ConcreteCache, WithoutACoreDirectoryThereIsNoCache) {
    CapturedLog log;
    EXPECT_EQ(ConcreteCache::make(nullptr, "Tickets", true), nullptr);
    const corvane::StoreModule empty{};
    EXPECT_EQ(ConcreteCache::make(&empty, "Tickets", true), nullptr);
    EXPECT_EQ(log.messages(LogLevel::error),
              (std::vector<std::string>{"Could not retrieve core cache directory",
                                        "Could not retrieve core cache directory"}));
}

TEST(ConcreteCache, MakesItsDirectoryLabelsItsQueueWithItAndGivesFileURLsOfStoredKeys) {
    TemporaryDirectory root;
    const auto cache = cacheIn(root.path() + "/nested", true);
    ASSERT_NE(cache, nullptr);
    EXPECT_TRUE(std::filesystem::is_directory(root.path() + "/nested/Tickets"));
    EXPECT_EQ(cache->queue().label(), "file://" + root.path() + "/nested/Tickets/");
    EXPECT_TRUE(cache->allowOverwrite());

    // A key's file URL exists once it is stored.
    EXPECT_FALSE(cache->fileURL("12_data_a.pdf"));
    cache->store("12_data_a.pdf", "pdf");
    drain(*cache);
    EXPECT_EQ(cache->fileURL("12_data_a.pdf"), cache->path() / "12_data_a.pdf");
}

TEST(ConcreteCache, OverwriteKeepsTheLaterBytesWhenAllowedAndTheFirstOtherwise) {
    TemporaryDirectory root;
    CapturedLog log;
    const auto overwriting = cacheIn(root.path() + "/a", true);
    overwriting->store("k", "first");
    overwriting->store("k", "second");
    drain(*overwriting);
    EXPECT_EQ(platform::readFile(overwriting->path() / "k"), "second");

    const auto keeping = cacheIn(root.path() + "/b", false);
    keeping->store("k", "first");
    keeping->store("k", "second");
    drain(*keeping);
    EXPECT_EQ(platform::readFile(keeping->path() / "k"), "first");
    EXPECT_EQ(log.count(LogLevel::verbose, "Cache already contains: k"), 1u);
    EXPECT_EQ(log.count(LogLevel::verbose, "Caching: k"), 3u);
}

TEST(ConcreteCache, FetchAnswersOnTheMainQueueWithBytesOrNothing) {
    TemporaryDirectory root;
    CapturedLog log;
    const auto cache = cacheIn(root.path(), true);
    cache->store("known", std::string("a\0b", 3));
    const auto known = fetchNow(*cache, "known");
    EXPECT_TRUE(known.onMainThread);
    EXPECT_EQ(known.bytes, std::string("a\0b", 3));

    const auto unknown = fetchNow(*cache, "unknown");
    EXPECT_TRUE(unknown.onMainThread);
    EXPECT_FALSE(unknown.bytes);
    EXPECT_TRUE(log.contains(LogLevel::verbose, "Fetching from cache: unknown"));
}

TEST(ConcreteCache, ObjectsOfOneDirectoryWorkOnItsOneQueueSoAReadFollowsAnotherObjectsWrite) {
    TemporaryDirectory root;
    std::promise<void> gate;
    auto writer = cacheIn(root.path(), true);
    const platform::SerialQueue writerQueue = writer->queue();
    writer->run([opened = gate.get_future().share()] { opened.wait(); });
    writer->store("k", "written");
    // The write is still held up when its cache object goes and another one is made.
    writer.reset();
    const auto reader = cacheIn(root.path(), true);
    bool sameQueue = false;
    writerQueue.async([&] { sameQueue = reader->queue().isCurrent(); });
    gate.set_value();
    EXPECT_EQ(fetchNow(*reader, "k").bytes, "written");
    EXPECT_TRUE(sameQueue);

    const auto other = cacheIn(root.path() + "/other", true);
    bool otherQueue = true;
    other->run([&] { otherQueue = reader->queue().isCurrent(); });
    drain(*other);
    EXPECT_FALSE(otherQueue) << "another directory keeps a queue of its own";
}

TEST(ConcreteCache, KeysCannotReachOutsideTheDirectory) {
    TemporaryDirectory root;
    CapturedLog log;
    const auto cache = cacheIn(root.path(), true);
    for (const std::string key : {"../escaped", "..", ".", "sub/file", ""}) cache->store(key, "x");
    // Keys built from hostile ids and names stay plain file names.
    cache->store(fileCacheKey("../..", "../escaped"), "y");
    drain(*cache);
    EXPECT_FALSE(std::filesystem::exists(root.path() + "/escaped"));
    EXPECT_FALSE(std::filesystem::exists(cache->path() / "sub"));
    EXPECT_TRUE(std::filesystem::exists(cache->path() / "...._data_..escaped"));
    EXPECT_FALSE(cache->fileURL(".."));
    EXPECT_FALSE(fetchNow(*cache, "../escaped").bytes);
    EXPECT_FALSE(cache->read("../escaped"));
    EXPECT_EQ(cache->read("...._data_..escaped"), "y");
    // Many at once, in order, through the same gate.
    ASSERT_TRUE(platform::writeFileAtomically(root.path() + "/outside", "z"));
    const std::optional<std::string> none;
    EXPECT_EQ(cache->readEntries({"../outside", "...._data_..escaped", "..", "missing", "/tmp", ""}),
              (std::vector<std::optional<std::string>>{none, "y", none, none, none, none}));
    EXPECT_EQ(log.count(LogLevel::verbose, "Failed to cache item ../escaped"), 1u);
}

TEST(ConcreteCache, AKeyTooLongForAFileNameIsKeptUnderItsDigest) {
    TemporaryDirectory root;
    const auto cache = cacheIn(root.path(), true);
    // Near the limit the name itself serves; beyond it, its digest.
    const auto nearLimit = fileCacheKey("11", std::string(240, 'n'));
    cache->store(nearLimit, "near");
    const std::string longName(300, 'n');
    const auto key = fileCacheKey("12", longName);
    const auto sibling = fileCacheKey("13", longName);
    cache->store(key, "bytes");
    cache->store(sibling, "other");
    drain(*cache);
    const auto file = cache->fileURL(key);
    ASSERT_TRUE(file);
    EXPECT_LE(file->filename().string().size(), 255u);
    EXPECT_EQ(file->parent_path(), cache->path());
    EXPECT_NE(cache->fileURL(sibling), file);
    EXPECT_EQ(cache->read(key), "bytes");
    EXPECT_EQ(fetchNow(*cache, key).bytes, "bytes");
    EXPECT_EQ(cache->readEntries({key, sibling}), (std::vector<std::optional<std::string>>{"bytes", "other"}));
    EXPECT_EQ(cache->fileURL(nearLimit), cache->path() / nearLimit);
    EXPECT_EQ(cache->read(nearLimit), "near");
    // A second cache object of the directory finds the same file.
    EXPECT_EQ(cacheIn(root.path(), true)->fileURL(key), file);
}

TEST(ConcreteCache, AnUnwritableDirectoryLogsAndAnswersNothing) {
    TemporaryDirectory root;
    ASSERT_TRUE(platform::writeFileAtomically(root.path() + "/blocked", "a file where the directory should be"));
    CapturedLog log;
    const auto cache = cacheIn(root.path() + "/blocked", true);
    ASSERT_NE(cache, nullptr) << "the cache object lives on";
    EXPECT_EQ(log.messages(LogLevel::error),
              std::vector<std::string>{"Could not create cache directory: file://" + root.path() + "/blocked/Tickets/"});
    cache->store("k", "bytes");
    drain(*cache);
    EXPECT_TRUE(log.contains(LogLevel::verbose, "Failed to cache item k"));
    EXPECT_FALSE(fetchNow(*cache, "k").bytes);
    EXPECT_FALSE(cache->fileURL("k"));
}

TEST(AttachmentDetailPresenter, ShowsTheCachedFileUnderTheMessagesFilename) {
    TemporaryDirectory root;
    const auto cache = cacheIn(root.path(), true);
    UserFile file;
    file.id = "12";
    file.filename = "dir/report.pdf";
    const AttachmentDetailPresenter missing(file, *cache);
    EXPECT_FALSE(missing.canPresent());
    EXPECT_EQ(missing.previewItem().previewItemTitle, "dir/report.pdf");

    cache->store(fileCacheKey("12", "dir/report.pdf"), "%PDF");
    drain(*cache);
    const AttachmentDetailPresenter present(file, *cache);
    EXPECT_EQ(present.numberOfPreviewItems(), 1);
    EXPECT_EQ(present.previewItemAtIndex(0).previewItemURL, cache->path() / "12_data_dirreport.pdf");
}

TEST(SharedDocument, TakesBytesAndRegularFilesAndRefusesTheRest) {
    SharedDocument document("/tmp/picked");
    EXPECT_EQ(document.loadFromContents(std::string(), "public.data"), SharedDocumentError::emptyData);
    EXPECT_EQ(document.loadFromContents(std::string("abc"), "public.data"), std::nullopt);
    EXPECT_EQ(document.contents(), "abc");
    EXPECT_EQ(document.loadFromContents(FileWrapper{FileWrapper::Kind::regularFile, "file", ""}, "x"), std::nullopt);
    EXPECT_EQ(document.contents(), "file");
    EXPECT_EQ(document.loadFromContents(FileWrapper{FileWrapper::Kind::directory, "", "serialised"}, "x"),
              std::nullopt);
    EXPECT_EQ(document.contents(), "serialised");
    EXPECT_EQ(document.loadFromContents(FileWrapper{FileWrapper::Kind::symbolicLink, "", ""}, "x"),
              SharedDocumentError::symLinkNotSupported);
    EXPECT_EQ(document.loadFromContents(42, "x"), SharedDocumentError::unknownFileType);
    EXPECT_FALSE(document.hasUnsavedChanges());
}
