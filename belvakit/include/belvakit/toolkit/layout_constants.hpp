#pragma once

#include <cstdint>

namespace belvakit {

// Public names for hosts; the library itself reads the theme instead. Font sizes repeat the theme's.
inline constexpr float HEADER_FONT_SIZE = 18.0f;
inline constexpr float MAIN_FONT_SIZE = 16.0f;
inline constexpr float SUBHEADER_FONT_SIZE = 15.0f;
inline constexpr float SUBTITLE_FONT_SIZE = 12.0f;
inline constexpr float META_FONT_SIZE = 11.0f;
inline constexpr std::int32_t BORDER_WIDTH = 1;
inline constexpr std::int32_t CORNER_RADIUS = 4;
inline constexpr std::int32_t LEFT_INSET = 25;
inline constexpr std::int32_t VERTICAL_MARGIN = 20;
inline constexpr std::int32_t DESCRIPTION_TIMESTAMP_MARGIN = 5;
inline constexpr std::int32_t AVATER_SIZE = 40;
inline constexpr std::int32_t SPINNER_SIZE = 20;

} // namespace belvakit
