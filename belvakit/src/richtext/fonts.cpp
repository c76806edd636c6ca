#include "belvakit/richtext/fonts.hpp"

namespace belvakit {

platform::Font richTextSystemFont() { return platform::Font::systemFont(richTextFontSize); }

platform::Font richTextFont(platform::SymbolicTraits traits, std::string_view fallbackName) {
    const auto system = richTextSystemFont().fontDescriptor();
    if (const auto styled = system.withSymbolicTraits(traits)) return platform::Font::withDescriptor(*styled, 0);
    if (auto named = platform::Font::named(fallbackName, richTextFontSize)) return *named;
    return richTextSystemFont();
}

// The catalogue never changes, so each of these is looked up once.
platform::Font boldFont() {
    static const platform::Font font = richTextFont(platform::FontTrait::bold, "Avenir-Heavy");
    return font;
}

platform::Font italicFont() {
    static const platform::Font font = richTextFont(platform::FontTrait::italic, "Avenir-BookOblique");
    return font;
}

platform::Font boldItalicFont() {
    static const platform::Font font =
        richTextFont(platform::FontTrait::bold | platform::FontTrait::italic, "Avenir-HeavyOblique");
    return font;
}

platform::Font codeFont() {
    static const platform::Font font = richTextFont(platform::FontTrait::monoSpace, "Verdana");
    return font;
}

} // namespace belvakit
