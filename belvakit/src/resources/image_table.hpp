#pragma once

#include <span>
#include <string_view>

namespace belvakit::resources {

struct EncodedImage {
    std::string_view name;
    std::string_view png;
};

// The images compiled into the library, sorted by name.
const std::span<const EncodedImage> encodedImages();

} // namespace belvakit::resources
