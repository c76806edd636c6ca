#include "sandbox/help_center_content.hpp"

#include "platform/base64.hpp"
#include "platform/json.hpp"

#include <boost/json.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <map>
#include <set>

extern const char* const sandboxHelpCenterJson;

namespace sandbox {

namespace {

// A fault with where it lies; the first one ends the parse.
struct Fault {
    std::string message;
};

class Reader {
public:
    Reader(const boost::json::object& object, std::string where) : object_(object), where_(std::move(where)) {}

    const std::string& where() const { return where_; }

    [[noreturn]] void fail(const std::string& what) const { throw Fault{where_ + ": " + what}; }

    std::int64_t integer(std::string_view key) const {
        const auto* value = object_.if_contains(key);
        if (value && value->is_int64()) return value->get_int64();
        if (value && value->is_uint64() && value->get_uint64() <= static_cast<std::uint64_t>(INT64_MAX))
            return static_cast<std::int64_t>(value->get_uint64());
        fail("\"" + std::string(key) + "\" is missing or not an integer");
    }
    std::int64_t positiveId(std::string_view key) const {
        const auto id = integer(key);
        if (id <= 0) fail("\"" + std::string(key) + "\" must be a positive integer");
        return id;
    }
    std::string string(std::string_view key) const {
        const auto* value = object_.if_contains(key);
        if (!value || !value->is_string()) fail("\"" + std::string(key) + "\" is missing or not a string");
        return std::string(value->get_string());
    }
    std::string nonEmptyString(std::string_view key) const {
        auto text = string(key);
        if (text.empty()) fail("\"" + std::string(key) + "\" is empty");
        return text;
    }
    std::optional<std::string> optionalString(std::string_view key) const {
        const auto* value = object_.if_contains(key);
        if (!value || value->is_null()) return std::nullopt;
        if (!value->is_string()) fail("\"" + std::string(key) + "\" is not a string");
        return std::string(value->get_string());
    }
    std::int64_t optionalInteger(std::string_view key, std::int64_t fallback) const {
        return object_.contains(key) ? integer(key) : fallback;
    }
    bool boolean(std::string_view key, bool fallback) const {
        const auto* value = object_.if_contains(key);
        if (!value) return fallback;
        if (!value->is_bool()) fail("\"" + std::string(key) + "\" is not true or false");
        return value->get_bool();
    }
    const boost::json::array& array(std::string_view key, bool required = true) const {
        static const boost::json::array empty;
        const auto* value = object_.if_contains(key);
        if (!value && !required) return empty;
        if (!value || !value->is_array()) fail("\"" + std::string(key) + "\" is missing or not a list");
        return value->get_array();
    }
    std::vector<std::string> strings(std::string_view key) const {
        std::vector<std::string> out;
        for (const auto& item : array(key, false)) {
            if (!item.is_string()) fail("\"" + std::string(key) + "\" holds something that is not a string");
            out.emplace_back(item.get_string());
        }
        return out;
    }
    // "2023-04-02T10:15:00Z", as seconds since 1970.
    double date(std::string_view key) const {
        const auto text = string(key);
        auto parsed = parseDate(text);
        if (!parsed) fail("\"" + std::string(key) + "\" is not a date like 2023-04-02T10:15:00Z: \"" + text + "\"");
        return *parsed;
    }

