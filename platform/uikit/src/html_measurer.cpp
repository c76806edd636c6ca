#include "uikit/html_measurer.hpp"

#include "installed.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <mutex>
#include <utility>

namespace uikit {

namespace {

std::string lower(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

bool isBlock(const std::string& tag) {
    static constexpr std::array<std::string_view, 22> blocks{
        "p",  "div", "br", "h1",  "h2",    "h3", "h4", "h5",  "h6",      "li",     "ul",
        "ol", "tr",  "table", "blockquote", "pre", "hr", "section", "article", "header", "footer", "figure"};
    return std::find(blocks.begin(), blocks.end(), tag) != blocks.end();
}

void appendUtf8(std::string& out, unsigned long code) {
    if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) code = 0xFFFD;
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// Decodes the entity at `text` (which starts with '&'); returns the characters used, 0 if none.
std::size_t decodeEntity(std::string_view text, std::string& out) {
    const auto end = text.find(';');
    if (end == std::string_view::npos || end > 10) return 0;
    const std::string name = lower(text.substr(1, end - 1));
    static const std::array<std::pair<std::string_view, std::string_view>, 6> named{
        {{"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}, {"nbsp", " "}}};
    for (const auto& [key, value] : named) {
        if (name == key) {
            out += value;
            return end + 1;
        }
    }
    if (name.size() > 1 && name[0] == '#') {
        const bool hex = name[1] == 'x';
        const std::string digits = name.substr(hex ? 2 : 1);
        if (digits.empty() || digits.size() > 7) return 0;
        unsigned long code = 0;
        for (const char c : digits) {
            if (hex ? !std::isxdigit(static_cast<unsigned char>(c)) : !std::isdigit(static_cast<unsigned char>(c))) return 0;
            code = code * (hex ? 16 : 10) + static_cast<unsigned long>(std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : c - 'a' + 10);
        }
        appendUtf8(out, code);
        return end + 1;
    }
    return 0;
}

std::size_t characters(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

} // namespace

std::string visibleTextOfHTML(std::string_view html) {
    std::string raw;
    std::size_t i = 0;
    while (i < html.size()) {
        const char c = html[i];
        if (c == '<') {
            if (html.substr(i, 4) == "<!--") {
                const auto close = html.find("-->", i + 4);
                i = close == std::string_view::npos ? html.size() : close + 3;
                continue;
            }
            const auto close = html.find('>', i);
            if (close == std::string_view::npos) {
                raw += c;  // a lone '<' is text
                ++i;
                continue;
            }
            std::string_view inside = html.substr(i + 1, close - i - 1);
            const bool closing = !inside.empty() && inside.front() == '/';
            if (closing) inside.remove_prefix(1);
            std::size_t nameEnd = 0;
            while (nameEnd < inside.size() && std::isalnum(static_cast<unsigned char>(inside[nameEnd]))) ++nameEnd;
            const std::string tag = lower(inside.substr(0, nameEnd));
            i = close + 1;
            if (!closing && (tag == "head" || tag == "script" || tag == "style" || tag == "title")) {
                const auto end = lower(html.substr(i)).find("</" + tag);
                i = end == std::string::npos ? html.size() : i + end;
                continue;
            }
            if (isBlock(tag)) raw += '\n';
            continue;
        }
        if (c == '&') {
            if (const auto used = decodeEntity(html.substr(i), raw)) {
                i += used;
                continue;
            }
        }
        raw += std::isspace(static_cast<unsigned char>(c)) ? ' ' : c;
        ++i;
    }
    // One line per block, spaces collapsed, empty lines dropped.
    std::string out;
    std::string line;
    const auto flush = [&] {
        while (!line.empty() && line.back() == ' ') line.pop_back();
        if (line.empty()) return;
        if (!out.empty()) out += '\n';
        out += line;
        line.clear();
    };
    for (const char c : raw) {
        if (c == '\n') {
            flush();
        } else if (c == ' ') {
            if (!line.empty() && line.back() != ' ') line += ' ';
        } else {
            line += c;
        }
    }
    flush();
    return out;
}

Size TextEstimateHTMLMeasurer::measure(const std::string& html, double width) const {
    if (width <= 0) return {0, 0};
    const std::string text = visibleTextOfHTML(html);
    if (text.empty()) return {width, 0};
    const auto perLine = static_cast<std::size_t>(std::max(1.0, std::floor((width - 2 * margin) / glyphWidth)));
    std::size_t lines = 0;
    std::size_t start = 0;
    while (start <= text.size()) {
        auto end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        // Greedy wrapping at spaces; a word longer than a line breaks where the line ends.
        std::size_t used = 0;
        std::size_t wrapped = 1;
        std::string_view rest(text.data() + start, end - start);
        while (!rest.empty()) {
            const auto space = rest.find(' ');
            const std::size_t word = characters(rest.substr(0, space));
            const std::size_t needed = used == 0 ? word : used + 1 + word;
            if (needed <= perLine) {
                used = needed;
            } else if (word <= perLine) {
                ++wrapped;
                used = word;
            } else {
                const std::size_t total = (used == 0 ? 0 : used + 1) + word;
                wrapped += (total - 1) / perLine;
                used = (total - 1) % perLine + 1;
            }
            if (space == std::string_view::npos) break;
            rest.remove_prefix(space + 1);
        }
        lines += wrapped;
        start = end + 1;
    }
    return {width, static_cast<double>(lines) * lineHeight + 2 * margin};
}

namespace {
Installed<HTMLMeasurer, TextEstimateHTMLMeasurer>& installed() {
    static Installed<HTMLMeasurer, TextEstimateHTMLMeasurer> measurer;
    return measurer;
}
} // namespace

const HTMLMeasurer& htmlMeasurer() { return installed().get(); }

std::shared_ptr<const HTMLMeasurer> setHTMLMeasurer(std::shared_ptr<const HTMLMeasurer> measurer) {
    return installed().set(std::move(measurer));
}

} // namespace uikit
