#pragma once

#include "platform/font.hpp"

#include <string_view>

namespace belvakit {

inline constexpr double richTextFontSize = 16;

// The system font at the rich-text size.
platform::Font richTextSystemFont();

// The system font's face with these traits; failing that the named font, failing that the
// system font, all at the rich-text size.
platform::Font richTextFont(platform::SymbolicTraits traits, std::string_view fallbackName);

platform::Font boldFont();
platform::Font italicFont();
platform::Font boldItalicFont();
platform::Font codeFont();

} // namespace belvakit