    static std::optional<double> parseDate(const std::string& text) {
        if (text.size() != 20 || text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' ||
            text[16] != ':' || text[19] != 'Z')
            return std::nullopt;
        auto number = [&](std::size_t at, std::size_t length) -> std::optional<int> {
            int value = 0;
            const auto* begin = text.data() + at;
            auto [end, error] = std::from_chars(begin, begin + length, value);
            if (error != std::errc{} || end != begin + length) return std::nullopt;
            return value;
        };
        const auto year = number(0, 4), month = number(5, 2), day = number(8, 2);
        const auto hour = number(11, 2), minute = number(14, 2), second = number(17, 2);
        if (!year || !month || !day || !hour || !minute || !second) return std::nullopt;
        static constexpr int monthDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        if (*month < 1 || *month > 12 || *day < 1 || *day > monthDays[*month - 1] || *hour > 23 || *minute > 59 ||
            *second > 59)
            return std::nullopt;
        const bool leap = (*year % 4 == 0 && *year % 100 != 0) || *year % 400 == 0;
        if (*month == 2 && *day == 29 && !leap) return std::nullopt;
        // Days from the civil date (proleptic Gregorian).
        const int y = *year - (*month <= 2 ? 1 : 0);
        const int era = (y >= 0 ? y : y - 399) / 400;
        const int yearOfEra = y - era * 400;
        const int dayOfYear = (153 * (*month + (*month > 2 ? -3 : 9)) + 2) / 5 + *day - 1;
        const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
        const long long days = static_cast<long long>(era) * 146097 + dayOfEra - 719468;
        return static_cast<double>(days * 86400 + *hour * 3600 + *minute * 60 + *second);
    }

private:
    const boost::json::object& object_;
    std::string where_;
};

const boost::json::object& objectAt(const boost::json::value& value, const std::string& where) {
    if (!value.is_object()) throw Fault{where + ": not an object"};
    return value.get_object();
}

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

std::string slug(const std::string& title) {
    std::string out;
    for (unsigned char c : title) {
        if (std::isalnum(c))
            out.push_back(static_cast<char>(std::tolower(c)));
        else if (!out.empty() && out.back() != '-')
            out.push_back('-');
    }
    while (!out.empty() && out.back() == '-') out.pop_back();
    return out;
}

template <class Item>
void sortByPosition(std::vector<Item>& items) {
    std::stable_sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
        return a.position != b.position ? a.position < b.position : a.id < b.id;
    });
}

