#pragma once

#include <map>
#include <string>

namespace corvane {

// Localised texts by key, from string tables that libraries register.
class CRVLocalization {
public:
    CRVLocalization() = delete;
    // Adds a host's table; its texts replace earlier ones for the same keys.
    static void registerTable(const std::map<std::string, std::string>& table);
    // Adds a library's own texts, used only where no table has the key yet.
    static void registerDefaults(const std::map<std::string, std::string>& table);
    // The text for the key, or the key itself when no table has it.
    static std::string localizedStringWithKey(const std::string& key);
};

} // namespace corvane
