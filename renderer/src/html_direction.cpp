#include "renderer/html_direction.hpp"

#include <QChar>
#include <QList>
#include <QString>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <limits>
#include <optional>
#include <vector>

namespace renderer {

namespace {

enum class Direction { none, ltr, rtl };

// Each resolution may read to the page's end. The tags all resolutions may read together, so a
// page of nothing but such elements stays quick; what is left when they run out stays as written.
constexpr long tagsToRead = 20000;

struct Tag {
    std::size_t end = 0;  // one past its '>'
    std::string name;     // lower case; empty for comments and declarations
    bool closing = false;
    bool selfClosing = false;
    bool hasDir = false;
    std::size_t dirBegin = 0, dirEnd = 0;  // the dir value's bytes
};

std::string lowered(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

bool isVoid(std::string_view name) {
    static constexpr std::array<std::string_view, 14> voids{"area", "base",  "br",   "col",   "embed", "hr",   "img",
                                                            "input", "link", "meta", "param", "source", "track", "wbr"};
    return std::find(voids.begin(), voids.end(), name) != voids.end();
}

// Their text is no reader's: it never decides a direction.
bool isSkipped(std::string_view name) { return name == "script" || name == "style" || name == "textarea"; }

// The tag at `at` (a '<'), or nothing when the '<' is text.
std::optional<Tag> tagAt(std::string_view html, std::size_t at) {
    Tag tag;
    std::size_t i = at + 1;
    if (i >= html.size()) return std::nullopt;
    if (html[i] == '!' || html[i] == '?') {
        const bool comment = html.substr(i, 3) == "!--";
        const std::size_t close = comment ? html.find("-->", i + 3) : html.find('>', i);
        tag.end = close == std::string_view::npos ? html.size() : close + (comment ? 3 : 1);
        return tag;
    }
    if (html[i] == '/') {
        tag.closing = true;
        ++i;
    }
    if (i >= html.size() || !std::isalpha(static_cast<unsigned char>(html[i]))) return std::nullopt;
    const std::size_t nameStart = i;
    while (i < html.size() && !isSpace(html[i]) && html[i] != '>' && html[i] != '/') ++i;
    tag.name = lowered(html.substr(nameStart, i - nameStart));
    while (i < html.size() && html[i] != '>') {
        if (isSpace(html[i]) || html[i] == '/') {
            tag.selfClosing = html[i] == '/';
            ++i;
            continue;
        }
        tag.selfClosing = false;
        const std::size_t attributeStart = i;
        while (i < html.size() && !isSpace(html[i]) && html[i] != '>' && html[i] != '/' && html[i] != '=') ++i;
        const std::string attribute = lowered(html.substr(attributeStart, i - attributeStart));
        if (attributeStart == i) ++i;  // a stray '=' or quote
        while (i < html.size() && isSpace(html[i])) ++i;
        if (i >= html.size() || html[i] != '=') continue;
        ++i;
        while (i < html.size() && isSpace(html[i])) ++i;
        std::size_t valueStart = i, valueEnd = i;
        if (i < html.size() && (html[i] == '"' || html[i] == '\'')) {
            const char quote = html[i];
            valueStart = i + 1;
            valueEnd = html.find(quote, valueStart);
            if (valueEnd == std::string_view::npos) valueEnd = html.size();
            i = std::min(html.size(), valueEnd + 1);
        } else {
            while (i < html.size() && !isSpace(html[i]) && html[i] != '>') ++i;
            valueEnd = i;
        }
        if (attribute == "dir" && !tag.hasDir) {
            tag.hasDir = true;
            tag.dirBegin = valueStart;
            tag.dirEnd = valueEnd;
        }
    }
    // A tag the page ends in before closing it is dropped, as browsers drop it.
    if (i >= html.size()) return Tag{.end = html.size()};
    tag.end = i + 1;
    return tag;
}

// Where the element whose start tag ends at `from` ends: after its end tag, or the page's end.
std::size_t elementEnd(std::string_view html, std::size_t from, const std::string& name, long& budget) {
    if (isSkipped(name)) {
        // Raw text: only its own end tag closes it.
        for (std::size_t at = html.find("</", from); at != std::string_view::npos; at = html.find("</", at + 2))
            if (lowered(html.substr(at + 2, name.size())) == name) {
                const std::size_t close = html.find('>', at);
                return close == std::string_view::npos ? html.size() : close + 1;
            }
        return html.size();
    }
    int depth = 1;
    for (std::size_t at = html.find('<', from); at != std::string_view::npos; at = html.find('<', at + 1)) {
        if (--budget < 0) return html.size();
        const auto tag = tagAt(html, at);
        if (!tag) continue;
        if (tag->name == name) {
            if (tag->closing && --depth == 0) return tag->end;
            if (!tag->closing && !tag->selfClosing) ++depth;
        }
        at = tag->end - 1;
    }
    return html.size();
}

// The first strong direction among the text's characters, numeric character references decoded.
Direction strongDirection(std::string_view text) {
    const auto of = [](char32_t code) {
        switch (QChar::direction(code)) {
        case QChar::DirL: return Direction::ltr;
        case QChar::DirR:
        case QChar::DirAL: return Direction::rtl;
        default: return Direction::none;
        }
    };
    std::size_t i = 0;
    while (i < text.size()) {
        const std::size_t amp = text.find('&', i);
        const std::string_view plain = text.substr(i, amp == std::string_view::npos ? std::string_view::npos : amp - i);
        for (const char32_t code : QString::fromUtf8(plain.data(), static_cast<qsizetype>(plain.size())).toUcs4())
            if (const Direction found = of(code); found != Direction::none) return found;
        if (amp == std::string_view::npos) break;
        const std::size_t semicolon = text.find(';', amp);
        if (semicolon == std::string_view::npos || semicolon - amp > 12) {
            i = amp + 1;
            continue;
        }
        // Named references are mostly punctuation and spaces: they decide nothing.
        if (text[amp + 1] == '#') {
            const bool hex = amp + 2 < semicolon && (text[amp + 2] == 'x' || text[amp + 2] == 'X');
            const std::string digits(text.substr(amp + (hex ? 3 : 2), semicolon - amp - (hex ? 3 : 2)));
            char* stop = nullptr;
            const unsigned long code = std::strtoul(digits.c_str(), &stop, hex ? 16 : 10);
            if (!digits.empty() && stop && *stop == '\0' && code <= 0x10FFFF)
                if (const Direction found = of(static_cast<char32_t>(code)); found != Direction::none) return found;
        }
        i = semicolon + 1;
    }
    return Direction::none;
}

// The direction of the element whose start tag ends at `from`.
Direction autoDirection(std::string_view html, std::size_t from, const std::string& name, long& budget) {
    int depth = 1;
    std::size_t at = from;
    while (at < html.size()) {
        const std::size_t open = html.find('<', at);
        if (const Direction found = strongDirection(html.substr(at, open == std::string_view::npos ? std::string_view::npos : open - at));
            found != Direction::none)
            return found;
        if (open == std::string_view::npos || --budget < 0) break;
        const auto tag = tagAt(html, open);
        if (!tag) {
            at = open + 1;
            continue;
        }
        at = tag->end;
        if (tag->name.empty()) continue;
        if (tag->closing) {
            if (tag->name == name && --depth == 0) break;
            continue;
        }
        if (isVoid(tag->name) || tag->selfClosing) continue;
        if (isSkipped(tag->name) || tag->hasDir)
            at = elementEnd(html, at, tag->name, budget);
        else if (tag->name == name)
            ++depth;
    }
    return Direction::none;
}

} // namespace

std::string resolveAutoDirection(std::string_view html) {
    struct Replacement {
        std::size_t begin, end;
        std::string_view value;
    };
    std::vector<Replacement> replacements;
    long budget = tagsToRead;
    for (std::size_t at = html.find('<'); at != std::string_view::npos; at = html.find('<', at + 1)) {
        const auto tag = tagAt(html, at);
        if (!tag) continue;
        if (!tag->closing && !tag->name.empty() && tag->hasDir && budget > 0 &&
            lowered(html.substr(tag->dirBegin, tag->dirEnd - tag->dirBegin)) == "auto") {
            // Text with no letter of either kind reads left to right.
            const bool rtl = !isVoid(tag->name) && autoDirection(html, tag->end, tag->name, budget) == Direction::rtl;
            if (budget >= 0) replacements.push_back({tag->dirBegin, tag->dirEnd, rtl ? "rtl" : "ltr"});
        }
        if (isSkipped(tag->name) && !tag->closing) {
            long unlimited = std::numeric_limits<long>::max();
            at = elementEnd(html, tag->end, tag->name, unlimited) - 1;
            continue;
        }
        at = tag->end - 1;
    }
    std::string resolved;
    resolved.reserve(html.size());
    std::size_t copied = 0;
    for (const auto& [begin, end, value] : replacements) {
        resolved.append(html.substr(copied, begin - copied));
        resolved.append(value);
        copied = end;
    }
    resolved.append(html.substr(copied));
    return resolved;
}

} // namespace renderer
