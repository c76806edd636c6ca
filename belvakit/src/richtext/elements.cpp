#include "belvakit/richtext/elements.hpp"

#include "belvakit/richtext/fonts.hpp"
#include "belvakit/richtext/text_style.hpp"
#include "platform/named_colors.hpp"

namespace belvakit {
namespace {

using platform::Font;
using platform::TextAttributes;

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

TextAttributes bolded(const TextAttributes& style) { return applyingFont(style, boldFont()); }
TextAttributes italicised(const TextAttributes& style) { return applyingFont(style, italicFont()); }
TextAttributes asCode(const TextAttributes& style) {
    return replacingFontAndColor(style, codeFont(), platform::lightGrayColor());
}
TextAttributes asQuote(const TextAttributes& style) {
    return replacingFontAndColor(style, italicFont(), platform::grayColor());
}

const std::string* attribute(const ElementAttributes& attributes, const std::string& name) {
    const auto found = attributes.find(name);
    return found == attributes.end() ? nullptr : &found->second;
}

} // namespace

const TextAttributes* Root::renderOwn(const TextAttributes&, RenderOutput&) const {
    return &defaultTextAttributes();
}

const TextAttributes* Text::renderOwn(const TextAttributes& received, RenderOutput& out) const {
    if (!content_.empty()) out.appendWithFont(content_, received);
    return &received;
}

const std::string& Break::content() const {
    static const std::string newline = "\n";
    return newline;
}

const TextAttributes* Break::renderOwn(const TextAttributes& received, RenderOutput& out) const {
    out.append(content(), received);
    return nullptr;
}

const TextAttributes* Link::renderOwn(const TextAttributes& received, RenderOutput& out) const {
    const auto* href = attribute(attributes(), "href");
    auto url = href ? platform::URL::parse(*href) : std::nullopt;
    if (!url) return &received;
    TextAttributes linked = received;
    linked.set(platform::linkAttributeName, std::move(*url));
    return &out.hold(std::move(linked));
}

const TextAttributes* Image::renderOwn(const TextAttributes& received, RenderOutput& out) const {
    const auto* source = attribute(attributes(), "src");
    if (!source) return &received;
    out.appendWithFont(*source, received);
    return nullptr;
}

const TextAttributes* Bold::renderOwn(const TextAttributes& received, RenderOutput& out) const {
    return &out.derived(received, &bolded);
}

const TextAttributes* Italic::renderOwn(const TextAttributes& received, RenderOutput& out) const {
    return &out.derived(received, &italicised);
}

const TextAttributes* Code::renderOwn(const TextAttributes& received, RenderOutput& out) const {
    return &out.derived(received, &asCode);
}

const TextAttributes* Quote::renderOwn(const TextAttributes& received, RenderOutput& out) const {
    return &out.derived(received, &asQuote);
}

} // namespace belvakit
