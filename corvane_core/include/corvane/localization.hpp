#pragma once

#include <map>
#include <string>

namespace corvane {

// Localised texts by key, from string tables that libraries register.
class CRVLocalization {
public:
    CRVLocalization() = delete;
    // Adds a table; keys already known keep their text.
    static void registerTable(const std::map<std::string, std::string>& table);
    // The text for the key, or the key itself when no table has it.
    static std::string localizedStringWithKey(const std::string& key);
};

} // namespace corvane
