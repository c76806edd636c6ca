#include "belvakit/richtext/fonts.hpp"

namespace belvakit {

platform::Font richTextSystemFont() { return platform::Font::systemFont(richTextFontSize); }

platform::Font richTextFont(platform::SymbolicTraits traits, std::string_view fallbackName) {
    const auto system = richTextSystemFont().fontDescriptor();
    if (const auto styled = system.withSymbolicTraits(traits)) return platform::Font::withDescriptor(*styled, 0);
    if (auto named = platform::Font::named(fallbackName, richTextFontSize)) return *named;
    return richTextSystemFont();
}

platform::Font boldFont() { return richTextFont(platform::FontTrait::bold, "Avenir-Heavy"); }

platform::Font italicFont() { return richTextFont(platform::FontTrait::italic, "Avenir-BookOblique"); }

platform::Font boldItalicFont() {
    return richTextFont(platform::FontTrait::bold | platform::FontTrait::italic, "Avenir-HeavyOblique");
}

platform::Font codeFont() { return richTextFont(platform::FontTrait::monoSpace, "Verdana"); }

} // namespace belvakit
