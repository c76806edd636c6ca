#include "platform/text_search.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <random>

using platform::rangeOfStringCaseInsensitive;
using platform::TextRange;

TEST(TextSearch, FindsTheFirstOccurrenceIgnoringCaseInUtf8Bytes) {
    EXPECT_EQ(rangeOfStringCaseInsensitive("Reset, then RESET again", "reset"), (TextRange{0, 5}));
    EXPECT_EQ(rangeOfStringCaseInsensitive("grüne ÄPFEL", "äpfel"), (TextRange{7, 6}));
    EXPECT_EQ(rangeOfStringCaseInsensitive("ΣΟΦΙΑ και σοφία", "σοφ"), (TextRange{0, 6}));
    EXPECT_EQ(rangeOfStringCaseInsensitive("שינוי שפת", "שפת"), (TextRange{11, 6}));
    EXPECT_FALSE(rangeOfStringCaseInsensitive("anything", ""));
    EXPECT_FALSE(rangeOfStringCaseInsensitive("", "a"));
    EXPECT_FALSE(rangeOfStringCaseInsensitive("short", "shorter"));
    EXPECT_FALSE(rangeOfStringCaseInsensitive("bad \xff byte", "byte"));
}

TEST(TextSearch, AgreesWithAPlainLowercaseSearchOnRandomAscii) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
        std::mt19937 random(seed);
        std::uniform_int_distribution<int> letter(0, 5), length(0, 12);
        auto make = [&](int n) {
            std::string text;
            for (int i = 0; i < n; ++i) text.push_back("aAbBc "[letter(random)]);
            return text;
        };
        for (int round = 0; round < 3000; ++round) {
            const auto text = make(length(random) + 4), term = make(length(random) % 4 + 1);
            auto lower = [](std::string s) {
                std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
                return s;
            };
            const auto at = lower(text).find(lower(term));
            const auto found = rangeOfStringCaseInsensitive(text, term);
            ASSERT_EQ(found.has_value(), at != std::string::npos) << "seed " << seed << ": " << text << " / " << term;
            if (found) {
                ASSERT_EQ(*found, (TextRange{at, term.size()})) << "seed " << seed << ": " << text << " / " << term;
            }
        }
    }
}
