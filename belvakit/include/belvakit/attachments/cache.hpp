#pragma once

#include "corvane/store_module.hpp"
#include "platform/serial_queue.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace belvakit {

// A directory of bytes by key.
class Cache {
public:
    using FetchCompletion = std::function<void(std::optional<std::string> bytes)>;

    virtual ~Cache() = default;
    // Fire and forget.
    virtual void store(const std::string& key, std::string bytes) = 0;
    // The completion runs on the main queue, with nothing when there is no readable entry.
    virtual void fetch(const std::string& key, FetchCompletion completion) = 0;
    // The file of an existing entry, looked up on the calling thread.
    virtual std::optional<std::filesystem::path> fileURL(const std::string& key) const = 0;
    // Runs the block on the cache's queue, after the work already given to it.
    virtual void run(std::function<void()> block) = 0;
    // Stores unless an entry exists. This default looks on the calling thread; a cache with a
    // queue looks and writes in one step on it.
    virtual void storeIfAbsent(const std::string& key, std::string bytes);
    // Writes what `change` makes of the entry (nothing read: no entry), unless it makes nothing.
    // This default reads on the calling thread; a cache with a queue reads and writes in one step on it.
    using Change = std::function<std::optional<std::string>(std::optional<std::string> bytes)>;
    virtual void update(const std::string& key, Change change);
    // The bytes of an entry, read on the calling thread: for blocks that `run` gave to the queue.
    virtual std::optional<std::string> read(const std::string& key) const;
    // The same for many entries at once, in the keys' order.
    virtual std::vector<std::optional<std::string>> readEntries(const std::vector<std::string>& keys) const;
};

// A cache directory under the core's cache directory. Every cache object of one directory works on
// that directory's one serial queue, so a read through one object sees the writes given to another.
class ConcreteCache final : public Cache {
public:
    static constexpr const char* ticketsDirectory = "Tickets";
    static constexpr const char* avatarsDirectory = "Avatars";

    // Null, with an error log, when the core offers no cache directory.
    static std::shared_ptr<ConcreteCache> make(const corvane::StoreModule* storeModule,
                                               const std::string& directoryName, bool allowOverwrite);
    // The "Tickets" or "Avatars" cache of the current core object, overwriting allowed.
    static std::shared_ptr<ConcreteCache> named(const std::string& directoryName);

    ConcreteCache(std::filesystem::path path, bool allowOverwrite);

    const std::filesystem::path& path() const { return path_; }
    bool allowOverwrite() const { return allowOverwrite_; }
    const platform::SerialQueue& queue() const { return *queue_; }

    void store(const std::string& key, std::string bytes) override;
    void fetch(const std::string& key, FetchCompletion completion) override;
    std::optional<std::filesystem::path> fileURL(const std::string& key) const override;
    void run(std::function<void()> block) override;
    void storeIfAbsent(const std::string& key, std::string bytes) override;
    void update(const std::string& key, Change change) override;
    std::optional<std::string> read(const std::string& key) const override;
    // The directory is opened once for all of them.
    std::vector<std::optional<std::string>> readEntries(const std::vector<std::string>& keys) const override;

private:
    std::filesystem::path path_;
    bool allowOverwrite_;
    // Shared with the directory's other cache objects and held by work still queued on it.
    std::shared_ptr<const platform::SerialQueue> queue_;
};

} // namespace belvakit
