#pragma once

#include "dastrel/help_center.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sandbox {

struct HelpCenterContentLoad;

// The Help Center a help desk serves: categories, sections, articles with their authors, labels and
// attachments, and the account's Help Center settings. Read from a JSON document (the sample set
// ships as sandbox/resources/help_center.json); article bodies may write the account's URL as
// "{{account}}", so that links between articles point at whatever account serves them.
struct HelpCenterContent {
    struct Category {
        std::int64_t id = 0;
        std::string name;
        std::string description;
        std::int64_t position = 0;
    };
    struct Section {
        std::int64_t id = 0;
        std::int64_t category_id = 0;
        std::string name;
        std::string description;
        std::int64_t position = 0;
    };
    struct Attachment {
        dastrel::CRVHelpCenterAttachment record;
        std::string data;  // the bytes served at the record's content URL
    };
    struct Article {
        dastrel::CRVHelpCenterArticle record;
        std::int64_t position = 0;
        std::vector<Attachment> attachments;
    };

    dastrel::CRVHelpCenterSettings settings;
    // In order of position, then id.
    std::vector<Category> categories;
    std::vector<Section> sections;
    std::vector<Article> articles;

    // Every field is checked; the first fault found rejects the whole document.
    static HelpCenterContentLoad parse(std::string_view json, const std::string& accountUrl);
    // The sample content built into the library.
    static HelpCenterContentLoad bundled(const std::string& accountUrl);
};

struct HelpCenterContentLoad {
    std::optional<HelpCenterContent> content;
    // Says what is wrong and where ("articles[3]: \"title\" is missing or not a string").
    std::string error;
};

} // namespace sandbox
