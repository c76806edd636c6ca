#include "belvakit/attachments/cache.hpp"

#include "corvane/core_logger.hpp"
#include "corvane/corvane.hpp"
#include "platform/digest.hpp"
#include "platform/files.hpp"
#include "platform/main_queue.hpp"

#include <map>
#include <mutex>
#include <system_error>

namespace belvakit {

using corvane::CoreLogger;

std::shared_ptr<ConcreteCache> ConcreteCache::make(const corvane::StoreModule* storeModule,
                                                   const std::string& directoryName, bool allowOverwrite) {
    if (!storeModule || storeModule->cacheDirectory.empty()) {
        CoreLogger::error("Could not retrieve core cache directory");
        return nullptr;
    }
    return std::make_shared<ConcreteCache>(storeModule->cacheDirectory / directoryName, allowOverwrite);
}

std::shared_ptr<ConcreteCache> ConcreteCache::named(const std::string& directoryName) {
    const auto core = corvane::Corvane::instance();
    return make(core ? &core->storeModule() : nullptr, directoryName, true);
}

namespace {

// The queue of a directory, by its label, for as long as a cache object or queued work holds it.
std::shared_ptr<const platform::SerialQueue> directoryQueue(const std::string& label) {
    static std::mutex mutex;
    static std::map<std::string, std::weak_ptr<const platform::SerialQueue>> queues;
    std::lock_guard lock(mutex);
    std::erase_if(queues, [](const auto& entry) { return entry.second.expired(); });
    auto& slot = queues[label];
    auto queue = slot.lock();
    if (!queue) {
        queue = std::make_shared<const platform::SerialQueue>(label);
        slot = queue;
    }
    return queue;
}

} // namespace

ConcreteCache::ConcreteCache(std::filesystem::path path, bool allowOverwrite)
    : path_(std::move(path)),
      allowOverwrite_(allowOverwrite),
      queue_(directoryQueue("file://" + path_.string() + "/")) {
    // Creating a directory that exists succeeds, so there is no need to look first.
    std::error_code error;
    std::filesystem::create_directories(path_, error);
    if (error || !std::filesystem::is_directory(path_, error))
        CoreLogger::error("Could not create cache directory: file://" + path_.string() + "/");
}

namespace {

// Keys are file names: anything that would name another directory has no file.
bool isFileName(const std::string& key) {
    return !key.empty() && key != "." && key != ".." && key.find('/') == std::string::npos &&
           key.find('\0') == std::string::npos;
}

// File systems take names of up to 255 bytes. A longer key is named by its digest, so that what
// it stands for is still cached, and found again, under one stable name.
constexpr std::size_t longestFileName = 255;

std::optional<std::string> fileNameOf(const std::string& key) {
    if (!isFileName(key)) return std::nullopt;
    if (key.size() > longestFileName) return "long-key-" + platform::sha1Hex(key);
    return key;
}

std::optional<std::filesystem::path> fileIn(const std::filesystem::path& directory, const std::string& key) {
    const auto name = fileNameOf(key);
    if (!name) return std::nullopt;
    return directory / *name;
}

// Writes unless an entry exists and may not be replaced; on the cache's queue.
void write(const std::filesystem::path& directory, const std::string& key, const std::string& bytes,
           bool allowOverwrite) {
    const auto file = fileIn(directory, key);
    std::error_code error;
    if (file && std::filesystem::exists(*file, error) && !allowOverwrite) {
        CoreLogger::verbose("Cache already contains: " + key);
        return;
    }
    CoreLogger::verbose("Caching: " + key);
    if (!file || !platform::writeFileAtomically(*file, bytes)) CoreLogger::verbose("Failed to cache item " + key);
}

} // namespace

void ConcreteCache::store(const std::string& key, std::string bytes) {
    // The work holds copies, not the cache, so that it may outlive the cache object; it holds the
    // queue, so that a cache object made meanwhile finds this queue and reads after the write.
    queue_->async([queue = queue_, directory = path_, allowOverwrite = allowOverwrite_, key, bytes = std::move(bytes)] {
        write(directory, key, bytes, allowOverwrite);
    });
}

void ConcreteCache::storeIfAbsent(const std::string& key, std::string bytes) {
    // The look and the write are one step on the queue, so two stores of one file write it once.
    queue_->async([queue = queue_, directory = path_, key, bytes = std::move(bytes)] {
        const auto file = fileIn(directory, key);
        std::error_code error;
        if (file && std::filesystem::exists(*file, error)) return;
        write(directory, key, bytes, true);
    });
}

void Cache::update(const std::string& key, Change change) {
    if (auto bytes = change(read(key))) store(key, std::move(*bytes));
}

void Cache::storeIfAbsent(const std::string& key, std::string bytes) {
    if (!fileURL(key)) store(key, std::move(bytes));
}

std::optional<std::string> Cache::read(const std::string& key) const {
    const auto file = fileURL(key);
    return file ? platform::readFile(*file) : std::nullopt;
}

std::vector<std::optional<std::string>> Cache::readEntries(const std::vector<std::string>& keys) const {
    std::vector<std::optional<std::string>> entries;
    entries.reserve(keys.size());
    for (const auto& key : keys) entries.push_back(read(key));
    return entries;
}

namespace {

std::optional<std::string> readEntry(const std::filesystem::path& directory, const std::string& key) {
    const auto file = fileIn(directory, key);
    return file ? platform::readFile(*file) : std::nullopt;
}

} // namespace

std::optional<std::string> ConcreteCache::read(const std::string& key) const { return readEntry(path_, key); }

std::vector<std::optional<std::string>> ConcreteCache::readEntries(const std::vector<std::string>& keys) const {
    const platform::OpenDirectory directory(path_);
    std::vector<std::optional<std::string>> entries;
    entries.reserve(keys.size());
    for (const auto& key : keys) {
        const auto name = fileNameOf(key);
        entries.push_back(name ? directory.readFile(*name) : std::nullopt);
    }
    return entries;
}

void ConcreteCache::fetch(const std::string& key, FetchCompletion completion) {
    CoreLogger::verbose("Fetching from cache: " + key);
    queue_->async([queue = queue_, directory = path_, key, completion = std::move(completion)]() mutable {
        auto bytes = readEntry(directory, key);
        platform::MainQueue::shared().async(
            [completion = std::move(completion), bytes = std::move(bytes)]() mutable { completion(std::move(bytes)); });
    });
}

std::optional<std::filesystem::path> ConcreteCache::fileURL(const std::string& key) const {
    const auto file = fileIn(path_, key);
    std::error_code error;
    if (!file || !std::filesystem::is_regular_file(*file, error)) return std::nullopt;
    return file;
}

void ConcreteCache::update(const std::string& key, Change change) {
    // A read queued after this one sees its write: nothing comes between the look and the write.
    queue_->async([queue = queue_, directory = path_, allowOverwrite = allowOverwrite_, key, change = std::move(change)] {
        if (auto bytes = change(readEntry(directory, key))) write(directory, key, *bytes, allowOverwrite);
    });
}

void ConcreteCache::run(std::function<void()> block) {
    queue_->async([queue = queue_, block = std::move(block)] { block(); });
}

} // namespace belvakit
