#pragma once

#include "platform/image.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// PNG or JPEG bytes to an image; null when the bytes are neither or are damaged.
ImagePtr decodeImage(std::string_view bytes);

// The encoders ignore `orientation`: they write the pixels as stored. Nothing on failure.
std::optional<std::string> encodePNG(const Image& image);
// `quality` in 0...1, as the platform's JPEG representation takes it.
std::optional<std::string> encodeJPEG(const Image& image, double quality);

} // namespace platform
