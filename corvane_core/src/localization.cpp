#include "corvane/localization.hpp"

#include <mutex>

namespace corvane {

namespace {
std::mutex tableMutex;
std::map<std::string, std::string>& texts() {
    static std::map<std::string, std::string> table;
    return table;
}
} // namespace

void CRVLocalization::registerTable(const std::map<std::string, std::string>& table) {
    std::lock_guard lock(tableMutex);
    for (const auto& [key, text] : table) texts()[key] = text;
}

void CRVLocalization::registerDefaults(const std::map<std::string, std::string>& table) {
    std::lock_guard lock(tableMutex);
    texts().insert(table.begin(), table.end());
}

std::string CRVLocalization::localizedStringWithKey(const std::string& key) {
    std::lock_guard lock(tableMutex);
    auto found = texts().find(key);
    return found == texts().end() ? key : found->second;
}

} // namespace corvane
