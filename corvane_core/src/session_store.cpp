#include "corvane/session_store.hpp"

#include "corvane/core_logger.hpp"
#include "platform/files.hpp"

#include <boost/json.hpp>

namespace corvane {

SessionStore::SessionStore(std::filesystem::path file) : file_(std::move(file)) {
    const auto bytes = platform::readFile(*file_);
    if (!bytes) return;
    boost::system::error_code error;
    const boost::json::value parsed = boost::json::parse(*bytes, error);
    if (error || !parsed.is_object()) {
        CoreLogger::warn("Session store file is not a JSON object; starting empty.");
        return;
    }
    for (const auto& [key, value] : parsed.as_object()) values_.emplace(std::string(key), value);
}

std::optional<boost::json::value> SessionStore::value(const std::string& key) const {
    std::lock_guard lock(mutex_);
    auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
}

void SessionStore::setValue(const std::string& key, boost::json::value value) {
    std::lock_guard lock(mutex_);
    values_[key] = std::move(value);
    persistLocked();
}

void SessionStore::removeValue(const std::string& key) {
    std::lock_guard lock(mutex_);
    if (values_.erase(key) > 0) persistLocked();
}

void SessionStore::persistLocked() const {
    if (!file_) return;
    boost::json::object object;
    for (const auto& [key, value] : values_) object[key] = value;
    if (!platform::writeFileAtomically(*file_, boost::json::serialize(object)))
        CoreLogger::error("Could not write the session store to " + file_->string());
}

} // namespace corvane
