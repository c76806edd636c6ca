#include "belvakit/richtext/elements.hpp"

#include "belvakit/richtext/fonts.hpp"
#include "belvakit/richtext/text_style.hpp"
#include "platform/named_colors.hpp"

namespace belvakit {
namespace {

using platform::AttributedString;
using platform::Font;
using platform::TextAttributes;

// Text needs a font to be drawn; it takes the system font unless the style already names one.
TextAttributes withFont(const TextAttributes& style) {
    if (style.find(platform::fontAttributeName)) return style;
    TextAttributes filled = style;
    filled.set(platform::fontAttributeName, richTextSystemFont());
    return filled;
}

// How bold and italic combine with the font already in force. Deliberately one-sided: italic in
// bold gives bold italic, but bold in italic (or in a quote) stays italic, and code stays code.
Font combinedFont(const Font* current, const Font& wanted) {
    if (!current) return wanted;
    if (*current == codeFont() || *current == wanted) return *current;
    if (*current == boldFont() && wanted == italicFont()) return boldItalicFont();
    if (*current == boldItalicFont() && wanted == boldFont()) return boldItalicFont();
    return *current;
}

TextAttributes applyingFont(const TextAttributes& style, const Font& wanted) {
    const auto* current = style.get<Font>(platform::fontAttributeName);
    const Font font = combinedFont(current, wanted);
    if (current && *current == font) return style;
    TextAttributes changed = style;
    changed.set(platform::fontAttributeName, font);
    return changed;
}

TextAttributes replacingFontAndColor(const TextAttributes& style, const Font& font, const platform::Color& color) {
    TextAttributes changed = style;
    changed.set(platform::fontAttributeName, font);
    changed.set(platform::foregroundColorAttributeName, color);
    return changed;
}

const std::string* attribute(const ElementAttributes& attributes, const std::string& name) {
    const auto found = attributes.find(name);
    return found == attributes.end() ? nullptr : &found->second;
}

} // namespace

std::optional<TextAttributes> Root::renderOwn(const TextAttributes&, AttributedString&) const {
    return defaultTextAttributes();
}

std::optional<TextAttributes> Text::renderOwn(const TextAttributes& received, AttributedString& out) const {
    if (!content_.empty()) out.append(content_, withFont(received));
    return received;
}

const std::string& Break::content() const {
    static const std::string newline = "\n";
    return newline;
}

std::optional<TextAttributes> Break::renderOwn(const TextAttributes& received, AttributedString& out) const {
    out.append(content(), received);
    return std::nullopt;
}

std::optional<TextAttributes> Link::renderOwn(const TextAttributes& received, AttributedString&) const {
    const auto* href = attribute(attributes(), "href");
    const auto url = href ? platform::Url::fromString(*href) : std::nullopt;
    if (!url) return received;
    TextAttributes linked = received;
    linked.set(platform::linkAttributeName, *url);
    return linked;
}

std::optional<TextAttributes> Image::renderOwn(const TextAttributes& received, AttributedString& out) const {
    const auto* source = attribute(attributes(), "src");
    if (!source) return received;
    out.append(*source, withFont(received));
    return std::nullopt;
}

std::optional<TextAttributes> Bold::renderOwn(const TextAttributes& received, AttributedString&) const {
    return applyingFont(received, boldFont());
}

std::optional<TextAttributes> Italic::renderOwn(const TextAttributes& received, AttributedString&) const {
    return applyingFont(received, italicFont());
}

std::optional<TextAttributes> Code::renderOwn(const TextAttributes& received, AttributedString&) const {
    return replacingFontAndColor(received, codeFont(), platform::lightGrayColor());
}

std::optional<TextAttributes> Quote::renderOwn(const TextAttributes& received, AttributedString&) const {
    return replacingFontAndColor(received, italicFont(), platform::grayColor());
}

} // namespace belvakit
