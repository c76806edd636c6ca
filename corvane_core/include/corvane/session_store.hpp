#pragma once

#include <boost/json/value.hpp>

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace corvane {

// Small values kept for the session, by key. Values are JSON so that they survive a restart
// when the store has a file. Thread-safe.
class SessionStore {
public:
    // In memory only.
    SessionStore() = default;
    // Loads `file` if it holds a JSON object, and writes every change back to it atomically.
    explicit SessionStore(std::filesystem::path file);

    std::optional<boost::json::value> value(const std::string& key) const;
    void setValue(const std::string& key, boost::json::value value);
    void removeValue(const std::string& key);

private:
    void persistLocked() const;

    mutable std::mutex mutex_;
    std::map<std::string, boost::json::value> values_;
    std::optional<std::filesystem::path> file_;
};

} // namespace corvane