HelpCenterContent read(const boost::json::value& document, const std::string& accountUrl) {
    const auto& root = objectAt(document, "help center content");
    const Reader top(root, "help center content");
    HelpCenterContent content;

    const std::string locale = top.nonEmptyString("locale");
    if (const auto* settings = root.if_contains("settings")) {
        const Reader reader(objectAt(*settings, "settings"), "settings");
        content.settings.enabled = reader.boolean("enabled", true);
        content.settings.locale = reader.optionalString("locale");
        content.settings.helpCenterArticleVotingEnabled = reader.boolean("article_voting_enabled", true);
    } else {
        content.settings.locale = locale;
    }

    std::map<std::int64_t, std::string> authors;
    const auto& users = top.array("authors");
    for (std::size_t index = 0; index < users.size(); ++index) {
        const auto where = "authors[" + std::to_string(index) + "]";
        const Reader reader(objectAt(users[index], where), where);
        const auto id = reader.positiveId("id");
        if (!authors.emplace(id, reader.nonEmptyString("name")).second)
            reader.fail("the id " + std::to_string(id) + " is used twice");
    }

    std::set<std::int64_t> categoryIds;
    const auto& categories = top.array("categories");
    for (std::size_t index = 0; index < categories.size(); ++index) {
        const auto where = "categories[" + std::to_string(index) + "]";
        const Reader reader(objectAt(categories[index], where), where);
        HelpCenterContent::Category category;
        category.id = reader.positiveId("id");
        category.name = reader.nonEmptyString("name");
        category.description = reader.optionalString("description").value_or("");
        category.position = reader.optionalInteger("position", static_cast<std::int64_t>(index));
        if (!categoryIds.insert(category.id).second)
            reader.fail("the id " + std::to_string(category.id) + " is used twice");
        content.categories.push_back(std::move(category));
    }

    std::set<std::int64_t> sectionIds;
    const auto& sections = top.array("sections");
    for (std::size_t index = 0; index < sections.size(); ++index) {
        const auto where = "sections[" + std::to_string(index) + "]";
        const Reader reader(objectAt(sections[index], where), where);
        HelpCenterContent::Section section;
        section.id = reader.positiveId("id");
        section.category_id = reader.positiveId("category_id");
        section.name = reader.nonEmptyString("name");
        section.description = reader.optionalString("description").value_or("");
        section.position = reader.optionalInteger("position", static_cast<std::int64_t>(index));
        if (!categoryIds.count(section.category_id))
            reader.fail("\"category_id\" " + std::to_string(section.category_id) + " names no category");
        if (!sectionIds.insert(section.id).second)
            reader.fail("the id " + std::to_string(section.id) + " is used twice");
        content.sections.push_back(std::move(section));
    }

    std::set<std::int64_t> articleIds, attachmentIds;
    const auto& articles = top.array("articles");
    for (std::size_t index = 0; index < articles.size(); ++index) {
        const auto where = "articles[" + std::to_string(index) + "]";
        const Reader reader(objectAt(articles[index], where), where);
        HelpCenterContent::Article article;
        auto& record = article.record;
        record.identifier = reader.positiveId("id");
        record.section_id = reader.positiveId("section_id");
        record.title = reader.nonEmptyString("title");
        record.body = replaceAll(reader.string("body"), "{{account}}", accountUrl);
        record.author_id = reader.positiveId("author_id");
        record.created_at = reader.date("created_at");
        record.updated_at =
            articles[index].get_object().contains("updated_at") ? reader.date("updated_at") : record.created_at;
        record.locale = reader.optionalString("locale").value_or(locale);
        record.label_names = reader.strings("label_names");
        record.vote_sum = reader.optionalInteger("vote_sum", 0);
        record.vote_count = reader.optionalInteger("vote_count", 0);
        record.html_url = accountUrl + "/hc/" + record.locale + "/articles/" + std::to_string(record.identifier) + "-" +
                          slug(record.title);
        article.position = reader.optionalInteger("position", static_cast<std::int64_t>(index));
        if (!sectionIds.count(record.section_id))
            reader.fail("\"section_id\" " + std::to_string(record.section_id) + " names no section");
        const auto author = authors.find(record.author_id);
        if (author == authors.end()) reader.fail("\"author_id\" " + std::to_string(record.author_id) + " names no author");
        record.author_name = author->second;
        if (!articleIds.insert(record.identifier).second)
            reader.fail("the id " + std::to_string(record.identifier) + " is used twice");

        const auto& files = reader.array("attachments", false);
        for (std::size_t fileIndex = 0; fileIndex < files.size(); ++fileIndex) {
            const auto fileWhere = where + ".attachments[" + std::to_string(fileIndex) + "]";
            const Reader file(objectAt(files[fileIndex], fileWhere), fileWhere);
            HelpCenterContent::Attachment attachment;
            attachment.record.identifier = file.positiveId("id");
            attachment.record.article_id = record.identifier;
            attachment.record.file_name = file.nonEmptyString("file_name");
            attachment.record.content_type = file.nonEmptyString("content_type");
            const auto text = file.optionalString("text");
            const auto encoded = file.optionalString("base64");
            if (text.has_value() == encoded.has_value()) file.fail("give the bytes as exactly one of \"text\" and \"base64\"");
            if (text) attachment.data = *text;
            if (encoded) {
                auto decoded = platform::base64Decode(*encoded);
                if (!decoded) file.fail("\"base64\" is not base64");
                attachment.data = std::move(*decoded);
            }
            attachment.record.size = static_cast<std::int64_t>(attachment.data.size());
            attachment.record.content_url = accountUrl + "/hc/article_attachments/" +
                                            std::to_string(attachment.record.identifier) + "/" + attachment.record.file_name;
            if (!attachmentIds.insert(attachment.record.identifier).second)
                file.fail("the id " + std::to_string(attachment.record.identifier) + " is used twice");
            article.attachments.push_back(std::move(attachment));
        }
        content.articles.push_back(std::move(article));
    }

    sortByPosition(content.categories);
    sortByPosition(content.sections);
    std::stable_sort(content.articles.begin(), content.articles.end(), [](const auto& a, const auto& b) {
        return a.position != b.position ? a.position < b.position : a.record.identifier < b.record.identifier;
    });
    return content;
}

} // namespace

HelpCenterContentLoad HelpCenterContent::parse(std::string_view json, const std::string& accountUrl) {
    const auto document = platform::parseJson(json);
    if (!document) return {std::nullopt, "help center content: not a complete JSON text"};
    try {
        return {read(*document, accountUrl), {}};
    } catch (const Fault& fault) {
        return {std::nullopt, fault.message};
    }
}

HelpCenterContentLoad HelpCenterContent::bundled(const std::string& accountUrl) {
    return parse(sandboxHelpCenterJson, accountUrl);
}

} // namespace sandbox
