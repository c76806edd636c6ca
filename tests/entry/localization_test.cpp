#include "belvakit/entry/localized_strings.hpp"
#include "corvane/localization.hpp"

#include <gtest/gtest.h>

#include <set>

using namespace belvakit;

TEST(LocalizedStrings, EveryKeyHasAShippedTextAndKeysAreUnique) {
    std::set<std::string_view> seen;
    localized(LocalizedKey::requestsRequestListCellSeperator);  // the shipped table comes with the first lookup
    for (auto key : allLocalizedKeys()) {
        EXPECT_TRUE(key.starts_with("ios.")) << key;
        EXPECT_TRUE(seen.insert(key).second) << "duplicate " << key;
        // Read from the tables, not through `localized`, which would fix each text for the process.
        const std::string text = corvane::CRVLocalization::localizedStringWithKey(std::string(key));
        EXPECT_FALSE(text.empty()) << key;
        EXPECT_NE(text, key) << "no shipped text for " << key;
    }
}

TEST(LocalizedStrings, ATextIsResolvedOnceAndKeptWhileLaterTablesOnlyReachUnusedKeys) {
    const std::string before = localized(LocalizedKey::requestsRequestListTitle);
    corvane::CRVLocalization::registerTable({{std::string(LocalizedKey::requestsRequestListTitle), "Mes demandes"},
                                             {std::string(LocalizedKey::requestsRequestListError), "Erreur"}});
    EXPECT_EQ(localized(LocalizedKey::requestsRequestListTitle), before);
    EXPECT_EQ(localized(LocalizedKey::requestsRequestListError), "Erreur");
    EXPECT_EQ(corvane::CRVLocalization::localizedStringWithKey("ios.unknown.key"), "ios.unknown.key");
}
