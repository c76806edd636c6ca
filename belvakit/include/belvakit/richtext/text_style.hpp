#pragma once

#include "platform/color.hpp"
#include "platform/text_attributes.hpp"

namespace belvakit {

// Made once: white level 0 at alpha 0.8.
const platform::Color& richTextColor();

// Line spacing 2.3, kern 0.3 and the text colour. No font on purpose: text supplies its own.
const platform::TextAttributes& defaultTextAttributes();

} // namespace belvakit
